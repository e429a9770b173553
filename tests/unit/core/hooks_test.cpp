#include "core/base/hooks.h"

#include "core/base/predicates.h"
#include "platform/qor_platform.h"
#include "support/device_root.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

int pauses = 0;

void write_recording_hook(const DeviceRoot &device)
{
    device.write_program("/etc/qorcfg.d/commit.sh",
                         "#!/bin/sh\necho \"$# $*\" >>" + device.path("/tmp/runs") + "\n");
}

TEST(HooksTest, TheScriptGetsTheJobNumberAsItsOnlyArgument)
{
    const DeviceRoot device;
    write_recording_hook(device);
    run_hook_script("/etc/qorcfg.d/commit.sh", 4097);
    run_hook_script("/etc/qorcfg.d/commit.sh", 0);
    EXPECT_EQ(device.read("/tmp/runs"), "1 4097\n1 0\n");
}

TEST(HooksTest, TheArgumentHasSixCharactersAtMost)
{
    const DeviceRoot device;
    write_recording_hook(device);
    run_hook_script("/etc/qorcfg.d/commit.sh", 12345678);
    EXPECT_EQ(device.read("/tmp/runs"), "1 123456\n");
}

TEST(HooksTest, AMissingScriptIsSilentAndItsEndReturned)
{
    const DeviceRoot device;
    const ProgramEnd missing = run_hook_script("/etc/qorcfg.d/commit.sh", 1);
    EXPECT_EQ(missing.status, -1);
    EXPECT_EQ(missing.error, ENOENT);
    EXPECT_TRUE(device.log().empty());
}

TEST(HooksTest, AFailingScriptIsSilentAndItsEndReturned)
{
    const DeviceRoot device;
    device.write_program("/etc/qorcfg.d/commit.sh", "#!/bin/sh\nexit 3\n");
    const ProgramEnd failed = run_hook_script("/etc/qorcfg.d/commit.sh", 2);
    EXPECT_EQ(failed.status, 3);
    EXPECT_EQ(failed.error, 0);
    EXPECT_EQ(device.log(), Lines{});
}

TEST(HooksTest, ANotificationStoresTheWordThenSignalsTheAgentThenPauses)
{
    const DeviceRoot device;
    pauses = 0;
    set_soap_pause([] { ++pauses; });
    notify_soap_agent("SetNTP");
    EXPECT_STREQ(config_get("soap_setting"), "SetNTP");
    EXPECT_EQ(device.killall_calls(), Lines{"-SIGUSR1 soap_agent"});
    EXPECT_EQ(pauses, 1);
}

TEST(HooksTest, ANullWordNeitherSignalsNorPauses)
{
    const DeviceRoot device;
    pauses = 0;
    set_soap_pause([] { ++pauses; });
    notify_soap_agent(nullptr);
    EXPECT_EQ(device.killall_calls(), Lines{});
    EXPECT_EQ(pauses, 0);
    EXPECT_STREQ(config_get("soap_setting"), "");
}

TEST(PredicatesTest, OnlyTheTextOneSwitchesAModeOn)
{
    const DeviceRoot device;
    EXPECT_EQ(is_ap_mode(), 0);
    EXPECT_EQ(is_factory_mode(), 0);
    device.set({{"ap_mode", "1"}, {"factory_mode", "1"}});
    EXPECT_EQ(is_ap_mode(), 1);
    EXPECT_EQ(is_factory_mode(), 1);
    device.set({{"ap_mode", "10"}, {"factory_mode", "0"}});
    EXPECT_EQ(is_ap_mode(), 0);
    EXPECT_EQ(is_factory_mode(), 0);
}

} // namespace
} // namespace qorcfg
