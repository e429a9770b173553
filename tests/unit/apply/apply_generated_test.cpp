#include "core/base/globals.h"
#include "platform/file.h"
#include "platform/job_number.h"
#include "support/apply_test.h"
#include "support/generated_document.h"

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <unistd.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;

/// Nothing of this process reaches standard output while one lives.
class QuietOutput {
public:
    QuietOutput() : kept_(::dup(STDOUT_FILENO))
    {
        std::fflush(stdout);
        ::dup2(open_file("/dev/null", O_WRONLY).get(), STDOUT_FILENO);
    }
    QuietOutput(const QuietOutput &) = delete;
    QuietOutput &operator=(const QuietOutput &) = delete;
    ~QuietOutput()
    {
        std::fflush(stdout);
        ::dup2(kept_.get(), STDOUT_FILENO);
    }

private:
    Fd kept_;
};

class ApplyGeneratedTest : public test::ApplyTest {
protected:
    /// Some writes of both documents of a package, applied now and then, each time compared. The
    /// comparisons made.
    int play(unsigned seed)
    {
        std::mt19937 random(seed);
        const bool whole_sections = seed % 4 != 0;
        const std::string name = "p" + std::to_string(seed);
        const auto roll = [&](std::size_t sides) { return random() % sides; };
        std::array documents{test::GeneratedDocument(roll, "_a", whole_sections),
                             test::GeneratedDocument(roll, "_b", whole_sections)};
        std::array<Document, 2> written;
        constexpr int steps = 4;
        std::string batches;
        int compared = 0;
        int number = static_cast<int>(random() % last_job_number) + 1;
        for (int step = 0; step < steps && !HasFailure(); ++step) {
            pth_count = number;
            // A daemon that starts anew writes everything; left-over batches come first.
            const bool start = random() % 6 == 0;
            for (int writes = static_cast<int>(random() % 3) + (start ? 2 : 0), i = 0; i < writes;
                 ++i) {
                const std::size_t which = start ? i % 2 : random() % 2;
                documents.at(which).change();
                written.at(which) = documents.at(which).build();
                const auto write = whole_sections ? commit_uci_section : commit_uci_options;
                write(written.at(which), name, which == 0 ? "a" : "b", start ? 1 : 0, number);
            }
            const bool last = step == steps - 1;
            if (start || last || random() % 3 != 0) {
                batches.clear();
                for (const std::string &file : files()) {
                    batches += "--- " + file + "\n" + device.read(folder + file);
                }
                const bool done = start ? apply_startup() : apply_job(number);
                EXPECT_TRUE(done) << errors;
                EXPECT_EQ(files(), Lines{});
                compare(name, written, whole_sections, batches);
                ++compared;
            }
            number = next_job_number(number);
        }
        EXPECT_FALSE(HasFailure()) << "seed " << seed;
        for (const char *folder_name : {folder, "/tmp/etc/config"}) {
            for (const std::string &file : device.names_in(folder_name)) {
                std::filesystem::remove(device.path(folder_name) + "/" + file);
            }
        }
        return compared;
    }

    void compare(const std::string &name, const std::array<Document, 2> &written,
                 bool whole_sections, const std::string &batches)
    {
        if (!device.exists("/tmp/etc/config/" + name)) {
            EXPECT_EQ(test::wanted_text({written[0].get(), written[1].get()}), "");
            return;
        }
        const std::vector<json_object *> all{written[0].get(), written[1].get()};
        std::string applied = test::applied_text(device, name, all);
        std::string wanted = test::wanted_text(all);
        if (!whole_sections) {
            applied = test::with_sorted_options(applied);
            wanted = test::with_sorted_options(wanted);
        }
        EXPECT_EQ(applied, wanted) << batches;
    }
};

TEST_F(ApplyGeneratedTest, PackagesHoldWhatRandomSequencesOfDocumentsSay)
{
    constexpr unsigned first = 1;
    constexpr unsigned count = SEQUENCES;
    std::printf("seeds %u to %u\n", first, first + count - 1);
    int compared = 0;
    {
        const QuietOutput quiet;
        for (unsigned seed = first; seed < first + count && !HasFailure(); ++seed) {
            compared += play(seed);
        }
    }
    EXPECT_GT(compared, 2 * static_cast<int>(count));
    std::printf("%d comparisons\n", compared);
}

} // namespace
} // namespace qorcfg
