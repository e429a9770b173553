#include "support/daemon.h"
#include "support/wait.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::Daemon;
using test::ProcessEnd;

constexpr const char *package = "/tmp/etc/config/wireless";

TEST(WirelessDaemonTest, WithoutTheWirelessPackageTheDaemonEndsWithStatusOne)
{
    Daemon daemon;
    daemon.list_components({"ietf_wireless"});
    daemon.launch();
    const ProcessEnd end = daemon.process().wait();
    EXPECT_EQ(end.status, 1);
    EXPECT_NE(end.err.find("Can't load wireless package\n"), std::string::npos) << end.err;
}

TEST(WirelessDaemonTest, ItEndsTheSameWayWhileOtherJobsRun)
{
    Daemon daemon;
    daemon.device().write(package, "");
    // The hook of the first jobs runs until the test's end, and their workers with it.
    daemon.device().write_program("/etc/qorcfg.d/commit.sh",
                                  "#!/bin/sh\nwhile [ -e \"$0\" ] && [ ! -e " +
                                      daemon.device().path("/tmp/go") +
                                      " ]; do sleep 0.01; done\n");
    daemon.list_components({"ietf_wireless", "ietf_devname"});
    daemon.start();
    for (const char *name : {"Device_name=one", "Device_name=two", "Device_name=three"}) {
        EXPECT_EQ(daemon.qorctl({"set", name}).status, 0);
        EXPECT_EQ(daemon.qorctl({"commit"}).status, 0);
    }
    std::filesystem::remove(daemon.device().path(package));
    EXPECT_EQ(daemon.qorctl({"set", "wl_ssid=Home"}).status, 0);
    EXPECT_EQ(daemon.qorctl({"commit"}).status, 0);
    const ProcessEnd end = daemon.process().wait();
    daemon.device().write("/tmp/go", "");
    EXPECT_EQ(end.status, 1);
    EXPECT_NE(end.err.find("Can't load wireless package\n"), std::string::npos) << end.err;
}

} // namespace
} // namespace qorcfg
