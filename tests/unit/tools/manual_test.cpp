#include "support/qorctl_test.h"

#include "core/component_table.h"
#include "platform/file.h"
#include "support/process.h"

#include <filesystem>
#include <map>
#include <regex>
#include <set>

namespace qorcfg {

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

std::string content(const std::string &name)
{
    const auto text = read_file(QORCFG_TOP "/" + name, std::size_t{1} << 20);
    EXPECT_TRUE(text) << name;
    return text.value_or("");
}

/// What the first group of `pattern` matches in `text`, wherever it does.
Names found(const std::string &text, const char *pattern)
{
    const std::regex expression(pattern);
    Names names;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
         ++match) {
        names.insert((*match)[1]);
    }
    return names;
}

/// The lines of `text` behind the line `title` up to the next that begins with `next`.
std::string section(const std::string &text, const std::string &title, const std::string &next)
{
    const std::size_t begin = ("\n" + text).find("\n" + title + "\n");
    if (begin == std::string::npos) {
        ADD_FAILURE() << "no line: " << title;
        return "";
    }
    return text.substr(begin, text.find("\n" + next, begin + title.size()) - begin);
}

/// A manual page without its font changes and escapes.
std::string page(const std::string &name)
{
    return std::regex_replace(content("docs/man/" + name), std::regex(R"(\\f.|\\)"), "");
}

std::string page_section(const std::string &name, const std::string &title)
{
    return section(page(name), ".SH " + title, ".SH ");
}

constexpr const char *option_pattern = R"((--[a-z][a-z-]*))";

class ManualTest : public QorctlTest {
protected:
    static Names verbs()
    {
        return found(section(run({"--help"}).out, "Verbs:", "Example:"), R"(\n  ([a-z]+) )");
    }

    static Names options(const std::string &verb)
    {
        return found(section(run({verb, "--help"}).out, "Options:", "Example:"),
                     R"(\n  (?:-h,)?(--[a-z-]+))");
    }

    /// What bash offers for the last of the words.
    static Names offered(const std::vector<std::string> &words)
    {
        const std::string script = "source \"$1\"; shift; COMP_WORDS=(\"$@\"); "
                                   "COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _qorctl; "
                                   "printf '%s\\n' \"${COMPREPLY[@]}\"";
        std::vector<std::string> argv{"bash", "-c", script, "bash",
                                      QORCFG_TOP "/packaging/bash-completion/qorctl"};
        argv.insert(argv.end(), words.begin(), words.end());
        const test::ProcessEnd end = test::run_process(argv);
        EXPECT_EQ(end.status, 0);
        EXPECT_EQ(end.err, "");
        const std::vector<std::string> lines = test::split_lines(end.out);
        return {lines.begin(), lines.end()};
    }
};

TEST_F(ManualTest, EveryVerbStandsInTheManual)
{
    const Names known = verbs();
    ASSERT_TRUE(known.count("get") == 1 && known.count("subscribers") == 1);
    const std::string manual = content("docs/qorctl.md");
    EXPECT_EQ(found(manual, R"(\n\| `([a-z]+))"), known);
    Names titles = found(manual, R"(\n### ([a-z]+)\n)");
    EXPECT_EQ(titles, known);
    EXPECT_EQ(found(page("qorctl.1"), R"(\n\.TP\n([a-z]+)[ \n])"), known);
}

TEST_F(ManualTest, EveryOptionStandsWithItsVerb)
{
    const std::string manual = content("docs/qorctl.md") + "\n### ";
    const std::string pages = page("qorctl.1");
    for (const std::string &verb : verbs()) {
        Names known = options(verb);
        ASSERT_EQ(known.erase("--help"), 1U) << verb;
        // The block of usage lines below the title; examples further down do not count.
        const std::string usage_lines =
            section(manual, "### " + verb, "### ").substr(("### " + verb + "\n\n").size());
        const Names usage = found(usage_lines.substr(0, usage_lines.find("\n\n")), option_pattern);
        EXPECT_EQ(usage, known) << "docs/qorctl.md, " << verb;
        Names in_page;
        for (const std::string &line : test::split_lines(pages)) {
            if (line.rfind(verb + " ", 0) == 0) {
                in_page.merge(found(line, option_pattern));
            }
        }
        EXPECT_EQ(in_page, known) << "qorctl.1, " << verb;
    }
}

