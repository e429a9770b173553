#include "engine/nvram_commit.h"

#include "engine/writes_held.h"
#include "support/device_root.h"

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

constexpr const char *snapshot = "/tmp/cache/qorcfg/nvramcfg.d/nvram-part.json";
constexpr const char *base_text = "/tmp/cache/qorcfg/nvramcfg.d/nvram_update";

class NvramCommitTest : public testing::Test {
protected:
    /// One call in incremental mode; the lines that it added.
    Lines change(const char *doc, int job = 1)
    {
        const Lines before = device_.nvram_lines(job, "part");
        commit_nvram_document(Document::parse(doc), "part", 0, job);
        return behind(before, device_.nvram_lines(job, "part"));
    }
    /// One call in start-up mode; the lines that it added.
    Lines full(const char *doc)
    {
        const Lines before = device_.nvram_startup_lines("part");
        commit_nvram_document(Document::parse(doc), "part", 1, 77);
        return behind(before, device_.nvram_startup_lines("part"));
    }
    std::string document() const { return device_.nvram_document("part"); }
    Lines files() const { return device_.names_in("/tmp/cache/qorcfg/nvramcfg.d"); }
    /// What one call prints on standard output.
    static std::string printed(const char *doc, int trigger, int job)
    {
        testing::internal::CaptureStdout();
        commit_nvram_document(Document::parse(doc), "part", trigger, job);
        return testing::internal::GetCapturedStdout();
    }

    DeviceRoot device_;

private:
    static Lines behind(const Lines &before, const Lines &all)
    {
        return {all.begin() + static_cast<std::ptrdiff_t>(before.size()), all.end()};
    }
};

constexpr const char *channel_one = R"({"wifi":{"radio":{"channel":"1","mode":"11ng"}}})";
constexpr const char *channel_six = R"({"wifi":{"radio":{"channel":"6","mode":"11ng"}}})";

TEST_F(NvramCommitTest, AStartUpWriteCarriesEverySettingInDocumentOrder)
{
    EXPECT_EQ(full(R"({"wifi":{"radio":{"b":"1","a":"2"},"country":"USA"},"sys":{"name":"x"}})"),
              (Lines{"set wifi.radio.b=1", "set wifi.radio.a=2", "set wifi.country=USA",
                     "set sys.name=x"}));
    EXPECT_EQ(document(),
              R"({"wifi":{"radio":{"b":"1","a":"2"},"country":"USA"},"sys":{"name":"x"}})");
}

TEST_F(NvramCommitTest, AStartUpWriteRepeatsUnchangedSettingsAndDeletesNothing)
{
    full(channel_one);
    EXPECT_EQ(full(R"({"wifi":{"radio":{"mode":"11ng"}}})"), Lines{"set wifi.radio.mode=11ng"});
}

TEST_F(NvramCommitTest, FilesAreNamedAfterTheDocumentAndTheJob)
{
    full(channel_one);
    change(channel_six, 12);
    EXPECT_EQ(files(), (Lines{"nvram-part.json", "nvram_update.part", "nvram_update12.part"}));
}

TEST_F(NvramCommitTest, OnlyTheTriggerOneMeansStartUp)
{
    commit_nvram_document(Document::parse(channel_one), "part", 2, 3);
    EXPECT_EQ(files(), (Lines{"nvram-part.json", "nvram_update3.part"}));
}

TEST_F(NvramCommitTest, TheFirstIncrementalWriteOnlyRemembersTheDocument)
{
    EXPECT_EQ(change(channel_one), Lines{});
    EXPECT_EQ(files(), (Lines{"nvram-part.json", "nvram_update1.part"}));
    EXPECT_EQ(document(), channel_one);
}

TEST_F(NvramCommitTest, OnlyChangedSettingsTravel)
{
    change(channel_one);
    EXPECT_EQ(change(channel_six), Lines{"set wifi.radio.channel=6"});
    EXPECT_EQ(change(channel_six), Lines{});
    EXPECT_EQ(document(), channel_six);
}

