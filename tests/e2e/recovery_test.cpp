#include "support/daemon.h"

#include "engine/json.h"
#include "platform/key_id.h"
#include "support/jobs.h"
#include "support/process_holdings.h"
#include "support/wait.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sys/resource.h>
#include <unistd.h>

namespace qorcfg {
namespace {

using test::Daemon;
using test::descriptors_of;
using test::DeviceRoot;
using test::ended_jobs;
using test::private_kib;
using test::read_jobs;
using test::split_lines;
using test::threads_of;
using test::wait_until;

namespace fs = std::filesystem;

class RecoveryTest : public testing::Test {
protected:
    void announce_and_commit(std::initializer_list<const char *> keys)
    {
        for (const char *key : keys) {
            daemon_.send("2:" + std::to_string(config_key_id(key)));
        }
        daemon_.send("3:0");
    }
    void commit_and_wait(std::initializer_list<const char *> keys)
    {
        const int before = read_jobs(device_).last;
        announce_and_commit(keys);
        ASSERT_TRUE(
            wait_until([&] { return read_jobs(device_).last != before && ended_jobs(device_); }));
    }

    Daemon daemon_;
    DeviceRoot &device_ = daemon_.device();
};

TEST_F(RecoveryTest, ADaemonKilledAmidCommitsWritesEverythingAtItsNextStart)
{
    daemon_.list_components({"ietf_debug", "ietf_ddns", "ietf_devname"});
    std::mt19937 random(20261121);
    for (int round = 0; round < 15; ++round) {
        daemon_.start();
        const int commits = std::uniform_int_distribution<int>(1, 12)(random);
        for (int i = 0; i < commits; ++i) {
            const std::string value = std::to_string(round) + "." + std::to_string(i);
            device_.set({{"debug_boot_up", value}, {"Device_name", value}, {"endis_ddns", value}});
            announce_and_commit({"debug_boot_up", "Device_name", "endis_ddns"});
        }
        ::usleep(std::uniform_int_distribution<useconds_t>(0, 20'000)(random));
        daemon_.kill();
        for (const std::string &name : device_.names_in("/tmp/cache/qorcfg/ucicfg.d")) {
            if (fs::path(name).extension() == ".json") {
                const std::string text = device_.read("/tmp/cache/qorcfg/ucicfg.d/" + name);
                EXPECT_TRUE(parse_json(text, JsonSyntax::strict)) << name << ": " << text;
            } else if (name.find("uci_update") == 0) {
                const std::string text = device_.read("/tmp/cache/qorcfg/ucicfg.d/" + name);
                EXPECT_TRUE(text.empty() || text.back() == '\n') << name;
            }
        }
        for (const std::string &name : device_.names_in("/tmp/cache/qorcfg/ucicfg.d")) {
            if (name.find("uci_update.") == 0) {
                fs::remove(device_.path("/tmp/cache/qorcfg/ucicfg.d/" + name));
            }
        }
    }
    device_.set({{"debug_boot_up", "last"}, {"Device_name", "last"}});
    daemon_.start();
    const auto debug = device_.startup_lines("debug", "configuration");
    ASSERT_EQ(debug.size(), 3U);
    EXPECT_EQ(debug[0], "delete debug.configuration");
    EXPECT_EQ(debug[2], "set debug.configuration.debug_boot_up=last");
    EXPECT_EQ(device_.startup_lines("systemconfig", "system").size(), 5U);
    for (const std::string &name : device_.names_in("/tmp/cache/qorcfg/ucicfg.d")) {
        EXPECT_EQ(name.find(".new"), std::string::npos) << name;
    }
}

TEST_F(RecoveryTest, AFullDiskLosesNothingOnceSpaceIsBack)
{
    daemon_.list_components({"ietf_devname"});
    device_.set({{"Device_name", "before"}});
    daemon_.start();
    // The job's batch file is as large as a file may be; others still have room.
    constexpr rlim_t limit = 16384;
    const std::string batch = "/tmp/cache/qorcfg/ucicfg.d/uci_update1.systemconfig.system";
    const std::string filler = std::string(limit - 1, '#') + '\n';
    device_.write(batch, filler);
    fs::remove(device_.path("/tmp/qorcfg_debug"));
    const rlimit full{limit, RLIM_INFINITY};
    ASSERT_EQ(::prlimit(daemon_.process().pid(), RLIMIT_FSIZE, &full, nullptr), 0);
    device_.set({{"Device_name", "after"}});
    commit_and_wait({"Device_name"});
    EXPECT_EQ(device_.read(batch), filler);
    EXPECT_NE(device_.document("systemconfig", "system").find("before"), std::string::npos);
    ASSERT_TRUE(daemon_.process().running());

    const rlimit enough{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::prlimit(daemon_.process().pid(), RLIMIT_FSIZE, &enough, nullptr), 0);
    commit_and_wait({"Device_name"});
    EXPECT_EQ(device_.lines(2, "systemconfig", "system").back(),
              "set systemconfig.system.netbiosname=after");
    EXPECT_NE(device_.document("systemconfig", "system").find("after"), std::string::npos);
    EXPECT_EQ(daemon_.status(), "1");
}

// 4,100 commits, so that the job numbers also begin again.
TEST_F(RecoveryTest, ThousandsOfCommitsLeakNothingAndTheJobAfter4097IsJobOne)
{
    fs::remove(device_.path("/tmp/qorcfg_debug"));
    fs::remove(device_.path("/etc/qorcfg.d/commit.sh"));
    fs::create_symlink("/bin/true", device_.path("/etc/qorcfg.d/commit.sh"));
    daemon_.list_components({"ietf_debug", "ietf_devname"});
    daemon_.start();
    const pid_t pid = daemon_.process().pid();
    const auto commit = [&](int i) {
        device_.set({{"debug_boot_up", std::to_string(i)}, {"Device_name", std::to_string(i % 7)}});
        announce_and_commit({"debug_boot_up", "Device_name"});
        const int job = (i - 1) % 4097 + 1;
        ASSERT_TRUE(wait_until([&] {
            return read_jobs(device_).last == job && ended_jobs(device_);
        })) << i;
        fs::remove(device_.path("/tmp/cache/qorcfg/ucicfg.d/uci_update" + std::to_string(job) +
                                ".systemconfig.system"));
        EXPECT_TRUE(fs::remove(device_.path("/tmp/cache/qorcfg/ucicfg.d/uci_update" +
                                            std::to_string(job) + ".debug.configuration")));
    };
    constexpr int warm_up = 300;
    constexpr int commits = 4100;
    for (int i = 1; i <= warm_up; ++i) {
        commit(i);
    }
    ASSERT_TRUE(wait_until([&] { return threads_of(pid) == 1; }));
    const long descriptors = descriptors_of(pid);
    const long memory = private_kib(pid);
    for (int i = warm_up + 1; i <= commits; ++i) {
        commit(i);
    }
    EXPECT_EQ(read_jobs(device_).last, 3);
    EXPECT_EQ(daemon_.status(), "1");
    EXPECT_TRUE(wait_until([&] { return threads_of(pid) == 1; }));
    EXPECT_TRUE(wait_until([&] { return descriptors_of(pid) == descriptors; }));
    constexpr long allowed_growth_kib = 512;
    EXPECT_LE(private_kib(pid), memory + allowed_growth_kib);
    EXPECT_EQ(daemon_.stop().status, 0);
}

} // namespace
} // namespace qorcfg
