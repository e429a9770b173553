#include "engine/uci_commit.h"

#include "core/base/globals.h"
#include "engine/transaction.h"
#include "support/device_root.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using test::split_lines;
using Lines = std::vector<std::string>;

class UciCommitTest : public testing::Test {
protected:
    /// One call of `commit_uci_section` in incremental mode; the lines that it added.
    Lines change(const char *doc, int job = 1)
    {
        return added(job, [&] { commit_uci_section(Document::parse(doc), "net", "part", 0, job); });
    }
    Lines change_options(const char *doc, int job = 1)
    {
        return added(job, [&] { commit_uci_options(Document::parse(doc), "net", "part", 0, job); });
    }
    /// One call in start-up mode; the lines that it added.
    Lines full(const char *doc)
    {
        const Lines before = device_.startup_lines("net", "part");
        commit_uci_section(Document::parse(doc), "net", "part", 1, 77);
        const Lines all = device_.startup_lines("net", "part");
        return {all.begin() + static_cast<std::ptrdiff_t>(before.size()), all.end()};
    }
    std::string document() const { return device_.document("net", "part"); }
    UciCommitTest() { pth_count = 0; }

    DeviceRoot device_;

private:
    template <typename Write> Lines added(int job, Write write)
    {
        const Lines before = device_.lines(job, "net", "part");
        write();
        const Lines all = device_.lines(job, "net", "part");
        return {all.begin() + static_cast<std::ptrdiff_t>(before.size()), all.end()};
    }
};

constexpr const char *static_lan = R"({"interface":{"lan":{"proto":"static","ipaddr":"1"}}})";
constexpr const char *moved_lan = R"({"interface":{"lan":{"proto":"static","ipaddr":"2"}}})";

TEST_F(UciCommitTest, AChangedNamedSectionIsDeletedWholeAndWrittenAgain)
{
    change(static_lan);
    EXPECT_EQ(change(moved_lan), (Lines{"delete net.lan", "set net.lan=interface",
                                        "set net.lan.proto=static", "set net.lan.ipaddr=2"}));
}

TEST_F(UciCommitTest, OptionGranularityTouchesOnlyTheChangedOption)
{
    change_options(static_lan);
    EXPECT_EQ(change_options(moved_lan),
              (Lines{"del net.lan.ipaddr", "set net.lan=interface", "set net.lan.ipaddr=2"}));
}

TEST_F(UciCommitTest, AShrunkAnonymousArrayLosesItsLastSection)
{
    change(R"({"rule":[{"alias-name":false},{"a":"1"},{"a":"2"},{"a":"3"}]})");
    EXPECT_EQ(change(R"({"rule":[{"alias-name":false},{"a":"1"},{"a":"2"}]})"),
              Lines{"delete net.@rule[2]"});
}

TEST_F(UciCommitTest, AChangedAnonymousSectionIsDeletedAndAddedAtItsIndex)
{
    change(R"({"rule":[{"alias-name":false},{"a":"1"},{"a":"2"}]})");
    EXPECT_EQ(change(R"({"rule":[{"alias-name":false},{"a":"1"},{"a":"9","b":["x","y"]}]})"),
              (Lines{"delete net.@rule[1]", "add net rule", "set net.@rule[1].a=9",
                     "add_list net.@rule[1].b=x", "add_list net.@rule[1].b=y"}));
}

TEST_F(UciCommitTest, NumberedSectionsAreNamedByTypeAndPosition)
{
    EXPECT_EQ(change(R"({"dev":[{"alias-name":true},{"a":"1"},{"a":"2","l":["p","q"]}]})"),
              (Lines{"set net.dev_0=dev", "set net.dev_0.a=1", "set net.dev_1=dev",
                     "set net.dev_1.a=2", "add_list net.dev_1.l=p", "add_list net.dev_1.l=q"}));
    EXPECT_EQ(
        change(R"({"dev":[{"alias-name":true},{"a":"1"},{"a":"3"},{}]})"),
        (Lines{"delete net.dev_1", "set net.dev_1=dev", "set net.dev_1.a=3", "set net.dev_2=dev"}));
    EXPECT_EQ(change(R"({"dev":[{"alias-name":true},{"a":"1"}]})"),
              (Lines{"delete net.dev_1", "delete net.dev_2"}));
}

