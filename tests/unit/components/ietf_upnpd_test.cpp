#include "components/components.h"

#include "support/device_root.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfUpnpdTest, KeysAreSubscribedInOrder)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_upnpd),
              (Lines{"upnp_enable", "upnp_AdverTime", "upnp_TimeToLive"}));
    EXPECT_EQ(device.log()[0], "init() - Initializing upnpd");
}

TEST(IetfUpnpdTest, RegisterOnlyLogs)
{
    const DeviceRoot device;
    ietf_upnpd.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  upnpd"});
}

TEST(IetfUpnpdTest, TheSectionHoldsTheThreeSettingsAndTheRunIsNotLogged)
{
    const DeviceRoot device;
    device.be_base(false);
    device.set({{"upnp_enable", "1"}, {"upnp_AdverTime", "30"}, {"upnp_TimeToLive", "4"}});
    device.enable(ietf_upnpd);
    device.clear_log();
    EXPECT_EQ(registry().records().at(0).normal.at(0)(1), 0);
    EXPECT_EQ(device.lines(1, "upnpd", "config"),
              (Lines{"set upnpd.config=upnpd", "set upnpd.config.enable_upnp=1",
                     "set upnpd.config.notify_interval=30", "set upnpd.config.time_to_live=4"}));
    EXPECT_EQ(device.log(), Lines{});
}

TEST(IetfUpnpdTest, AnIntervalThatBecameEmptyGoesWithItsOption)
{
    const DeviceRoot device;
    device.set({{"upnp_enable", "1"}, {"upnp_AdverTime", "30"}});
    device.start_up(ietf_upnpd);
    device.set({{"upnp_AdverTime", ""}});
    device.apply({"upnp_AdverTime"}, 1);
    EXPECT_EQ(
        device.lines(1, "upnpd", "config"),
        (Lines{"delete upnpd.config", "set upnpd.config=upnpd", "set upnpd.config.enable_upnp=1"}));
}

} // namespace
} // namespace qorcfg
