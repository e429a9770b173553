#include "support/qorctl_test.h"

#include <filesystem>

namespace qorcfg {

namespace {

class QorctlValues : public QorctlTest {};

TEST_F(QorctlValues, AValueThatWasSetIsPrinted)
{
    EXPECT_EQ(run({"set", "a=1", "b=x = y", "empty="}).status, 0);
    EXPECT_EQ(run({"get", "a"}).out, "1\n");
    EXPECT_EQ(run({"get", "b"}).out, "x = y\n");
    EXPECT_EQ(run({"get", "empty"}).out, "\n");
}

TEST_F(QorctlValues, AKeyThatIsNotSetIsAnErrorEvenWhenOthersBeginWithIt)
{
    run({"set", "abc=1"});
    EXPECT_TRUE(run({"get", "ab"}).refused(1, "not set: ab"));
}

TEST_F(QorctlValues, GetPrintsKeyAndValueAsJson)
{
    run({"set", "a=say \"hi\""});
    EXPECT_EQ(json_of(run({"get", "a", "--json"})), R"({"key":"a","value":"say \"hi\""})");
}

TEST_F(QorctlValues, UnsetRemovesKeysAndAMissingOneIsNoError)
{
    run({"set", "a=1", "b=2"});
    EXPECT_EQ(run({"unset", "a", "c"}).status, 0);
    EXPECT_EQ(run({"export"}).out, "b=2\n");
}

TEST_F(QorctlValues, ChangedKeysAreMarkedUnlessNobodyIsToBeTold)
{
    run({"set", "--no-announce", "a=1", "b=2"});
    run({"unset", "b", "--no-announce"});
    EXPECT_TRUE(marked().empty());
    run({"set", "c=1"});
    run({"unset", "a"});
    EXPECT_EQ(marked(), (std::vector<std::string>{"a", "c"}));
}

TEST_F(QorctlValues, AnArgumentWithoutEqualsSignIsMisuseAndNothingIsWritten)
{
    EXPECT_TRUE(run({"set", "a=1", "bcd"}).refused(2, "bcd"));
    EXPECT_TRUE(run({"set", "a=1", ""}).refused(2, "no \"=\""));
    EXPECT_EQ(run({"export"}).out, "");
}

TEST_F(QorctlValues, AnEmptyKeyIsMisuseAndNothingIsWritten)
{
    EXPECT_TRUE(run({"set", "a=1", "=value"}).refused(2, "=value"));
    EXPECT_TRUE(run({"unset", ""}).refused(2, "empty"));
    EXPECT_EQ(run({"export"}).out, "");
}

TEST_F(QorctlValues, AnOverlongKeyIsRefusedByItsBeginningAndNothingIsWritten)
{
    const std::string longest(store_key_limit, 'k');
    const Outcome refused = run({"set", "a=1", longest + "k=1"});
    EXPECT_TRUE(refused.refused(1, "kkkk"));
    EXPECT_LT(refused.err.size(), 200u);
    EXPECT_TRUE(run({"unset", longest + "k"}).refused(1, "kkkk"));
    EXPECT_EQ(run({"export"}).out, "");
    EXPECT_EQ(run({"set", longest + "=1"}).status, 0);
    EXPECT_EQ(run({"get", longest}).out, "1\n");
}

TEST_F(QorctlValues, AnOverlongValueIsRefusedByItsKeyAndNothingIsWritten)
{
    const std::string largest(store_value_limit, 'v');
    EXPECT_TRUE(run({"set", "a=1", "big=" + largest + "v"}).refused(1, "big"));
    EXPECT_EQ(run({"export"}).out, "");
    EXPECT_EQ(run({"set", "big=" + largest}).status, 0);
    EXPECT_EQ(run({"get", "big"}).out, largest + "\n");
}

TEST_F(QorctlValues, AnArgumentThatBeginsWithAMinusStandsBehindTwo)
{
    EXPECT_TRUE(run({"set", "-a=1"}).refused(2, "-a=1"));
    EXPECT_EQ(run({"set", "b=-1", "--", "-a=-2"}).status, 0);
    EXPECT_EQ(run({"get", "--", "-a"}).out, "-2\n");
    EXPECT_EQ(run({"get", "b"}).out, "-1\n");
}

TEST_F(QorctlValues, NoCharacterOfAnArgumentIsTheParsersOwn)
{
    for (const std::string key : {"[a,b]", "[", "{}", "%%", "++", "@x", "status", " "}) {
        EXPECT_EQ(run({"set", key + "=[1,2]"}).status, 0) << key;
        EXPECT_EQ(run({"get", key}).out, "[1,2]\n") << key;
        EXPECT_EQ(run({"unset", key, "other"}).status, 0) << key;
    }
    for (const std::string key : {"--", "--help", "-", "[a]"}) {
        EXPECT_EQ(run({"set", "a=1", "--", "b=2", key + "=1"}).status, 0) << key;
        EXPECT_EQ(run({"get", "--", key}).out, "1\n") << key;
        EXPECT_EQ(run({"unset", "--", key}).status, 0) << key;
    }
    EXPECT_EQ(run({"set", "[k=v]"}).status, 0);
    EXPECT_EQ(run({"export"}).out, "[k=v]\na=1\nb=2\n");
}

TEST_F(QorctlValues, TheRootOfTheCommandLineGoesBeforeThatOfTheEnvironment)
{
    run({"set", "a=here"});
    const std::string other = path("/other");
    std::filesystem::create_directories(other + "/tmp");
    EXPECT_EQ(run({"--root", other, "set", "a=there"}).status, 0);
    EXPECT_EQ(run({"get", "a"}).out, "there\n");
    EXPECT_TRUE(std::filesystem::exists(other + "/tmp/cache/config"));
    EXPECT_EQ(run({"--root=" + device.root(), "get", "a"}).out, "here\n");
}

TEST_F(QorctlValues, ARootThatIsNoFolderIsMisuse)
{
    EXPECT_TRUE(run({"--root", path("/none"), "get", "a"}).refused(2, path("/none")));
    const std::string file = write("/etc/file", "");
    EXPECT_TRUE(run({"--root", file, "get", "a"}).refused(2, file));
}

TEST_F(QorctlValues, AStoreThatCannotBeOpenedIsNamed)
{
    std::filesystem::remove_all(path("/tmp"));
    EXPECT_TRUE(run({"set", "a=1"}).refused(1, path("/tmp/cache")));
    EXPECT_TRUE(run({"get", "a"}).refused(1, path("/tmp/cache")));
    EXPECT_TRUE(run({"export"}).refused(1, path("/tmp/cache")));
}

TEST_F(QorctlValues, WrongUsageIsStatusTwoAndNamesTheArgument)
{
    EXPECT_TRUE(run({}).refused(2, "no verb"));
    EXPECT_TRUE(run({"bogus"}).refused(2, "bogus"));
    EXPECT_TRUE(run({"get"}).refused(2, "KEY"));
    EXPECT_TRUE(run({"get", "a", "surplus"}).refused(2, "surplus"));
    EXPECT_TRUE(run({"get", "a", "--", "[b]"}).refused(2, ": [b]"));
    EXPECT_TRUE(run({"--", "get", "a"}).refused(2, "no such verb: get"));
    EXPECT_TRUE(run({"get", "a", "--wrong"}).refused(2, "--wrong"));
    EXPECT_TRUE(run({"--wrong", "get", "a"}).refused(2, "--wrong"));
    EXPECT_TRUE(run({"set"}).refused(2, "KEY=VALUE"));
    EXPECT_TRUE(run({"set", "a=1", "--json"}).refused(2, "--json"));
    EXPECT_TRUE(run({"--root"}).refused(2, "--root"));
    EXPECT_EQ(run({"export"}).out, "");
}

TEST_F(QorctlValues, AMessageStaysOnOneLineWhateverItNames)
{
    EXPECT_TRUE(run({"set", "a\nb"}).refused(2, "a?b"));
    EXPECT_TRUE(run({"get", "a\nb"}).refused(1, "a?b"));
}

TEST_F(QorctlValues, TheHelpOfEveryVerbHasAnExampleOfIt)
{
    const std::vector<std::string> verbs{"get",    "set",        "unset",       "import",
                                         "export", "commit",     "announce",    "id",
                                         "status", "components", "subscribers", "explain"};
    const std::string overview = run({"--help"}).out;
    for (const std::string &verb : verbs) {
        EXPECT_NE(overview.find("\n  " + verb + " "), std::string::npos) << verb;
        const Outcome help = run({verb, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.err, "");
        const std::size_t example = help.out.find("Example:\n");
        ASSERT_NE(example, std::string::npos) << verb;
        EXPECT_NE(help.out.find("qorctl " + verb, example), std::string::npos) << verb;
    }
}

TEST_F(QorctlValues, OutputThatCannotBeWrittenIsAFailure)
{
    run({"set", "a=1"});
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    out.setstate(std::ios::badbit);
    EXPECT_EQ(run_qorctl({"qorctl", "get", "a"}, in, out, err), 1);
    EXPECT_EQ(err.str(), "qorctl: cannot write to standard output\n");
}

} // namespace

} // namespace qorcfg