TEST_F(UciCommitTest, ListItemsTravelInTheirOrder)
{
    EXPECT_EQ(change(R"({"t":{"s":{"l":["a","b"],"e":[]}}})"),
              (Lines{"set net.s=t", "add_list net.s.l=a", "add_list net.s.l=b"}));
}

TEST_F(UciCommitTest, AnOtherOrderOfOptionsWritesTheSectionAgain)
{
    change(R"({"t":{"s":{"a":"1","b":"2"}}})");
    EXPECT_EQ(change(R"({"t":{"s":{"b":"2","a":"1"}}})"),
              (Lines{"delete net.s", "set net.s=t", "set net.s.b=2", "set net.s.a=1"}));
}

TEST_F(UciCommitTest, NumbersAndBooleansAreWrittenAsText)
{
    EXPECT_EQ(change(R"({"t":{"s":{"n":5,"on":true,"off":false}}})"),
              (Lines{"set net.s=t", "set net.s.n=5", "set net.s.on=true", "set net.s.off=false"}));
}

TEST_F(UciCommitTest, AllDeletionLinesPrecedeAllSettingLinesInMemberOrder)
{
    change(R"({"b":{"x":{"v":"1"}},"a":[{"alias-name":true},{"v":"1"}],"c":{"gone":{}}})");
    EXPECT_EQ(change(R"({"a":[{"alias-name":true},{"v":"2"}],"b":{"x":{"v":"2"}}})"),
              (Lines{"delete net.x", "delete net.a_0", "delete net.gone", "set net.a_0=a",
                     "set net.a_0.v=2", "set net.x=b", "set net.x.v=2"}));
}

TEST_F(UciCommitTest, TheFirstCallWritesTheWholeDocumentAsAdditions)
{
    EXPECT_EQ(change(static_lan),
              (Lines{"set net.lan=interface", "set net.lan.proto=static", "set net.lan.ipaddr=1"}));
    EXPECT_EQ(document(), static_lan);
}

TEST_F(UciCommitTest, AnEqualDocumentStillCreatesItsEmptyBatchFile)
{
    change(static_lan, 1);
    const std::string snapshot = device_.read("/tmp/cache/qorcfg/ucicfg.d/uci-net-part.json");
    EXPECT_EQ(change(static_lan, 2), Lines{});
    EXPECT_TRUE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update2.net.part"));
    EXPECT_EQ(device_.read("/tmp/cache/qorcfg/ucicfg.d/uci-net-part.json"), snapshot);
}

TEST_F(UciCommitTest, SeveralWritesOfOneJobGatherInOneFile)
{
    commit_uci_section(Document::parse(static_lan), "net", "part", 0, 5);
    commit_uci_section(Document::parse(moved_lan), "net", "part", 0, 5);
    EXPECT_EQ(device_.lines(5, "net", "part").size(), 7U);
}

TEST_F(UciCommitTest, TheSnapshotIsPrettyJsonForTheOwnerOnly)
{
    change(R"({"t":{"s":{"a":"1"}}})");
    const std::string file = "/tmp/cache/qorcfg/ucicfg.d/uci-net-part.json";
    EXPECT_EQ(device_.read(file), "{\n  \"t\":{\n    \"s\":{\n      \"a\":\"1\"\n    }\n  }\n}");
    for (const std::string &name :
         {file, std::string("/tmp/cache/qorcfg/ucicfg.d/uci_update1.net.part")}) {
        struct stat info {};
        ASSERT_EQ(::stat(device_.path(name).c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 07777, 0600U) << name;
    }
}

TEST_F(UciCommitTest, AStartUpWriteMakesTheMissingTargetFile)
{
    full(static_lan);
    EXPECT_TRUE(device_.exists("/tmp/etc/config/net"));
    EXPECT_EQ(device_.read("/tmp/etc/config/net"), "");
    device_.write("/tmp/etc/config/net", "config x\n");
    full(static_lan);
    EXPECT_EQ(device_.read("/tmp/etc/config/net"), "config x\n");
}

TEST_F(UciCommitTest, AnIncrementalWriteMakesNoTargetFile)
{
    change(static_lan);
    EXPECT_FALSE(device_.exists("/tmp/etc/config/net"));
}

TEST_F(UciCommitTest, ATargetFileThatCannotBeMadeIsLoggedAndTheWriteGoesOn)
{
    std::filesystem::remove_all(device_.path("/tmp/etc/config"));
    EXPECT_EQ(full(static_lan).size(), 3U);
    EXPECT_EQ(device_.log(), Lines{"create /tmp/etc/config/net failed!"});
}

TEST_F(UciCommitTest, AStartUpWriteDeletesTheWholeOldDocumentFirst)
{
    full(R"({"n":{"a":{"v":"1"},"b":{}},"k":[{"alias-name":true},{},{}],
             "m":[{"alias-name":false},{},{}],"odd":"text"})");
    EXPECT_EQ(full(R"({"n":{"a":{"v":"1"}}})"),
              (Lines{"delete net.a", "delete net.b", "delete net.k_0", "delete net.k_1",
                     "delete net.@m[]", "delete net.@m[]", "set net.a=n", "set net.a.v=1"}));
}