TEST_F(NvramCommitTest, ARemovedOptionNameOrPackageGivesNoLine)
{
    full(R"({"wifi":{"radio":{"a":"1","b":"2"},"ap":{"c":"3"}},"sys":{"name":"x"}})");
    EXPECT_EQ(change(R"({"wifi":{"radio":{"a":"1"}}})"), Lines{});
    EXPECT_EQ(document(), R"({"wifi":{"radio":{"a":"1"}}})");
}

TEST_F(NvramCommitTest, NewOptionsNamesAndPackagesTravel)
{
    full(R"({"wifi":{"radio":{"a":"1"}}})");
    EXPECT_EQ(
        change(R"({"wifi":{"radio":{"a":"1","b":"2"},"ap":{"c":"3"},"plain":"4"},
                         "sys":{"name":"5"}})"),
        (Lines{"set wifi.radio.b=2", "set wifi.ap.c=3", "set wifi.plain=4", "set sys.name=5"}));
}

TEST_F(NvramCommitTest, APackageThatWasATextInTheSnapshotGivesNoLine)
{
    full(R"({"wifi":"text","sys":{"name":"x"}})");
    EXPECT_EQ(change(R"({"wifi":{"radio":{"a":"1"},"plain":"2"},"sys":{"name":"y"}})"),
              Lines{"set sys.name=y"});
    EXPECT_EQ(change(R"({"wifi":{"radio":{"a":"2"}}})"), Lines{"set wifi.radio.a=2"});
}

TEST_F(NvramCommitTest, APackageThatWasNullInTheSnapshotGivesNoLine)
{
    change(R"({"wifi":null})");
    EXPECT_EQ(change(channel_one), Lines{});
}

TEST_F(NvramCommitTest, AnOptionOfANameThatWasPlainCountsAsChangedAndTheOtherWayRound)
{
    full(R"({"p":{"plain":"1","group":{"a":"1"}}})");
    EXPECT_EQ(change(R"({"p":{"plain":{"a":"1"},"group":"1"}})"),
              (Lines{"set p.plain.a=1", "set p.group=1"}));
}

TEST_F(NvramCommitTest, ASettingWithoutTextInTheSnapshotCountsAsChanged)
{
    change(R"({"p":{"plain":null,"group":{"a":null,"b":""}}})");
    EXPECT_EQ(change(R"({"p":{"plain":"","group":{"a":"","b":""}}})"),
              (Lines{"set p.plain=", "set p.group.a="}));
}

TEST_F(NvramCommitTest, NumbersAndBooleansAreUsedAsTheirText)
{
    EXPECT_EQ(
        full(R"({"p":{"i":5,"d":1.5,"on":true,"g":{"off":false,"n":-7}}})"),
        (Lines{"set p.i=5", "set p.d=1.5", "set p.on=true", "set p.g.off=false", "set p.g.n=-7"}));
    EXPECT_EQ(change(R"({"p":{"i":"5","d":"1.5","on":"true","g":{"off":"false","n":"-7"}}})"),
              Lines{});
}

TEST_F(NvramCommitTest, ArraysNullsAndDeeperObjectsAreSkipped)
{
    EXPECT_EQ(full(R"({"text":"x","list":["y"],"none":null,"number":1,
                       "p":{"l":["a"],"n":null,"g":{"deep":{"x":"1"},"l":["b"],"n":null,"v":"2"},
                            "e":{},"w":"3"}})"),
              (Lines{"set p.g.v=2", "set p.w=3"}));
}

TEST_F(NvramCommitTest, AnEmptyDocumentStillMakesItsFiles)
{
    EXPECT_EQ(full("{}"), Lines{});
    EXPECT_EQ(change("{}", 4), Lines{});
    EXPECT_EQ(files(), (Lines{"nvram-part.json", "nvram_update.part", "nvram_update4.part"}));
    EXPECT_EQ(document(), "{}");
}

TEST_F(NvramCommitTest, SeveralWritesOfOneJobGatherInOneFile)
{
    full(channel_one);
    change(channel_six, 5);
    change(channel_one, 5);
    EXPECT_EQ(device_.nvram_lines(5, "part"),
              (Lines{"set wifi.radio.channel=6", "set wifi.radio.channel=1"}));
}