TEST_F(ManualTest, TheOptionsOfAllVerbsAreExplained)
{
    const Names known =
        found(section(run({"--help"}).out, "Options:", "Verbs:"), R"(\n  (?:-h,)?(--[a-z-]+))");
    ASSERT_EQ(known, (Names{"--help", "--root"}));
    for (const std::string &option : known) {
        EXPECT_NE(content("docs/qorctl.md").find(option), std::string::npos) << option;
        EXPECT_NE(page_section("qorctl.1", "OPTIONS").find(option), std::string::npos) << option;
    }
}

TEST_F(ManualTest, BashCompletesEveryVerbAndOption)
{
    Names expected = verbs();
    expected.merge(Names{"--help", "--root"});
    EXPECT_EQ(offered({"qorctl", ""}), expected);
    for (const std::string &verb : verbs()) {
        EXPECT_EQ(offered({"qorctl", verb, "-"}), options(verb)) << verb;
        EXPECT_EQ(offered({"qorctl", "--root", "/", verb, "-"}), options(verb)) << verb;
    }
}

TEST_F(ManualTest, BashOffersTheKeysOfTheStoreAsTextThatItNeverExpands)
{
    device.write_program("/qorctl", "#!/bin/sh\n[ \"$*\" = \"--root /r export -- a\" ] || exit 1\n"
                                    "echo 'a_key=1'\necho 'a$(echo run)=a$(echo run)'\n");
    const std::string program = device.path("/qorctl");
    const Names keys{"a_key", R"(a\$\(echo\ run\))"};
    EXPECT_EQ(offered({program, "--root", "/r", "get", "a"}), keys);
    // bash makes the sign a word of its own.
    EXPECT_EQ(offered({program, "--root", "=", "/r", "set", "a"}), keys);
    EXPECT_EQ(offered({program, "--root", "/r", "set", "a_key", "=", "a"}), Names{""});
}

TEST_F(ManualTest, EveryExitStatusIsExplained)
{
    const Names known = found(content("src/tools/session.h"), R"(\bexit_[a-z]+ = ([0-9]+))");
    ASSERT_EQ(known.count("0"), 1U);
    EXPECT_EQ(
        found(section(content("docs/qorctl.md"), "### Exit status", "### "), R"(\n\| ([0-9]+) \|)"),
        known);
    EXPECT_EQ(found(page_section("qorctl.1", "EXIT STATUS"), R"(\n\.B ([0-9]+)\n)"), known);
    EXPECT_EQ(found(page_section("qorcfg.8", "EXIT STATUS"), R"(\n\.B ([0-9]+)\n)"),
              (Names{"0", "1"}));
}

TEST_F(ManualTest, EveryEnvironmentVariableIsExplained)
{
    Names known;
    for (const auto &entry : fs::recursive_directory_iterator(QORCFG_TOP "/src")) {
        if (entry.is_regular_file()) {
            const std::string text = content(fs::relative(entry.path(), QORCFG_TOP));
            known.merge(found(text, R"(getenv\("([A-Z_]+)\"\))"));
        }
    }
    for (const auto &entry : fs::directory_iterator(QORCFG_TOP "/hooks")) {
        const std::string text = content("hooks/" + entry.path().filename().string());
        known.merge(found(text, R"(\$\{([A-Z_]+):-)"));
    }
    ASSERT_EQ(known.count("QORCFG_ROOT") + known.count("QORCTL"), 2U);
    for (const std::string &name : known) {
        for (const char *each : {"qorcfg.8", "qorctl.1"}) {
            const std::string text = page_section(each, "ENVIRONMENT");
            EXPECT_NE(text.find(".B " + name + "\n"), std::string::npos) << each << ", " << name;
        }
        EXPECT_NE(content("docs/operations.md").find("| `" + name + "` |"), std::string::npos)
            << name;
    }
}