TEST_F(UciCommitTest, ADamagedSnapshotCountsAsAbsentAndTheLogSaysSo)
{
    change(static_lan);
    device_.write("/tmp/cache/qorcfg/ucicfg.d/uci-net-part.json", "{\"interface\":{\"lan\":");
    EXPECT_EQ(change(moved_lan, 2),
              (Lines{"set net.lan=interface", "set net.lan.proto=static", "set net.lan.ipaddr=2"}));
    ASSERT_EQ(device_.log().size(), 1U);
    EXPECT_NE(device_.log()[0].find("uci-net-part.json is damaged"), std::string::npos);
    EXPECT_EQ(document(), moved_lan);
}

TEST_F(UciCommitTest, ASnapshotCutOrFlippedAnywhereIsTheDocumentOrAbsent)
{
    change(static_lan);
    const std::string file = "/tmp/cache/qorcfg/ucicfg.d/uci-net-part.json";
    const std::string whole = device_.read(file);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        device_.write(file, whole.substr(0, i));
        change(moved_lan, 2);
        EXPECT_EQ(document(), moved_lan) << "cut at " << i;
        std::string flipped = whole;
        flipped[i] = static_cast<char>(flipped[i] ^ 0xff);
        device_.write(file, flipped);
        change(moved_lan, 2);
        EXPECT_EQ(document(), moved_lan) << "flipped at " << i;
    }
}

TEST_F(UciCommitTest, ABatchFileThatCannotBeOpenedLeavesTheSnapshot)
{
    change(static_lan);
    std::filesystem::create_directory(
        device_.path("/tmp/cache/qorcfg/ucicfg.d/uci_update2.net.part"));
    testing::internal::CaptureStdout();
    commit_uci_section(Document::parse(moved_lan), "net", "part", 0, 2);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Failed to open /tmp/cache/qorcfg/ucicfg.d/uci_update\n");
    EXPECT_EQ(document(), static_lan);
    EXPECT_EQ(change(moved_lan, 3).size(), 4U);
}

TEST_F(UciCommitTest, LinesArePrintedOnStandardOutputToo)
{
    testing::internal::CaptureStdout();
    const Lines lines = change(static_lan);
    EXPECT_EQ(split_lines(testing::internal::GetCapturedStdout()), lines);
}

