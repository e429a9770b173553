#include "support/daemon.h"
#include "support/wait.h"

#include <fcntl.h>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

/// Every program that the daemon and `qorctl` start, in the place of which a stub lists what it has
/// open: 0, 1 and 2, and 3, which is the list's own.
class DescriptorsTest : public testing::Test {
protected:
    void list_in(const std::string &program) const
    {
        device_.write_program(program, "#!/bin/sh\nexec ls /proc/self/fd >" + list(program) + "\n");
    }
    std::string list(const std::string &program) const { return device_.path(program + ".seen"); }
    void expect_three(const std::string &program) const
    {
        EXPECT_EQ(device_.read(program + ".seen"), "0\n1\n2\n3\n") << program;
    }

    /// Whoever starts the daemon and `qorctl` has left this open for them.
    const Fd inherited_{::open("/dev/zero", O_RDONLY)}; // NOLINT: without O_CLOEXEC on purpose
    test::Daemon daemon_;
    const test::DeviceRoot &device_ = daemon_.device();
};

TEST_F(DescriptorsTest, ScriptsAndSignalsOfTheDaemonHaveNothingOpenButTheThree)
{
    const std::string init = "/etc/qorcfg.d/init.sh";
    const std::string commit = "/etc/qorcfg.d/commit.sh";
    const std::string killall = "/bin/killall";
    for (const std::string &program : {init, commit, killall}) {
        list_in(program);
    }
    daemon_.list_components({"ietf_outdoor_led", "ietf_devname"});
    daemon_.launch();
    ASSERT_TRUE(test::wait_until([&] { return device_.exists(init + ".seen"); }));
    ASSERT_TRUE(test::wait_until([&] { return daemon_.accepts(); }));
    // Clients that stay connected while the job runs.
    const Fd first = daemon_.connect();
    const Fd second = daemon_.connect();
    ASSERT_TRUE(first && second);
    EXPECT_EQ(daemon_.qorctl({"set", "Location=Garden", "Device_name=other"}).status, 0);
    const test::ProcessEnd end = daemon_.qorctl({"commit", "--wait"});
    EXPECT_EQ(end.status, 0) << end.err;
    for (const std::string &program : {init, commit, killall}) {
        expect_three(program);
    }
}

TEST_F(DescriptorsTest, TheScriptForSettingsFilesHasNothingOpenButTheThree)
{
    const std::string script = "/etc/qorcfg.d/nvram.sh";
    list_in(script);
    device_.write("/tmp/cache/qorcfg/nvramcfg.d/nvram_update1.wifi", "set w.a.b=1\n");
    const test::ProcessEnd end = daemon_.qorctl({"apply"});
    EXPECT_EQ(end.status, 0) << end.err;
    expect_three(script);
}

} // namespace
} // namespace qorcfg
