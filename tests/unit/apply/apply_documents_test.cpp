#include "support/apply_test.h"

#include <sys/stat.h>
#include <unistd.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;
using ApplyDocumentsTest = test::ApplyTest;

TEST_F(ApplyDocumentsTest, ADocumentOfEveryKindIsAppliedAndTheBatchRemoved)
{
    expect_applied(R"({"interface":{"lan":{"proto":"static","dns":["1","2"]},"wan":{}},
                       "dev":[{"alias-name":true},{"a":"1"},{"a":"2","n":5,"on":true}],
                       "rule":[{"alias-name":false},{"p":"1"},{"p":"2","l":["x"]}]})");
    EXPECT_EQ(package(), R"(
config interface 'lan'
	option proto 'static'
	list dns '1'
	list dns '2'

config interface 'wan'

config dev 'dev_0'
	option a '1'

config dev 'dev_1'
	option a '2'
	option n '5'
	option on 'true'

config rule
	option p '1'

config rule
	option p '2'
	list l 'x'

)");
    struct stat info {};
    ASSERT_EQ(::stat(device.path("/tmp/etc/config/net").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600U);
}

TEST_F(ApplyDocumentsTest, ArraysChangeMoveShrinkAndGrow)
{
    for (const char *marker : {"false", "true"}) {
        const auto with = [&](const std::string &elements) {
            expect_applied((R"({"rule":[{"alias-name":)" + std::string(marker) + "}" +
                            (elements.empty() ? "" : "," + elements) + "]}")
                               .c_str(),
                           marker);
        };
        with(R"({"p":"1"},{"p":"2"},{"p":"3"},{"p":"4"})");
        with(R"({"p":"1"},{"p":"x"},{"p":"3"},{"p":"y"})"); // changed
        with(R"({"p":"x"},{"p":"1"},{"p":"y"},{"p":"3"})"); // moved
        with(R"({"p":"1"},{"p":"y"},{"p":"3"})");           // one taken out
        with(R"({"p":"y"})");
        with(R"({"p":"0"},{"p":"y"},{"p":"2"},{"p":"3"},{"p":"4"})");
        with("");
        with(R"({"p":"9"})");
    }
}

TEST_F(ApplyDocumentsTest, SectionsWithoutOptionsTakeTheirPlaceToo)
{
    expect_applied(R"({"rule":[{"alias-name":false},{"p":"1"},{"p":"2"},{"p":"3"}]})");
    expect_applied(R"({"rule":[{"alias-name":false},{"p":"1"},{},{"p":"3"}]})");
    expect_applied(R"({"rule":[{"alias-name":false},{},{"p":"new"},{"p":"3"},{}]})");
    expect_applied(R"({"rule":[{"alias-name":false},{"p":"0"},{},{}]})");
}

TEST_F(ApplyDocumentsTest, AChangedNamedSectionKeepsItsPlace)
{
    expect_applied(R"({"t":{"a":{"v":"1"},"b":{"v":"2","w":"3"},"c":{"v":"3"}}})");
    expect_applied(R"({"t":{"a":{"v":"1"},"b":{"v":"9"},"c":{"v":"3"}}})");
    EXPECT_EQ(package(), "\nconfig t 'a'\n\toption v '1'\n\nconfig t 'b'\n\toption v '9'\n\n"
                         "config t 'c'\n\toption v '3'\n\n");
    expect_applied(R"({"t":{"a":{"v":"1"}},"other":{"b":{"x":"1"}}})");
}

TEST_F(ApplyDocumentsTest, ValuesArriveByteForByte)
{
    const Lines values{
        " leading and trailing ",
        "it's \"quoted\"",
        "''",
        "# no comment",
        "a;b; c",
        "a=b==",
        "back\\slash \\n \\",
        "\ttab\x7f",
        "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80",
        "\xff\xfe broken \xc3(",
        "$(reboot) `reboot` ${x} %s",
        std::string(20000, 'x'),
    };
    Document doc;
    auto named = doc.section("t", "s");
    auto listed = doc.section("t", "lists");
    listed.add_list("all", values);
    for (std::size_t i = 0; i < values.size(); ++i) {
        named.add(std::string("o").append(std::to_string(i)).c_str(), values[i]);
        doc.append("rule", anonymous_sections).add("v", values[i]).add_list("l", {&values[i], 1});
        doc.append("num", numbered_sections).add("v", values[i]);
    }
    commit_uci_section(doc, "net", "part", 0, 1);
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(test::applied_text(device, "net", {doc.get()}), test::wanted_text({doc.get()}));
    EXPECT_EQ(test::list_items(device, "net", "lists", "all"), values);
}