TEST_F(NvramCommitTest, TheSnapshotIsPrettyJsonForTheOwnerOnly)
{
    full(R"({"p":{"g":{"a":"1"}}})");
    EXPECT_EQ(device_.read(snapshot),
              "{\n  \"p\":{\n    \"g\":{\n      \"a\":\"1\"\n    }\n  }\n}");
    for (const std::string &name : {std::string(snapshot), std::string(base_text) + ".part"}) {
        struct stat info {};
        ASSERT_EQ(::stat(device_.path(name).c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 07777, 0600U) << name;
    }
}

TEST_F(NvramCommitTest, LinesArePrintedOnStandardOutputToo)
{
    EXPECT_EQ(printed(channel_one, 1, 0), "set wifi.radio.channel=1\nset wifi.radio.mode=11ng\n");
    EXPECT_EQ(printed(channel_six, 0, 1), "set wifi.radio.channel=6\n");
}

TEST_F(NvramCommitTest, AStartUpFileThatCannotBeOpenedLeavesTheSnapshot)
{
    full(channel_one);
    std::filesystem::remove(device_.path(std::string(base_text) + ".part"));
    std::filesystem::create_directory(device_.path(std::string(base_text) + ".part"));
    EXPECT_EQ(printed(channel_six, 1, 0), "Failed to open " + std::string(base_text) + "\n");
    EXPECT_EQ(document(), channel_one);
}

TEST_F(NvramCommitTest, AJobFileThatCannotBeOpenedLeavesTheSnapshot)
{
    full(channel_one);
    std::filesystem::create_directory(device_.path(std::string(base_text) + "2.part"));
    EXPECT_EQ(printed(channel_six, 0, 2), "Failed to open " + std::string(base_text) + " \n");
    EXPECT_EQ(document(), channel_one);
    EXPECT_EQ(change(channel_six, 3), Lines{"set wifi.radio.channel=6"});
}

TEST_F(NvramCommitTest, AMissingFolderIsReportedAndNotMade)
{
    std::filesystem::remove_all(device_.path("/tmp/cache/qorcfg/nvramcfg.d"));
    EXPECT_EQ(printed(channel_one, 1, 0), "Failed to open " + std::string(base_text) + "\n");
    EXPECT_FALSE(device_.exists("/tmp/cache/qorcfg/nvramcfg.d"));
}

TEST_F(NvramCommitTest, ADamagedSnapshotCountsAsAbsentAndTheLogSaysSo)
{
    full(channel_one);
    device_.write(snapshot, "{\"wifi\":{");
    EXPECT_EQ(change(channel_six, 2), Lines{});
    ASSERT_EQ(device_.log().size(), 1U);
    EXPECT_NE(device_.log()[0].find("nvram-part.json is damaged"), std::string::npos);
    EXPECT_EQ(document(), channel_six);
}

TEST_F(NvramCommitTest, ASnapshotCutOrFlippedAnywhereIsTheDocumentOrAbsent)
{
    full(channel_one);
    const std::string whole = device_.read(snapshot);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        device_.write(snapshot, whole.substr(0, i));
        EXPECT_EQ(change(channel_six, 2), Lines{}) << "cut at " << i;
        EXPECT_EQ(document(), channel_six) << "cut at " << i;
        std::string flipped = whole;
        flipped[i] = static_cast<char>(flipped[i] ^ 0xff);
        device_.write(snapshot, flipped);
        change(channel_six, 2);
        EXPECT_EQ(document(), channel_six) << "flipped at " << i;
    }
}

