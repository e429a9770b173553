#include "components/components.h"

#include "support/device_root.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfParentalTest, KeysAreSubscribedInOrder)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_parental),
              (Lines{"ap_mode", "parental_switch", "ParentalControl", "enable_circle_plc",
                     "ParentalControl_table"}));
    EXPECT_EQ(device.log()[0], "init() - Initializing parental");
}

TEST(IetfParentalTest, RegisterOnlyLogs)
{
    const DeviceRoot device;
    ietf_parental.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  parental"});
}

void set_choice(const DeviceRoot &device)
{
    device.set({{"parental_switch", "1"},
                {"ParentalControl", "1"},
                {"enable_circle_plc", "1"},
                {"ParentalControl_table", "guests"}});
}

TEST(IetfParentalTest, TheFirstAnonymousSectionHoldsTheChoice)
{
    const DeviceRoot device;
    set_choice(device);
    device.start_up(ietf_parental);
    EXPECT_EQ(
        device.startup_lines("parental", "@parental_ctl[0]"),
        (Lines{"add parental parental_ctl", "set parental.@parental_ctl[0].switch=1",
               "set parental.@parental_ctl[0].opendns=1", "set parental.@parental_ctl[0].circle=1",
               "set parental.@parental_ctl[0].table=guests"}));
    EXPECT_EQ(device.document("parental", "@parental_ctl[0]"),
              R"({"parental_ctl":[{"alias-name":false},)"
              R"({"switch":"1","opendns":"1","circle":"1","table":"guests"}]})");
    EXPECT_EQ(device.log().back(), " update parental");
}

TEST(IetfParentalTest, AnAccessPointLeavesFilteringToOthersButKeepsTheTable)
{
    const DeviceRoot device;
    set_choice(device);
    device.set({{"ap_mode", "1"}});
    device.start_up(ietf_parental);
    EXPECT_EQ(device.document("parental", "@parental_ctl[0]"),
              R"({"parental_ctl":[{"alias-name":false},)"
              R"({"switch":"2","opendns":"0","circle":"0","table":"guests"}]})");
}

TEST(IetfParentalTest, AnAccessPointWithoutATableHasTheThreeSwitches)
{
    const DeviceRoot device;
    device.be_base(false);
    device.set({{"ap_mode", "1"}});
    EXPECT_EQ(device.run_update(ietf_parental, 1), 0);
    EXPECT_EQ(device.document("parental", "@parental_ctl[0]"),
              R"({"parental_ctl":[{"alias-name":false},)"
              R"({"switch":"2","opendns":"0","circle":"0"}]})");
}

TEST(IetfParentalTest, AChangeReplacesTheSection)
{
    const DeviceRoot device;
    set_choice(device);
    device.start_up(ietf_parental);
    device.set({{"parental_switch", "0"}});
    device.apply({"parental_switch"}, 3);
    EXPECT_EQ(
        device.lines(3, "parental", "@parental_ctl[0]"),
        (Lines{"delete parental.@parental_ctl[0]", "add parental parental_ctl",
               "set parental.@parental_ctl[0].switch=0", "set parental.@parental_ctl[0].opendns=1",
               "set parental.@parental_ctl[0].circle=1",
               "set parental.@parental_ctl[0].table=guests"}));
}

} // namespace
} // namespace qorcfg
