#include "components/components.h"

#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfDebugTest, KeysAreSubscribedInOrder)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_debug), (Lines{"debug_boot_up", "debug_wanlan_capture"}));
}

TEST(IetfDebugTest, TheSectionHoldsBothSwitches)
{
    const DeviceRoot device;
    device.set({{"debug_boot_up", "1"}, {"debug_wanlan_capture", "0"}});
    device.enable(ietf_debug);
    device.clear_log();
    device.apply({"debug_boot_up"}, 3);
    EXPECT_EQ(
        device.lines(3, "debug", "configuration"),
        (Lines{"set debug.configuration=debug", "set debug.configuration.debug_wanlan_capture=0",
               "set debug.configuration.debug_boot_up=1"}));
    EXPECT_EQ(device.log()[1], " update package debug");
}

TEST(IetfDebugTest, ASatelliteWritesNothing)
{
    const DeviceRoot device;
    device.be_base(false);
    EXPECT_EQ(device.run_update(ietf_debug, 1), 1);
    EXPECT_EQ(device.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
}

} // namespace
} // namespace qorcfg
