#include "support/qorctl_test.h"

namespace qorcfg {

namespace {

class QorctlExchange : public QorctlTest {
protected:
    /// A file with these lines is refused as a whole, for this reason in line 3.
    void expect_bad_line(const std::string &line, const std::string &reason)
    {
        const std::string file = write("/etc/settings", "good=1\n\n" + line + "\nlast=1\n");
        EXPECT_TRUE(run({"import", file}).refused(1, file + ":3: " + reason));
        EXPECT_EQ(run({"export"}).out, "");
        EXPECT_TRUE(marked().empty());
    }
};

std::string every_byte()
{
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

TEST_F(QorctlExchange, LinesOfAFileAreSetAndCommentsAndEmptyLinesSkipped)
{
    const std::string file = write("/etc/settings", "# comment=1\n\nb=2\na=x=y\nempty=\nb=3");
    EXPECT_EQ(run({"import", file}).status, 0);
    EXPECT_EQ(run({"export"}).out, "a=x=y\nb=3\nempty=\n");
    EXPECT_EQ(marked(), (std::vector<std::string>{"a", "b"}));
}

TEST_F(QorctlExchange, StandardInputIsReadForAMinus)
{
    EXPECT_EQ(run({"import", "-", "--no-announce"}, "a=1\n").status, 0);
    EXPECT_EQ(run({"get", "a"}).out, "1\n");
    EXPECT_TRUE(marked().empty());
    EXPECT_TRUE(run({"import", "-"}, "b\n").refused(1, "-:1: no \"=\""));
}

TEST_F(QorctlExchange, EscapesStandForLineFeedCarriageReturnAndBackslash)
{
    EXPECT_EQ(run({"import", "-"}, "a=1\\n2\\r3\\\\n\n").status, 0);
    EXPECT_EQ(run({"get", "a"}).out, "1\n2\r3\\n\n");
    EXPECT_EQ(run({"export"}).out, "a=1\\n2\\r3\\\\n\n");
}

TEST_F(QorctlExchange, WhatWasExportedIsImportedByteForByte)
{
    const std::string largest(store_value_limit, '\\');
    const std::string odd_key = "\t\\key\r \x80\xff";
    ASSERT_EQ(store_write({{"all", every_byte()}, {"big", largest}, {odd_key, "\n"}, {"e", ""}},
                          Marking::mark),
              "");
    std::vector<Setting> before;
    ASSERT_EQ(store_settings("", before), "");
    const Outcome exported = run({"export"});
    ASSERT_EQ(exported.status, 0);

    ASSERT_EQ(run({"unset", "all", "big", odd_key, "e"}).status, 0);
    ASSERT_EQ(run({"export"}).out, "");
    EXPECT_EQ(run({"import", "-"}, exported.out).err, "");
    std::vector<Setting> after;
    ASSERT_EQ(store_settings("", after), "");
    ASSERT_EQ(after.size(), 4u);
    for (std::size_t i = 0; i < after.size(); ++i) {
        EXPECT_EQ(after[i].key, before[i].key);
        EXPECT_TRUE(after[i].value == before[i].value) << after[i].key;
    }
}

TEST_F(QorctlExchange, ExportTakesThePrefixAndSortsByBytes)
{
    run({"set", "b2=2", "b10=1", "a=0", "B=3", "c=4"});
    EXPECT_EQ(run({"export"}).out, "B=3\na=0\nb10=1\nb2=2\nc=4\n");
    EXPECT_EQ(run({"export", "b"}).out, "b10=1\nb2=2\n");
    EXPECT_EQ(run({"export", "none"}).out, "");
}

TEST_F(QorctlExchange, ExportPrintsOneObjectAsJson)
{
    run({"set", "b=2\n\"", "a=1"});
    EXPECT_EQ(json_of(run({"export", "--json"})), R"({"a":"1","b":"2\n\""})");
    EXPECT_EQ(json_of(run({"export", "none", "--json"})), "{}");
}

TEST_F(QorctlExchange, AKeyThatNoLineCanCarryIsNamedAndTheOthersAreExported)
{
    ASSERT_EQ(store_write({{"a", "1"}, {"b=c", "2"}, {"z", "3"}}, Marking::mark), "");
    Outcome exported = run({"export"});
    EXPECT_EQ(exported.status, 1);
    EXPECT_EQ(exported.out, "a=1\nz=3\n");
    EXPECT_NE(exported.err.find("b=c"), std::string::npos);
    EXPECT_EQ(json_of(run({"export", "--json"})), R"({"a":"1","b=c":"2","z":"3"})");
    for (const char *key : {"#a", "a\nb"}) {
        ASSERT_EQ(store_write({{"b=c", std::nullopt}, {key, "1"}}, Marking::leave), "");
        EXPECT_EQ(run({"export"}).status, 1) << key;
        ASSERT_EQ(store_write({{key, std::nullopt}}, Marking::leave), "");
    }
    EXPECT_EQ(run({"export"}).status, 0);
}

TEST_F(QorctlExchange, ALineWithoutEqualsSignRefusesTheFile)
{
    expect_bad_line("bad", "no \"=\"");
    expect_bad_line("   ", "no \"=\"");
}

TEST_F(QorctlExchange, ALineWithoutKeyRefusesTheFile)
{
    expect_bad_line("=1", "no key");
}

TEST_F(QorctlExchange, AnOverlongKeyRefusesTheFile)
{
    expect_bad_line(std::string(store_key_limit + 1, 'k') + "=1", "key longer than 511");
}

TEST_F(QorctlExchange, AnOverlongValueRefusesTheFile)
{
    expect_bad_line("a=" + std::string(store_value_limit + 1, 'v'), "value longer than 65536");
}

TEST_F(QorctlExchange, AnUnknownEscapeRefusesTheFile)
{
    expect_bad_line("a=\\t", "bad escape");
    expect_bad_line("a=1\\", "bad escape");
}

TEST_F(QorctlExchange, ANulByteRefusesTheFile)
{
    expect_bad_line(std::string("a=1\0002", 6), "NUL byte");
    expect_bad_line(std::string("a\0b=1", 5), "NUL byte");
}

TEST_F(QorctlExchange, AFileThatCannotBeReadIsNamed)
{
    EXPECT_TRUE(run({"import", path("/none")}).refused(1, path("/none")));
    EXPECT_TRUE(run({"import", path("/etc")}).refused(1, path("/etc")));
}

} // namespace

} // namespace qorcfg
