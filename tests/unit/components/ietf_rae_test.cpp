#include "components/components.h"

#include "support/device_root.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfRaeTest, OneKeyIsSubscribed)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_rae), Lines{"ra_enable"});
    EXPECT_EQ(device.log()[0], "init() - Initializing rae");
}

TEST(IetfRaeTest, RegisterOnlyLogs)
{
    const DeviceRoot device;
    ietf_rae.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  rae"});
}

TEST(IetfRaeTest, TheFlagTravelsAsStoredOnAnyDevice)
{
    const DeviceRoot device;
    device.be_base(false);
    device.set({{"ra_enable", "2"}});
    EXPECT_EQ(device.run_update(ietf_rae, 1), 0);
    EXPECT_EQ(device.lines(1, "system", "rae"),
              (Lines{"set system.rae=system", "set system.rae.enable=2"}));
    EXPECT_EQ(device.log().back(), " update rae");
}

TEST(IetfRaeTest, AnUnsetFlagLeavesTheSectionEmpty)
{
    const DeviceRoot device;
    device.start_up(ietf_rae);
    EXPECT_EQ(device.document("system", "rae"), R"({"system":{"rae":{}}})");
}

} // namespace
} // namespace qorcfg
