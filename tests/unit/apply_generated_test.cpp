#include "core/base/globals.h"
#include "platform/file.h"
#include "platform/job_number.h"
#include "support/apply_test.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <random>
#include <unistd.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;

struct GeneratedOption {
    std::string name;
    Lines values;
    bool is_list = false;
};
struct GeneratedSection {
    std::string name; ///< of a named one
    std::vector<GeneratedOption> options;
};
struct GeneratedType {
    std::string name;
    SectionKind kind;
    bool there = true;
    std::vector<GeneratedSection> sections;
};

/// A document that changes at random, as those of components do.
class GeneratedDocument {
public:
    /// `whole_sections`: the document is written section by section. Option by option, lists and
    /// sections of named types do not come and go.
    GeneratedDocument(std::mt19937 &random, const std::string &mark, bool whole_sections)
        : random_(random), whole_sections_(whole_sections)
    {
        for (const auto &[name, kind] :
             {std::pair("named", named_sections), std::pair("more", named_sections),
              std::pair("num", numbered_sections), std::pair("rule", anonymous_sections),
              std::pair("zone", anonymous_sections)}) {
            types_.push_back({std::string(name) + mark, kind, true, {}});
        }
    }

    void change()
    {
        for (GeneratedType &type : types_) {
            if (whole_sections_ && roll(12) == 0) {
                type.there = !type.there;
            }
            for (int changes = roll(4); changes > 0; --changes) {
                if (type.kind == named_sections) {
                    change_named(type);
                } else {
                    change_array(type);
                }
            }
        }
        if (roll(8) == 0 && whole_sections_) {
            std::shuffle(types_.begin(), types_.end(), random_);
        }
    }

    Document build() const
    {
        Document doc;
        for (const GeneratedType &type : types_) {
            if (!type.there) {
                continue;
            }
            doc.container(type.name.c_str(), type.kind);
            for (const GeneratedSection &section : type.sections) {
                Section target = type.kind == named_sections
                                     ? doc.section(type.name.c_str(), section.name)
                                     : doc.append(type.name.c_str(), type.kind);
                for (const GeneratedOption &option : section.options) {
                    if (option.is_list) {
                        target.add_list(option.name.c_str(), option.values);
                    } else {
                        target.add_even_empty(option.name.c_str(), option.values.front());
                    }
                }
            }
        }
        return doc;
    }

private:
    int roll(std::size_t sides)
    {
        return static_cast<int>(random_() % std::max<std::size_t>(sides, 1));
    }

    std::string value()
    {
        static const std::array<std::string, 22> pieces{
            "a",    "B",    "7",    " ",  "  ", "'",     "\"", "#",        ";",
            "=",    "\\",   "\\n",  "\t", "\n", "@x[0]", ".",  "\xc3\xa4", "\xf0\x9f\x98\x80",
            "\xff", "\xc3", "$(x)", "`"};
        std::string text;
        for (int count = 1 + roll(5); count > 0; --count) {
            text += pieces.at(static_cast<std::size_t>(roll(pieces.size())));
        }
        return text;
    }

    GeneratedSection section(const std::string &name, bool named)
    {
        GeneratedSection result{name, {}};
        const bool plain = named && !whole_sections_;
        for (int i = 0, count = roll(4) + (plain ? 1 : 0); i < count; ++i) {
            GeneratedOption option{std::string("o").append(std::to_string(i)), {}, false};
            option.is_list = !plain && roll(4) == 0;
            for (int items = option.is_list ? roll(4) : 1; items > 0; --items) {
                option.values.push_back(value());
            }
            if (!option.is_list && !plain && roll(12) == 0) {
                option.values.front().clear();
            }
            result.options.push_back(std::move(option));
        }
        if (!plain) {
            std::shuffle(result.options.begin(), result.options.end(), random_);
        }
        return result;
    }

    void change_named(GeneratedType &type)
    {
        const std::string name = type.name + "_s" + std::to_string(roll(6));
        const auto known = std::find_if(type.sections.begin(), type.sections.end(),
                                        [&](const auto &each) { return each.name == name; });
        if (known == type.sections.end()) {
            type.sections.push_back(section(name, true));
        } else if (whole_sections_ && roll(3) == 0) {
            type.sections.erase(known);
        } else {
            *known = section(name, true);
        }
    }

    void change_array(GeneratedType &type)
    {
        auto &sections = type.sections;
        const auto place = [&](std::size_t count) { return sections.begin() + roll(count); };
        switch (roll(sections.empty() ? 2 : 7)) {
        case 0:
        case 1:
            sections.insert(place(sections.size() + 1), section("", false));
            break;
        case 2:
        case 3:
            *place(sections.size()) = section("", false);
            break;
        case 4:
            sections.erase(place(sections.size()));
            break;
        case 5:
            std::iter_swap(place(sections.size()), place(sections.size()));
            break;
        default:
            sections.erase(place(sections.size()), sections.end());
        }
    }

    std::mt19937 &random_;
    bool whole_sections_;
    std::vector<GeneratedType> types_;
};

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

/// Options that travel one by one may change their order.
std::string with_sorted_options(const std::string &text)
{
    Lines lines = test::split_lines(text);
    const auto is_option = [](const std::string &line) { return line.rfind("    ", 0) == 0; };
    const auto name = [](const std::string &line) {
        const std::size_t begin = line.find(' ', 4) + 1;
        return line.substr(begin, line.find(' ', begin) - begin);
    };
    for (auto begin = lines.begin(); begin != lines.end();) {
        auto end = std::find_if_not(begin, lines.end(), is_option);
        std::stable_sort(begin, end, [&](const std::string &a, const std::string &b) {
            return name(a) < name(b);
        });
        begin = end == begin ? std::next(begin) : end;
    }
    std::string sorted;
    for (const std::string &line : lines) {
        sorted.append(line).append("\n");
    }
    return sorted;
}

class ApplyGeneratedTest : public test::ApplyTest {
protected:
    /// Some writes of both documents of a package, applied now and then, each time compared. The
    /// comparisons made.
    int play(unsigned seed)
    {
        std::mt19937 random(seed);
        const bool whole_sections = seed % 4 != 0;
        const std::string name = "p" + std::to_string(seed);
        std::array documents{GeneratedDocument(random, "_a", whole_sections),
                             GeneratedDocument(random, "_b", whole_sections)};
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
            applied = with_sorted_options(applied);
            wanted = with_sorted_options(wanted);
        }
        EXPECT_EQ(applied, wanted) << batches;
    }
};

TEST_F(ApplyGeneratedTest, PackagesHoldWhatTwoThousandRandomSequencesOfDocumentsSay)
{
    constexpr unsigned first = 1;
    constexpr unsigned count = 2000;
    std::printf("seeds %u to %u\n", first, first + count - 1);
    int compared = 0;
    {
        const QuietOutput quiet;
        for (unsigned seed = first; seed < first + count && !HasFailure(); ++seed) {
            compared += play(seed);
        }
    }
    EXPECT_GT(compared, 5000);
    std::printf("%d comparisons\n", compared);
}

} // namespace
} // namespace qorcfg