TEST_F(UciCommitTest, AFullDiskLosesNothingOnceSpaceIsBack)
{
    change(static_lan);
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    ::signal(SIGXFSZ, SIG_IGN);
    // Enough for the new snapshot, too little for the lines behind it.
    device_.write("/tmp/cache/qorcfg/ucicfg.d/uci_update2.net.part", std::string(200, '#') + "\n");
    const rlimit small{210, old.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    commit_uci_section(Document::parse(moved_lan), "net", "part", 0, 2);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
    EXPECT_EQ(device_.read("/tmp/cache/qorcfg/ucicfg.d/uci_update2.net.part").size(), 201U);
    EXPECT_EQ(document(), static_lan);
    EXPECT_FALSE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci-net-part.json.new"));
    EXPECT_EQ(change(moved_lan, 3), (Lines{"delete net.lan", "set net.lan=interface",
                                           "set net.lan.proto=static", "set net.lan.ipaddr=2"}));
}

TEST_F(UciCommitTest, LinesWhoseSnapshotCannotBeReplacedAreTakenBack)
{
    change(static_lan);
    const std::string snapshot = "/tmp/cache/qorcfg/ucicfg.d/uci-net-part.json";
    std::filesystem::rename(device_.path(snapshot), device_.path("/tmp/kept"));
    device_.write(snapshot + "/in_the_way", "");
    device_.write("/tmp/cache/qorcfg/ucicfg.d/uci_update2.net.part", "set net.x=t\n");
    testing::internal::CaptureStdout();
    EXPECT_EQ(change(moved_lan, 2), Lines{});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    std::filesystem::remove_all(device_.path(snapshot));
    std::filesystem::rename(device_.path("/tmp/kept"), device_.path(snapshot));
    EXPECT_EQ(change(moved_lan, 2), (Lines{"delete net.lan", "set net.lan=interface",
                                           "set net.lan.proto=static", "set net.lan.ipaddr=2"}));
}

TEST_F(UciCommitTest, ALineThatWasCutOffDoesNotSwallowTheNextOne)
{
    const std::string batch = "/tmp/cache/qorcfg/ucicfg.d/uci_update1.net.part";
    device_.write(batch, "set net.a=t\nset net.a.b=cut o");
    commit_uci_section(Document::parse(static_lan), "net", "part", 0, 1);
    EXPECT_EQ(device_.read(batch), "set net.a=t\nset net.lan=interface\n"
                                   "set net.lan.proto=static\nset net.lan.ipaddr=1\n");
    device_.write(batch, "set net.a=");
    commit_uci_section(Document::parse(static_lan), "net", "part", 0, 1);
    EXPECT_EQ(device_.read(batch), "");
}

TEST_F(UciCommitTest, AStartUpWriteAfterACutOffOneDeletesTheSectionsOfBoth)
{
    full(R"({"n":{"a":{}},"k":[{"alias-name":true},{}],"m":[{"alias-name":false},{}]})");
    device_.write("/tmp/cache/qorcfg/ucicfg.d/uci-net-part.json.new",
                  R"({"n":{"a":{},"b":{}},"k":[{"alias-name":true},{},{}],)"
                  R"("m":[{"alias-name":false},{},{}],"q":{"c":{}}})");
    EXPECT_EQ(full(R"({"n":{"a":{}}})"),
              (Lines{"delete net.a", "delete net.k_0", "delete net.@m[]", "delete net.b",
                     "delete net.k_1", "delete net.@m[]", "delete net.c", "set net.a=n"}));
    EXPECT_FALSE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci-net-part.json.new"));
}

TEST_F(UciCommitTest, AHalfWrittenNewSnapshotChangesNothing)
{
    full(R"({"n":{"a":{}}})");
    device_.write("/tmp/cache/qorcfg/ucicfg.d/uci-net-part.json.new", R"({"n":{"b")");
    EXPECT_EQ(full(R"({"n":{"a":{}}})"), (Lines{"delete net.a", "set net.a=n"}));
}

TEST_F(UciCommitTest, AnOlderJobDoesNotReplaceWhatANewerOneWrote)
{
    change(static_lan, 8);
    EXPECT_EQ(change(moved_lan, 7), Lines{});
    EXPECT_TRUE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update7.net.part"));
    EXPECT_EQ(document(), static_lan);
    EXPECT_EQ(change(moved_lan, 9).size(), 4U);
}

TEST_F(UciCommitTest, JobOneIsNewerThanJob4097)
{
    change(static_lan, 4097);
    pth_count = 1;
    EXPECT_EQ(change(moved_lan, 1).size(), 4U);
    EXPECT_EQ(change(static_lan, 4097), Lines{});
}

TEST_F(UciCommitTest, ADocumentThatNobodyWroteForThousandsOfJobsIsWrittenByTheLatestJob)
{
    for (const int job : {10, 2100, 4097, 2060}) {
        SCOPED_TRACE(job);
        pth_count = job;
        EXPECT_FALSE(change(static_lan, job).empty());
        EXPECT_FALSE(change(moved_lan, job).empty());
    }
}

TEST_F(UciCommitTest, StartUpWritesTakeNoPartInTheOrderOfJobs)
{
    change(static_lan, 8);
    EXPECT_EQ(full(moved_lan).size(), 4U);
    EXPECT_EQ(document(), moved_lan);
}

TEST_F(UciCommitTest, LineBreaksInAValueBecomeBlanksInTheLineAndStayInTheSnapshot)
{
    EXPECT_EQ(change("{\"t\":{\"s\":{\"a\":\"1\\r\\n2\\n set x\",\"l\":[\"p\\nq\"]}}}"),
              (Lines{"set net.s=t", "set net.s.a=1  2  set x", "add_list net.s.l=p q"}));
    EXPECT_EQ(document(), "{\"t\":{\"s\":{\"a\":\"1\\r\\n2\\n set x\",\"l\":[\"p\\nq\"]}}}");
}

TEST_F(UciCommitTest, ALineBreakInANameBecomesABlank)
{
    EXPECT_EQ(change("{\"t\":{\"a\\nb\":{}}}"), Lines{"set net.a b=t"});
}

TEST_F(UciCommitTest, NothingElseInAValueIsChanged)
{
    EXPECT_EQ(
        change(R"({"t":{"s":{"a":" 'x' \"y\" #;=\\ ","b":"","c":"a/b"}}})"),
        (Lines{"set net.s=t", R"(set net.s.a= 'x' "y" #;=\ )", "set net.s.b=", "set net.s.c=a/b"}));
}

