#include "support/daemon.h"

#include "platform/key_id.h"
#include "support/jobs.h"
#include "support/wait.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace qorcfg {
namespace {

using test::Daemon;
using test::DeviceRoot;
using test::ended_jobs;
using test::Jobs;
using test::ProcessEnd;
using test::read_jobs;
using test::wait_until;
using Lines = std::vector<std::string>;

std::string announcement(const char *key, int action = 2)
{
    return std::to_string(action) + ":" + std::to_string(config_key_id(key));
}

bool has(const Lines &lines, const std::string &line)
{
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

class DaemonTest : public testing::Test {
protected:
    void start_with(const Lines &components)
    {
        daemon_.list_components(components);
        daemon_.start();
    }
    /// Announces the keys and commits, each message on a connection of its own; the job's number.
    int commit(const Lines &keys)
    {
        const int before = read_jobs(device_).last;
        for (const std::string &key : keys) {
            daemon_.send(announcement(key.c_str()));
        }
        daemon_.send("3:0");
        EXPECT_TRUE(wait_until([&] { return read_jobs(device_).last != before; }));
        return read_jobs(device_).last;
    }
    void wait_for_end()
    {
        ASSERT_TRUE(wait_until([&] { return ended_jobs(device_); }));
    }

    Daemon daemon_;
    DeviceRoot &device_ = daemon_.device();
};

TEST_F(DaemonTest, OneChangeTravelsFromTheStoreToTheBatchFile)
{
    device_.set({{"endis_ddns", "0"}, {"sysDNSProviderlist", "3322"}});
    start_with({"ietf_ddns"});
    EXPECT_TRUE(has(device_.startup_lines("ddns", "service"), "set ddns.global.enabled=0"));
    EXPECT_EQ(daemon_.hook_calls(), Lines{"init 0"});

    EXPECT_EQ(daemon_.qorctl({"set", "endis_ddns=1"}).status, 0);
    const ProcessEnd commit = daemon_.qorctl({"commit", "--wait"});
    EXPECT_EQ(commit.status, 0) << commit.err;
    EXPECT_EQ(device_.lines(1, "ddns", "service"),
              (Lines{"delete ddns.global", "delete ddns.ddns_ddns3322", "set ddns.global=ddns",
                     "set ddns.global.enabled=1", "set ddns.global.upd_privateip=1",
                     "set ddns.global.provider=ddns_ddns3322", "set ddns.ddns_ddns3322=service",
                     "set ddns.ddns_ddns3322.enabled=1",
                     "set ddns.ddns_ddns3322.service_name=members.3322.org"}));
    EXPECT_EQ(daemon_.hook_calls(), (Lines{"init 0", "commit 1"}));
    EXPECT_EQ(daemon_.status(), "1");
    EXPECT_TRUE(device_.exists("/etc/qorcfg/config.mdb"));

    const ProcessEnd end = daemon_.stop();
    EXPECT_EQ(end.status, 0);
    EXPECT_NE(end.out.find("set ddns.global.enabled=1\n"), std::string::npos);
}

TEST_F(DaemonTest, TheStartUpLinesAreLoggedInOrder)
{
    start_with({"ietf_debug", "ietf_nothing"});
    const std::string id = std::to_string(config_key_id("debug_boot_up"));
    const Lines expected{"init() - Initializing debug",
                         "Subscribe name debug_boot_up spoint " + id + " !!!!",
                         "Subscribe name debug_wanlan_capture spoint " +
                             std::to_string(config_key_id("debug_wanlan_capture")) + " !!!!",
                         "register() -  debug",
                         "Enable component ietf_debug !!!!",
                         "Enable component ietf_nothing !!!!",
                         "register() -  wireless 1",
                         "Init call callback " + id,
                         " update package debug"};
    EXPECT_EQ(device_.log(), expected);
}

TEST_F(DaemonTest, AJobIsLoggedFromItsAnnouncementToItsEnd)
{
    start_with({"ietf_debug"});
    device_.clear_log();
    commit({"debug_boot_up"});
    wait_for_end();
    const std::string id = std::to_string(config_key_id("debug_boot_up"));
    ASSERT_TRUE(wait_until([&] { return has(device_.log(), " NO.1 Stop pthread !!!"); }));
    EXPECT_EQ(device_.log(),
              (Lines{" recv set action " + id, " recv commit action", " NO.1 Start pthread !!!",
                     "NO.1 get config change number is  1", " update package debug",
                     " NO.1 Stop pthread !!!"}));
}

TEST_F(DaemonTest, ACommitOfNothingStartsNothing)
{
    start_with({"ietf_debug"});
    device_.clear_log();
    daemon_.send("3:0");
    ASSERT_TRUE(wait_until([&] { return !device_.log().empty(); }));
    EXPECT_EQ(device_.log(), Lines{"No found config change !!"});
    EXPECT_EQ(read_jobs(device_).last, 0);
    EXPECT_FALSE(device_.exists("/etc/qorcfg/config.mdb"));
    EXPECT_EQ(daemon_.hook_calls(), Lines{"init 0"});
}

TEST_F(DaemonTest, SeventyAnnouncementsMakeAJobOfSixtyFour)
{
    start_with({"ietf_debug"});
    Lines keys;
    // The first six are overwritten; the seventh is not.
    keys.emplace_back("debug_boot_up");
    for (int i = 1; i < 70; ++i) {
        keys.push_back("nothing" + std::to_string(i));
    }
    commit(keys);
    wait_for_end();
    EXPECT_TRUE(has(device_.log(), "NO.1 get config change number is  64"));
    EXPECT_FALSE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update1.debug.configuration"));
    std::rotate(keys.begin(), keys.begin() + 64, keys.end()); // now the seventh
    commit(keys);
    wait_for_end();
    EXPECT_TRUE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update2.debug.configuration"));
}

TEST_F(DaemonTest, TwoHundredChangedKeysThroughQorctlLoseNothing)
{
    start_with({"ietf_debug", "ietf_ddns", "ietf_devname"});
    std::string import;
    for (int i = 0; i < 197; ++i) {
        import += "filler" + std::to_string(1000 + i) + "x=1\n";
    }
    import += "debug_boot_up=1\nendis_ddns=1\nzz=1\nDevice_name=Kova\n";
    EXPECT_EQ(daemon_.qorctl({"import", "-"}, import).status, 0);
    EXPECT_EQ(daemon_.qorctl({"commit", "--wait"}).status, 0);
    wait_for_end();
    EXPECT_EQ(device_.document("debug", "configuration"),
              R"({"debug":{"configuration":{"debug_boot_up":"1"}}})");
    EXPECT_NE(device_.document("ddns", "service").find(R"("enabled":"1")"), std::string::npos);
    EXPECT_NE(device_.document("systemconfig", "system").find("Kova"), std::string::npos);
    // 201 keys of one id each need four commits of at most 64.
    EXPECT_EQ(read_jobs(device_).last, 4);
    EXPECT_EQ(daemon_.status(), "1");
    EXPECT_NE(daemon_.qorctl({"commit", "--wait"}).out.find("nothing to commit"),
              std::string::npos);
}

TEST_F(DaemonTest, AnnouncementsAndCommitOfDifferentConnectionsFormOneBatch)
{
    start_with({"ietf_debug", "ietf_devname"});
    EXPECT_EQ(commit({"debug_boot_up", "Device_name"}), 1);
    wait_for_end();
    EXPECT_TRUE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update1.debug.configuration"));
    EXPECT_TRUE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update1.systemconfig.system"));
}

TEST_F(DaemonTest, OfTwoMessagesInOneReadOnlyTheFirstIsTaken)
{
    start_with({"ietf_debug"});
    device_.clear_log();
    daemon_.send("5:1234\n3:0");
    daemon_.send("3:0");
    wait_until([&] { return read_jobs(device_).last == 1; });
    wait_for_end();
    EXPECT_EQ(device_.log().front(), " recv set action 1234");
    EXPECT_TRUE(has(device_.log(), "NO.1 get config change number is  1"));
}

TEST_F(DaemonTest, MalformedMessagesTakeASlotWithIdZero)
{
    start_with({"ietf_debug"});
    device_.clear_log();
    const Lines messages{"hello", ":", std::string(1, '\0'), std::string(128, 'x'), "-", "7:x"};
    for (const std::string &message : messages) {
        daemon_.send(message);
    }
    ASSERT_TRUE(wait_until([&] { return device_.log().size() == messages.size(); }));
    EXPECT_EQ(device_.log(), Lines(messages.size(), " recv set action 0"));
    daemon_.send("3:0");
    ASSERT_TRUE(wait_until([&] { return read_jobs(device_).last == 1; }));
    wait_for_end();
    EXPECT_TRUE(has(device_.log(), "NO.1 get config change number is  6"));
    EXPECT_EQ(daemon_.status(), "1");
}

TEST_F(DaemonTest, ASilentClientHoldsUpNobody)
{
    start_with({"ietf_debug"});
    const Fd silent = daemon_.connect();
    const Fd also_silent = daemon_.connect();
    commit({"debug_boot_up"});
    wait_for_end();
    EXPECT_EQ(daemon_.status(), "1");
    // And its message still counts when it comes.
    ASSERT_EQ(::write(silent.get(), "2:5", 3), 3);
    ASSERT_TRUE(wait_until([&] { return has(device_.log(), " recv set action 5"); }));
}

TEST_F(DaemonTest, ClientsBeyondTheLimitWaitForAFreePlace)
{
    start_with({"ietf_debug"});
    std::vector<Fd> silent(32);
    for (Fd &client : silent) {
        client = daemon_.connect();
        ASSERT_TRUE(client);
    }
    device_.clear_log();
    daemon_.send("2:77"); // waits in the backlog
    ASSERT_EQ(::write(silent[0].get(), "2:1", 3), 3);
    ASSERT_TRUE(wait_until([&] { return has(device_.log(), " recv set action 1"); }));
    EXPECT_FALSE(has(device_.log(), " recv set action 77"));
    silent[5].reset();
    EXPECT_TRUE(wait_until([&] { return has(device_.log(), " recv set action 77"); }));
}

TEST_F(DaemonTest, AJobWithoutAnyDifferenceStillCreatesItsEmptyBatchFile)
{
    device_.set({{"debug_boot_up", "1"}});
    start_with({"ietf_debug"});
    commit({"debug_boot_up"});
    wait_for_end();
    const char *batch = "/tmp/cache/qorcfg/ucicfg.d/uci_update1.debug.configuration";
    ASSERT_TRUE(device_.exists(batch));
    EXPECT_EQ(device_.read(batch), "");
}

TEST_F(DaemonTest, ASlowHookHoldsUpNoNewerJobAndStatusStaysTheNewestOnes)
{
    const std::string go = device_.path("/tmp/go");
    device_.write_program("/etc/qorcfg.d/commit.sh",
                          "#!/bin/sh\necho \"commit $*\" >>" + device_.path("/tmp/hook_calls") +
                              "\n[ \"$1\" != 1 ] || while [ -e \"$0\" ] && [ ! -e " + go +
                              " ]; do sleep 0.01; done\n");
    device_.set({{"debug_boot_up", "1"}});
    start_with({"ietf_debug"});
    commit({"debug_boot_up"});
    ASSERT_TRUE(wait_until([&] { return has(daemon_.hook_calls(), "commit 1"); }));
    EXPECT_EQ(daemon_.status(), "2");

    device_.set({{"debug_boot_up", "2"}});
    commit({"debug_boot_up"});
    ASSERT_TRUE(wait_until([&] { return read_jobs(device_).ended == 2; }));
    EXPECT_EQ(daemon_.status(), "1");
    EXPECT_EQ(read_jobs(device_).running, std::vector<int>{1});

    // A third job is at work when the first one ends: its "2" must stand.
    const std::string go3 = device_.path("/tmp/go3");
    device_.write_program("/etc/qorcfg.d/commit.sh", "#!/bin/sh\necho \"commit $*\" >>" +
                                                         device_.path("/tmp/hook_calls") +
                                                         "\nwhile [ -e \"$0\" ] && [ ! -e " + go3 +
                                                         " ]; do sleep 0.01; done\n");
    device_.set({{"debug_boot_up", "3"}});
    commit({"debug_boot_up"});
    ASSERT_TRUE(wait_until([&] { return has(daemon_.hook_calls(), "commit 3"); }));
    EXPECT_EQ(daemon_.status(), "2");
    device_.write("/tmp/go", "");
    ASSERT_TRUE(wait_until([&] { return read_jobs(device_).running == std::vector<int>{3}; }));
    EXPECT_EQ(daemon_.status(), "2");
    device_.write("/tmp/go3", "");
    wait_for_end();
    EXPECT_EQ(daemon_.status(), "1");
    EXPECT_TRUE(
        has(device_.lines(2, "debug", "configuration"), "set debug.configuration.debug_boot_up=2"));
    EXPECT_EQ(device_.document("debug", "configuration"),
              R"({"debug":{"configuration":{"debug_boot_up":"3"}}})");
}

TEST_F(DaemonTest, OverlappingJobsLeaveWholeFilesAndTheNewestDocument)
{
    device_.write_program("/etc/qorcfg.d/commit.sh", "#!/bin/sh\nsleep 0.05\n");
    start_with({"ietf_debug", "ietf_ddns", "ietf_devname"});
    constexpr int jobs = 60;
    for (int i = 1; i <= jobs; ++i) {
        device_.set({{"debug_boot_up", std::to_string(i)}, {"Device_name", std::to_string(i)}});
        commit({"debug_boot_up", "Device_name", "endis_ddns"});
    }
    wait_for_end();
    EXPECT_EQ(daemon_.status(), "1");
    EXPECT_EQ(read_jobs(device_).last, jobs);
    EXPECT_EQ(device_.document("debug", "configuration"),
              R"({"debug":{"configuration":{"debug_boot_up":"60"}}})");
    EXPECT_NE(device_.document("systemconfig", "system").find(R"("devicename":"60")"),
              std::string::npos);
    for (int job = 1; job <= jobs; ++job) {
        ASSERT_TRUE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update" + std::to_string(job) +
                                   ".debug.configuration"))
            << job;
        for (const std::string &line : device_.lines(job, "debug", "configuration")) {
            EXPECT_TRUE(line == "delete debug.configuration" ||
                        line == "set debug.configuration=debug" ||
                        line.rfind("set debug.configuration.debug_boot_up=", 0) == 0)
                << line;
        }
    }
}