TEST_F(ManualTest, VariablesThatLibrariesReadAreExplained)
{
    // The folder of std::filesystem::temp_directory_path, and where programs are looked for.
    EXPECT_NE(content("src/tools/scratch_device.cpp").find("temp_directory_path()"),
              std::string::npos);
    EXPECT_NE(page_section("qorctl.1", "ENVIRONMENT").find(".B TMPDIR\n"), std::string::npos);
    const std::string environment = section(content("docs/qorctl.md"), "### Environment", "### ");
    for (const char *name : {"`QORCFG_ROOT`\n:", "`TMPDIR`\n:"}) {
        EXPECT_NE(environment.find(name), std::string::npos) << name;
    }
    EXPECT_NE(page_section("qorcfg.8", "ENVIRONMENT").find(".B PATH\n"), std::string::npos);
}

TEST_F(ManualTest, EveryComponentIsInTheManualAndInTheDefaultList)
{
    Names known;
    for (const ComponentRow &row : components) {
        known.insert(row.name);
    }
    EXPECT_EQ(found(page_section("qorcfg.conf.5", "COMPONENTS"), R"(\n\.TP\n\.B (\w+)\n)"), known);
    EXPECT_EQ(found(content("docs/components.md"), R"(\n## (\w+)\n)"), known);
    EXPECT_EQ(found("\n" + content("packaging/qorcfg.conf"), R"(\n(\w+)=[01])"), known);
}

TEST_F(ManualTest, PagesHaveTheirSectionsAndReferToPagesThatExist)
{
    const std::map<std::string, std::vector<std::string>> wanted{
        {"qorcfg.8", {"NAME", "SYNOPSIS", "DESCRIPTION", "EXIT STATUS", "ENVIRONMENT", "FILES"}},
        {"qorctl.1",
         {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "VERBS", "EXIT STATUS", "ENVIRONMENT",
          "FILES", "EXAMPLES"}},
        {"qorcfg.conf.5", {"NAME", "SYNOPSIS", "DESCRIPTION", "COMPONENTS", "EXAMPLES"}},
        {"qorcfg-batch.5", {"NAME", "SYNOPSIS", "DESCRIPTION", "FILES"}},
    };
    for (const auto &entry : fs::directory_iterator(QORCFG_TOP "/docs/man")) {
        EXPECT_EQ(wanted.count(entry.path().filename()), 1U) << entry.path();
    }
    for (const auto &[name, sections] : wanted) {
        const std::string text = page(name);
        const std::size_t dot = name.rfind('.');
        std::string title = name.substr(0, dot);
        EXPECT_NE(text.find(".SH NAME\n" + title + " - "), std::string::npos) << name;
        std::transform(title.begin(), title.end(), title.begin(), ::toupper);
        EXPECT_EQ(text.rfind(".TH " + title + " " + name.substr(dot + 1) + " ", 0), 0U) << name;
        std::vector<std::string> titles;
        for (const std::string &line : test::split_lines(text)) {
            if (line.rfind(".SH ", 0) == 0) {
                titles.push_back(line.substr(4));
            }
        }
        std::vector<std::string> expected = sections;
        expected.emplace_back("SEE ALSO");
        EXPECT_EQ(titles, expected) << name;
        for (const std::string &reference : found(text, R"(\n\.BR ((?:qor)[a-z.-]+ \([0-9])\))")) {
            const std::size_t blank = reference.find(" (");
            EXPECT_EQ(wanted.count(reference.substr(0, blank) + "." + reference.substr(blank + 2)),
                      1U)
                << name << " refers to " << reference;
        }
    }
}

} // namespace

} // namespace qorcfg