TEST_F(NvramCommitTest, AFullDiskLosesNothingOnceSpaceIsBack)
{
    full(channel_one);
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    ::signal(SIGXFSZ, SIG_IGN);
    // Enough for the new snapshot, too little for the line behind it.
    const std::string update = std::string(base_text) + "2.part";
    device_.write(update, std::string(200, '#') + "\n");
    const rlimit small{210, old.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string output = printed(channel_six, 0, 2);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
    EXPECT_EQ(output, "");
    EXPECT_EQ(device_.read(update).size(), 201U);
    EXPECT_EQ(document(), channel_one);
    EXPECT_FALSE(device_.exists(std::string(snapshot) + ".new"));
    EXPECT_EQ(change(channel_six, 3), Lines{"set wifi.radio.channel=6"});
}

TEST_F(NvramCommitTest, AStartUpWriteAfterACutOffOneCarriesEverythingAndClearsTheRemains)
{
    full(channel_one);
    device_.write(std::string(snapshot) + ".new", channel_six);
    EXPECT_EQ(full(channel_one), (Lines{"set wifi.radio.channel=1", "set wifi.radio.mode=11ng"}));
    EXPECT_FALSE(device_.exists(std::string(snapshot) + ".new"));
    EXPECT_EQ(document(), channel_one);
}

TEST_F(NvramCommitTest, AJobAfterACutOffWriteComparesWithTheLastWholeDocument)
{
    full(channel_one);
    device_.write(std::string(snapshot) + ".new", channel_six);
    EXPECT_EQ(change(channel_six), Lines{"set wifi.radio.channel=6"});
    EXPECT_FALSE(device_.exists(std::string(snapshot) + ".new"));
}

TEST_F(NvramCommitTest, AnOlderJobDoesNotReplaceWhatANewerOneWrote)
{
    full(channel_one);
    change(channel_six, 8);
    EXPECT_EQ(change(channel_one, 7), Lines{});
    EXPECT_TRUE(device_.exists(std::string(base_text) + "7.part"));
    EXPECT_EQ(document(), channel_six);
    EXPECT_EQ(change(channel_one, 9).size(), 1U);
}

TEST_F(NvramCommitTest, LineBreaksInAValueBecomeBlanksInTheLineAndStayInTheSnapshot)
{
    EXPECT_EQ(full("{\"p\":{\"a\\nb\":{\"o\":\"1\\r\\n2\\n set x\"},\"c\":\"3\\n4\"}}"),
              (Lines{"set p.a b.o=1  2  set x", "set p.c=3 4"}));
    EXPECT_EQ(document(), "{\"p\":{\"a\\nb\":{\"o\":\"1\\r\\n2\\n set x\"},\"c\":\"3\\n4\"}}");
}

TEST_F(NvramCommitTest, NothingElseInAValueIsChanged)
{
    EXPECT_EQ(full(R"({"p":{"a":" 'x' \"y\" #;=\\ ","b":"","c":"a/b"}})"),
              (Lines{R"(set p.a= 'x' "y" #;=\ )", "set p.b=", "set p.c=a/b"}));
}

TEST_F(NvramCommitTest, ANameWithASlashIsRefusedWithALogLine)
{
    commit_nvram_document(Document::parse(channel_one), "../part", 1, 1);
    commit_nvram_document(Document::parse(channel_one), "a/b", 0, 1);
    EXPECT_EQ(files(), Lines{});
    EXPECT_EQ(device_.log(),
              (Lines{"refused a document named '../part'", "refused a document named 'a/b'"}));
}

TEST_F(NvramCommitTest, NothingIsTouchedWhileWritesAreHeld)
{
    const WritesHeld held;
    EXPECT_EQ(printed(channel_one, 1, 0), "");
    EXPECT_EQ(printed(channel_one, 0, 1), "");
    EXPECT_EQ(files(), Lines{});
}

TEST_F(NvramCommitTest, WritersOfOneDocumentWaitForEachOther)
{
    full(R"({"p":{"g":{"v":"0"}}})");
    std::vector<std::thread> threads;
    for (int thread = 1; thread <= 4; ++thread) {
        threads.emplace_back([thread] {
            for (int i = 0; i < 50; ++i) {
                Document mine;
                mine.section("p", "g").add("v", std::to_string(thread) + "-" + std::to_string(i));
                commit_nvram_document(mine, "part", 0, thread);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    // The newest job's last document stands, and every line is whole.
    EXPECT_EQ(document(), R"({"p":{"g":{"v":"4-49"}}})");
    for (int job = 1; job <= 4; ++job) {
        for (const std::string &line : device_.nvram_lines(job, "part")) {
            EXPECT_EQ(line.rfind("set p.g.v=" + std::to_string(job) + "-", 0), 0U) << line;
        }
    }
}

} // namespace
} // namespace qorcfg