TEST_F(DaemonTest, AStaleSocketFileIsReplaced)
{
    device_.write("/tmp/cache/qorcfg/server.socket", "stale");
    start_with({});
    struct stat info {};
    ASSERT_EQ(::stat(device_.path("/tmp/cache/qorcfg/server.socket").c_str(), &info), 0);
    EXPECT_TRUE(S_ISSOCK(info.st_mode));
    EXPECT_EQ(info.st_mode & 07777, 0600U);
}

TEST_F(DaemonTest, ASocketThatCannotBeBoundEndsTheDaemonWithStatusOne)
{
    std::filesystem::create_directories(device_.path("/tmp/cache/qorcfg/server.socket/full"));
    daemon_.launch();
    const ProcessEnd end = daemon_.process().wait();
    EXPECT_EQ(end.status, 1);
    EXPECT_NE(end.err.find("server.socket"), std::string::npos);
    EXPECT_EQ(device_.log(), Lines{" bind error !!!"});
    EXPECT_EQ(daemon_.hook_calls(), Lines{});
}

TEST_F(DaemonTest, ItExitsAlsoWhenDiagnosticsAreOff)
{
    std::filesystem::remove(device_.path("/tmp/qorcfg_debug"));
    std::filesystem::create_directories(device_.path("/tmp/cache/qorcfg/server.socket/full"));
    daemon_.launch();
    EXPECT_EQ(daemon_.process().wait().status, 1);
    EXPECT_FALSE(device_.exists("/dev/console"));
}