TEST_F(UciCommitTest, NamesWithASlashAreRefusedWithALogLine)
{
    commit_uci_section(Document::parse(static_lan), "../net", "part", 0, 1);
    commit_uci_section(Document::parse(static_lan), "net", "a/b", 1, 1);
    EXPECT_EQ(device_.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
    EXPECT_EQ(device_.log(), (Lines{"refused a document named '../net' 'part'",
                                    "refused a document named 'net' 'a/b'"}));
}

TEST_F(UciCommitTest, AnEmptySectionNameIsAFileNameLikeAnyOther)
{
    commit_uci_section(Document::parse(static_lan), "net", "", 0, 1);
    EXPECT_EQ(device_.names_in("/tmp/cache/qorcfg/ucicfg.d"),
              (Lines{"uci-net-.json", "uci_update1.net."}));
}

TEST_F(UciCommitTest, LongFileNamesAreCutAt127BytesOfThePath)
{
    const std::string section(120, 's');
    commit_uci_section(Document::parse(static_lan), "net", section, 0, 1);
    const std::string folder = "/tmp/cache/qorcfg/ucicfg.d/";
    const std::string batch = (folder + "uci_update1.net." + section).substr(0, 127);
    const std::string snapshot = (folder + "uci-net-" + section).substr(0, 127);
    EXPECT_TRUE(device_.exists(batch));
    EXPECT_TRUE(device_.exists(snapshot));
}

TEST_F(UciCommitTest, EachBatchFileIsYoungerThanEveryEarlierOne)
{
    const auto time_of = [&](const std::string &name) {
        struct stat info {};
        EXPECT_EQ(::stat(device_.path("/tmp/cache/qorcfg/ucicfg.d/" + name).c_str(), &info), 0);
        return std::pair(info.st_mtim.tv_sec, info.st_mtim.tv_nsec);
    };
    std::vector<std::pair<time_t, long>> times;
    for (int i = 0; i < 20; ++i) {
        const std::string section = "s" + std::to_string(19 - i);
        commit_uci_section(Document::parse(static_lan), "net", section, 0, 3);
        times.push_back(time_of("uci_update3.net." + section));
    }
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end(), std::less_equal<>()));
}

TEST_F(UciCommitTest, ACompleteDocumentIsCommittedAndAnIncompleteOneIsNot)
{
    Document doc = Document::parse(static_lan);
    EXPECT_EQ(commit(doc, "net", "part", 4), 0);
    EXPECT_EQ(document(), static_lan);
    Document broken = Document::parse(moved_lan);
    broken.mark_incomplete();
    EXPECT_EQ(commit(broken, "net", "part", 5), -1);
    EXPECT_EQ(document(), static_lan);
    EXPECT_FALSE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update5.net.part"));
}