TEST_F(ApplyDocumentsTest, AnEmptyValueRemovesItsOptionAndAnEmptyItemIsKept)
{
    set_package("config t 's'\n\toption mac 'x'\n");
    batch("uci_update1.net.part", "set net.s.mac=\nset net.s.none=\nadd_list net.s.l=\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(package(), "\nconfig t 's'\n\tlist l ''\n\n");
}

TEST_F(ApplyDocumentsTest, OptionGranularityTouchesOnlyWhatChanged)
{
    const auto change = [&](const char *text) {
        commit_uci_options(Document::parse(text), "net", "part", 0, ++job);
        EXPECT_TRUE(apply_job(job)) << errors;
    };
    change(R"({"t":{"s":{"a":"1","b":"2","l":["x","y"]},"gone":{"c":"3"}}})");
    EXPECT_EQ(package(), "\nconfig t 's'\n\toption a '1'\n\toption b '2'\n\tlist l 'x'\n"
                         "\tlist l 'y'\n\nconfig t 'gone'\n\toption c '3'\n\n");
    change(R"({"t":{"s":{"b":"9","l":["x","y"]}}})");
    EXPECT_EQ(package(), "\nconfig t 's'\n\tlist l 'x'\n\tlist l 'y'\n\toption b '9'\n\n"
                         "config t 'gone'\n\n");
}

TEST_F(ApplyDocumentsTest, TheFullWriteReplacesWhatTheLastOneLeft)
{
    const auto full = [&](const char *text) {
        const Document doc = Document::parse(text);
        commit_uci_section(doc, "net", "part", 1, 0);
        EXPECT_TRUE(apply_startup()) << errors;
        EXPECT_EQ(test::applied_text(device, "net", {doc.get()}), test::wanted_text({doc.get()}));
    };
    full(R"({"rule":[{"alias-name":false},{"p":"1"},{"p":"2"},{"p":"3"}],"t":{"s":{"a":"1"}}})");
    full(R"({"rule":[{"alias-name":false},{"p":"2"}],"t":{"s":{"b":"1"},"u":{}}})");
    full(R"({"num":[{"alias-name":true},{"p":"2"}]})");
    full(R"({"rule":[{"alias-name":false},{"p":"1"},{"p":"2"}]})");
    // Two passes before anybody applies the first.
    commit_uci_section(Document::parse(R"({"rule":[{"alias-name":false},{"p":"9"}]})"), "net",
                       "part", 1, 0);
    full(R"({"rule":[{"alias-name":false},{"p":"7"},{"p":"8"}]})");
}

TEST_F(ApplyDocumentsTest, IndexesOfDeletionsMeanThePlacesBeforeTheFirstOfThem)
{
    set_package("config r\n\toption p '0'\nconfig r\n\toption p '1'\nconfig r 'named'\n"
                "\toption p '2'\nconfig r\n\toption p '3'\n");
    batch("uci_update1.net.part", "delete net.@r[0]\ndelete net.@r[1]\ndelete net.@r[7]\n"
                                  "delete net.nothing\ndel net.nothing.x\ndel net.named.none\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(package(), "\nconfig r 'named'\n\toption p '2'\n\nconfig r\n\toption p '3'\n\n");
}

TEST_F(ApplyDocumentsTest, AnEmptyIndexMeansTheFirstThatIsLeft)
{
    set_package("config r 'a'\nconfig r\n\toption p '1'\nconfig r\n\toption p '2'\nconfig r\n"
                "\toption p '3'\n");
    batch("uci_update1.net.part",
          "delete net.a\ndelete net.@r[1]\ndelete net.@r[]\ndelete net.@q[]\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(package(), "\nconfig r\n\toption p '3'\n\n");
}

TEST_F(ApplyDocumentsTest, AnAddedSectionGoesToThePlaceThatItsLinesName)
{
    set_package("config r\n\toption p 'a'\nconfig other\nconfig r 'named'\nconfig r\n"
                "\toption p 'd'\n");
    batch("uci_update1.net.part", "add net r\nset net.@r[2].p=c\nset net.@r[2].q=1\n"
                                  "add net r\nset net.@r[0].p=first\nadd net r\n"
                                  "add net r\nset net.@r[99].p=last\nset net.@r[1].q=old\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(package(), "\nconfig r\n\toption p 'first'\n\nconfig r\n\toption p 'a'\n"
                         "\toption q 'old'\n\nconfig other\n\nconfig r 'named'\n\n"
                         "config r\n\toption p 'c'\n\toption q '1'\n\n"
                         "config r\n\toption p 'd'\n\nconfig r\n\nconfig r\n\toption p 'last'\n\n");
}

TEST_F(ApplyDocumentsTest, AnAddedSectionKeepsAllItsOptionsWhereThePackageIsShorterThanThought)
{
    set_package("config r\n\toption p 'a'\n");
    batch("uci_update1.net.part", "add net r\nset net.@r[5].p=b\nset net.@r[5].q=1\n"
                                  "add_list net.@r[5].l=x\nadd net r\nset net.@r[6].p=c\n"
                                  "set net.@r[6].q=\nset net.@r[6].r=2\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(package(), "\nconfig r\n\toption p 'a'\n\nconfig r\n\toption p 'b'\n"
                         "\toption q '1'\n\tlist l 'x'\n\nconfig r\n\toption p 'c'\n"
                         "\toption r '2'\n\n");
}

TEST_F(ApplyDocumentsTest, PlacesFollowASectionThatChangesItsType)
{
    set_package("config r\n\toption p 'a'\nconfig r 's'\nconfig u\n\toption p 'b'\n");
    batch("uci_update1.net.part", "set net.@r[1].o=1\nset net.s=u\nset net.@u[0].q=1\n"
                                  "add net u\nset net.@u[1].p=new\nset net.@u[2].q=3\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(package(), "\nconfig r\n\toption p 'a'\n\nconfig u 's'\n\toption o '1'\n"
                         "\toption q '1'\n\nconfig u\n\toption p 'new'\n\nconfig u\n"
                         "\toption p 'b'\n\toption q '3'\n\n");
}

TEST_F(ApplyDocumentsTest, AFileHoldsOneTransactionAfterTheOther)
{
    for (const char *elements : {R"({"p":"1"},{"p":"2"},{"p":"3"})", R"({"p":"1"},{"p":"x"})",
                                 R"({"p":"y"})", R"({"p":"y"},{"p":"z"})", R"({"p":"z"})"}) {
        const std::string text = std::string(R"({"r":[{"alias-name":false},)") + elements + "]}";
        commit_uci_section(Document::parse(text), "net", "part", 0, 4);
    }
    EXPECT_TRUE(apply_job(4)) << errors;
    EXPECT_EQ(package(), "\nconfig r\n\toption p 'z'\n\n");
}

TEST_F(ApplyDocumentsTest, OwnerModeAndLinkOfAPackageFileStay)
{
    device.write("/flash/net", "config t 's'\n");
    ASSERT_EQ(::symlink("../../../flash/net", device.path("/tmp/etc/config/net").c_str()), 0);
    ASSERT_EQ(::chmod(device.path("/flash/net").c_str(), 0640), 0);
    const bool root = ::geteuid() == 0;
    if (root) {
        ASSERT_EQ(::chown(device.path("/flash/net").c_str(), 12, 34), 0);
    }
    batch("uci_update1.net.part", "set net.s.a=1\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    struct stat info {};
    ASSERT_EQ(::lstat(device.path("/tmp/etc/config/net").c_str(), &info), 0);
    EXPECT_TRUE(S_ISLNK(info.st_mode));
    ASSERT_EQ(::stat(device.path("/flash/net").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
    EXPECT_EQ(info.st_uid, root ? 12U : ::geteuid());
    EXPECT_EQ(info.st_gid, root ? 34U : ::getegid());
    EXPECT_EQ(device.read("/flash/net"), "\nconfig t 's'\n\toption a '1'\n\n");
    EXPECT_EQ(device.names_in("/flash"), Lines{"net"});
}

TEST_F(ApplyDocumentsTest, StagedChangesOfOtherProgramsStayStaged)
{
    set_package("config t 's'\n");
    device.write("/tmp/.uci/net", "net.s.theirs='1'\n");
    batch("uci_update1.net.part", "set net.s.ours=1\n");
    EXPECT_TRUE(apply_job(1)) << errors;
    EXPECT_EQ(package(), "\nconfig t 's'\n\toption ours '1'\n\n");
    EXPECT_EQ(device.read("/tmp/.uci/net"), "net.s.theirs='1'\n");
}

TEST_F(ApplyDocumentsTest, APreviewPrintsWhatWouldChangeAndChangesNothing)
{
    const std::string before = "config t 's'\n\toption a '1'\n\toption b '2'\n";
    set_package(before);
    batch("uci_update1.net.part", "delete net.s\nset net.s=t\nset net.s.a=1\n"
                                  "add_list net.s.l=x\nadd_list net.s.l=it's\nadd net r\n");
    batch("uci_update2.net.part", "set net.@r[0].c=3\nset net.none.x=1\n");
    device.write("/tmp/cache/qorcfg/nvramcfg.d/nvram_update2.wlan", "set a.b=1\n");
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_FALSE(preview_batches({}, out, err));
    EXPECT_EQ(out.str(), "- net.s.b='2'\n+ net.s.l='x' 'it'\\''s'\n+ net.@r[0]=r\n"
                         "+ net.@r[0].c='3'\nwlan: set a.b=1\n");
    EXPECT_EQ(err.str(),
              device.path(folder) + "uci_update2.net.part:2: there is no section none\n");
    EXPECT_EQ(package(), before);
    EXPECT_EQ(files(), (Lines{"uci_update1.net.part", "uci_update2.net.part"}));
    EXPECT_EQ(device.names_in("/tmp/cache/qorcfg/nvramcfg.d"), Lines{"nvram_update2.wlan"});
}

} // namespace
} // namespace qorcfg