TEST_F(DaemonTest, AnUnreadableListEnablesNothingAndStartUpGoesOn)
{
    daemon_.start({device_.path("/missing.conf")});
    EXPECT_EQ(device_.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
    EXPECT_EQ(daemon_.hook_calls(), Lines{"init 0"});
    EXPECT_EQ(daemon_.stop().status, 0);
}

TEST_F(DaemonTest, TheArgumentNamesAnotherComponentList)
{
    device_.write("/other.conf", "ietf_debug=1\n");
    daemon_.list_components({"ietf_devname"});
    daemon_.start({device_.path("/other.conf")});
    EXPECT_TRUE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update.debug.configuration"));
    EXPECT_FALSE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update.systemconfig.system"));
}

TEST_F(DaemonTest, ArgumentsBehindTheComponentListHaveNoMeaning)
{
    device_.write("/other.conf", "ietf_debug=1\n");
    daemon_.start({device_.path("/other.conf"), "/more.conf"});
    EXPECT_TRUE(device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update.debug.configuration"));
}

TEST_F(DaemonTest, ASatelliteLeavesBaseUnitServicesAlone)
{
    device_.be_base(false);
    device_.set({{"Device_name", "Kova"}});
    start_with({"ietf_debug", "ietf_ddns", "ietf_devname"});
    EXPECT_EQ(device_.names_in("/tmp/cache/qorcfg/ucicfg.d"),
              (Lines{"uci-systemconfig-system.json", "uci_update.systemconfig.system"}));
}

TEST_F(DaemonTest, TermEndsItCleanlyAfterTheCallbacksAndLeavesTheHookRunning)
{
    const std::string go = device_.path("/tmp/go");
    device_.write_program("/etc/qorcfg.d/commit.sh", "#!/bin/sh\necho \"commit $*\" >>" +
                                                         device_.path("/tmp/hook_calls") +
                                                         "\nwhile [ -e \"$0\" ] && [ ! -e " + go +
                                                         " ]; do sleep 0.01; done\necho done >>" +
                                                         device_.path("/tmp/hook_calls") + "\n");
    start_with({"ietf_debug"});
    commit({"debug_boot_up"});
    ASSERT_TRUE(wait_until([&] { return has(daemon_.hook_calls(), "commit 1"); }));
    EXPECT_EQ(daemon_.stop().status, 0);
    device_.write("/tmp/go", "");
    EXPECT_TRUE(wait_until([&] { return has(daemon_.hook_calls(), "done"); }));
}

TEST_F(DaemonTest, ChangesAnnouncedInTheStoreWithoutADaemonArriveAtTheNextStart)
{
    start_with({"ietf_debug"});
    daemon_.stop();
    EXPECT_EQ(daemon_.qorctl({"set", "debug_boot_up=9"}).status, 0);
    const ProcessEnd commit = daemon_.qorctl({"commit"});
    EXPECT_EQ(commit.status, 0);
    EXPECT_NE(commit.err, "");
    daemon_.start();
    EXPECT_TRUE(has(device_.startup_lines("debug", "configuration"),
                    "set debug.configuration.debug_boot_up=9"));
}

} // namespace
} // namespace qorcfg