TEST_F(UciCommitTest, AnOptionThatBecameEmptyIsDeletedAndItsSectionNamedAgain)
{
    change_options(R"({"interface":{"lan":{"ip":"1","x":"2"}}})");
    EXPECT_EQ(change_options(R"({"interface":{"lan":{"ip":"","x":"2"}}})"),
              (Lines{"del net.lan.ip", "set net.lan=interface"}));
    EXPECT_EQ(change_options(R"({"interface":{"lan":{"ip":"3","x":"2"}}})"),
              (Lines{"set net.lan=interface", "set net.lan.ip=3"}));
}

TEST_F(UciCommitTest, AnOptionThatDisappearedIsDeletedOnly)
{
    change_options(R"({"interface":{"lan":{"ip":"1","l":["a"],"x":"2"}}})");
    EXPECT_EQ(change_options(R"({"interface":{"lan":{"x":"2"}}})"),
              (Lines{"del net.lan.ip", "del net.lan.l"}));
}

TEST_F(UciCommitTest, ARemovedSectionLosesItsOptionsOnlyWithOptionGranularity)
{
    change_options(R"({"interface":{"lan":{"a":"1"},"guest":{"b":"2","c":"3"},"bare":{}}})");
    EXPECT_EQ(change_options(R"({"interface":{"lan":{"a":"1"}}})"),
              (Lines{"del net.guest.b", "del net.guest.c"}));
}

TEST_F(UciCommitTest, AChangedListTravelsAsTextWithOptionGranularityAndANewTypeWhole)
{
    EXPECT_EQ(change_options(R"({"t":{"s":{"l":["a","b"]}}})"),
              (Lines{"set net.s=t", "add_list net.s.l=a", "add_list net.s.l=b"}));
    EXPECT_EQ(
        change_options(R"({"t":{"s":{"l":["a","b/c"]}},"u":{"bare":{}}})"),
        (Lines{"del net.s.l", "set net.s=t", R"(set net.s.l=[ "a", "b\/c" ])", "set net.bare=u"}));
    EXPECT_EQ(change_options(R"({"t":{"s":{"l":["a","b/c"]},"new":{}},"u":{"bare":{}}})"), Lines{});
}

TEST_F(UciCommitTest, AChangeOfTheMarkerAloneYieldsNoLine)
{
    change(R"({"t":[{"alias-name":true},{"a":"1"}]})");
    EXPECT_EQ(change(R"({"t":[{"alias-name":false},{"a":"1"}]})"), Lines{});
}

TEST_F(UciCommitTest, AnotherFormOfContainerReplacesAllSections)
{
    change(R"({"t":{"a":{"v":"1"}}})");
    EXPECT_EQ(change(R"({"t":[{"alias-name":false},{"v":"1"}]})"),
              (Lines{"delete net.a", "add net t", "set net.@t[0].v=1"}));
    EXPECT_EQ(change(R"({"t":{"a":{"v":"1"}}})"),
              (Lines{"delete net.@t[0]", "set net.a=t", "set net.a.v=1"}));
}

TEST_F(UciCommitTest, WritersOfOneDocumentWaitForEachOtherAndOthersGoOn)
{
    const Document doc = Document::parse(static_lan);
    std::vector<std::thread> threads;
    for (int thread = 1; thread <= 4; ++thread) {
        threads.emplace_back([thread] {
            for (int i = 0; i < 50; ++i) {
                const std::string value = std::to_string(thread) + "-" + std::to_string(i);
                Document mine;
                mine.section("t", "s").add("v", value);
                commit_uci_section(mine, "net", "shared", 0, thread);
                commit_uci_section(mine, "net", "own" + std::to_string(thread), 0, thread);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    // The newest job's last document stands, and every line is whole.
    EXPECT_EQ(device_.document("net", "shared"), R"({"t":{"s":{"v":"4-49"}}})");
    for (int job = 1; job <= 4; ++job) {
        EXPECT_EQ(device_.document("net", "own" + std::to_string(job)),
                  R"({"t":{"s":{"v":")" + std::to_string(job) + R"(-49"}}})");
        for (const std::string &line : device_.lines(job, "net", "shared")) {
            EXPECT_TRUE(line == "delete net.s" || line == "set net.s=t" ||
                        line.rfind("set net.s.v=", 0) == 0)
                << line;
        }
    }
}

} // namespace
} // namespace qorcfg
