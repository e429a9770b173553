#include "support/daemon.h"

#include "support/wait.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::Daemon;
using test::DeviceRoot;
using test::wait_until;

TEST(ExplainedDaemonTest, JobsAreExplainedWhileThatIsSwitchedOnWithoutARestart)
{
    Daemon daemon;
    const DeviceRoot &device = daemon.device();
    const auto explained = [&](const char *job) { return daemon.qorctl({"explain", job}); };
    const auto commit_setting = [&](const char *setting) {
        EXPECT_EQ(daemon.qorctl({"set", setting}).status, 0);
        EXPECT_EQ(daemon.qorctl({"commit", "--wait"}).status, 0);
    };
    device.set({{"debug_boot_up", "1"}});
    daemon.list_components({"ietf_debug"});
    daemon.start();
    commit_setting("debug_boot_up=2");
    const std::string plain = daemon.qorctl({"status", "--json"}).out;
    EXPECT_EQ(plain.find("explain"), std::string::npos) << plain;

    EXPECT_EQ(daemon.qorctl({"explain", "on"}).status, 0);
    device.write_program("/etc/qorcfg.d/commit.sh", "#!/bin/sh\nexit 4\n");
    commit_setting("debug_boot_up=3");
    ASSERT_TRUE(wait_until([&] { return explained("2").status == 0; }));
    EXPECT_EQ(explained("1").status, 1); // the switch was off when it began
    EXPECT_THAT(test::split_lines(explained("2").out),
                testing::ElementsAre(
                    testing::MatchesRegex("job 2: [0-9]+\\.[0-9]{3} ms, 3 lines; "
                                          "hook script: exit status 4 after [0-9]+\\.[0-9]{3} ms"),
                    "  debug_boot_up changed -> ietf_debug update #1",
                    testing::MatchesRegex("  ietf_debug update #1: [0-9]+\\.[0-9]{3} ms"),
                    "    debug.configuration: 3 lines", "      delete debug.configuration",
                    "      set debug.configuration=debug",
                    "      set debug.configuration.debug_boot_up=3"));
    EXPECT_NE(daemon.qorctl({"status", "--json"}).out.find(R"("explained":[{"job":2,)"),
              std::string::npos);

    EXPECT_EQ(daemon.qorctl({"explain", "off"}).status, 0);
    commit_setting("debug_boot_up=4");
    EXPECT_EQ(explained("3").status, 1);
    EXPECT_EQ(daemon.qorctl({"status", "--json"}).out,
              R"({"status":"1","meaning":"done","last":3,"running":[],"ended":3})"
              "\n");
    EXPECT_EQ(daemon.stop().status, 0);
    EXPECT_FALSE(device.exists("/tmp/cache/qorcfg/explain.json"));
}

} // namespace
} // namespace qorcfg
