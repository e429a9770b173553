#include "apply/apply.h"

#include "core/base/globals.h"
#include "engine/uci_commit.h"
#include "fuzz/fuzz.h"
#include "platform/job_number.h"
#include "support/applied_package.h"
#include "support/generated_document.h"

#include <array>
#include <sstream>

using namespace qorcfg;

namespace {

constexpr const char *folder = "/tmp/cache/qorcfg/ucicfg.d";

/// Two documents of one package, written and applied as jobs and start-up passes do.
class TwoDocuments {
public:
    explicit TwoDocuments(test::InputBytes &bytes)
        : bytes_(bytes),
          whole_sections_(bytes.roll(4) != 1), documents_{document("_a"), document("_b")}
    {
    }

    /// One job or start of the daemon, whose batch files are applied now or later.
    void step(bool last)
    {
        pth_count = next_job_number(pth_count);
        const bool start = bytes_.roll(6) == 1;
        const std::size_t writes = start ? 2 : 1 + bytes_.roll(3);
        for (std::size_t i = 0; i < writes; ++i) {
            write(start ? i : bytes_.roll(2), start);
        }
        if (start || last || bytes_.roll(3) != 1) {
            apply(start ? BatchSelection::Kind::startup : BatchSelection::Kind::job);
        }
    }

private:
    test::GeneratedDocument document(const char *mark)
    {
        return {[this](std::size_t sides) { return bytes_.roll(sides); }, mark, whole_sections_};
    }

    void write(std::size_t which, bool start)
    {
        documents_.at(which).change();
        written_.at(which) = documents_.at(which).build();
        const auto commit = whole_sections_ ? commit_uci_section : commit_uci_options;
        commit(written_.at(which), "net", which == 0 ? "a" : "b", start ? 1 : 0, pth_count);
    }

    void apply(BatchSelection::Kind kind)
    {
        const test::DeviceRoot &device = test::fuzz_device();
        std::string batches;
        for (const std::string &name : device.names_in(folder)) {
            batches += "--- " + name + "\n" + device.read(std::string(folder) + "/" + name) + "\n";
        }
        std::ostringstream faults;
        test::require(apply_batches({kind, pth_count}, faults), "every line is applied",
                      faults.str() + batches);
        const std::vector<json_object *> all{written_[0].get(), written_[1].get()};
        std::string wanted = test::wanted_text(all);
        std::string applied;
        if (device.exists("/tmp/etc/config/net")) {
            applied = test::applied_text(device, "net", all);
        }
        if (!whole_sections_) {
            // A single option that is set anew goes to the end of its section.
            applied = test::with_sorted_options(applied);
            wanted = test::with_sorted_options(wanted);
        }
        test::require(applied == wanted, "the package holds what the documents say",
                      "applied:\n" + applied + "wanted:\n" + wanted + batches);
    }

    test::InputBytes &bytes_;
    bool whole_sections_;
    std::array<test::GeneratedDocument, 2> documents_;
    std::array<Document, 2> written_;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    test::fuzz_device();
    test::empty_folder(folder);
    test::empty_folder("/tmp/etc/config");
    test::InputBytes bytes(data, size);
    TwoDocuments documents(bytes);
    do {
        documents.step(bytes.at_end());
    } while (!bytes.at_end());
    documents.step(true);
    return 0;
}
