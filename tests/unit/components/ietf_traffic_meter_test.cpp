#include "components/components.h"

#include "platform/key_id.h"
#include "support/device_root.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfTrafficMeterTest, KeysAreSubscribedInOrderTheControlTypeForBothCallbacks)
{
    const DeviceRoot device;
    EXPECT_EQ(
        device.subscribed_keys(ietf_traffic_meter),
        (Lines{"endis_traffic", "ctrl_volumn_time", "restart_counter_time", "traffic_restart_day",
               "traffic_block_all", "traffic_led", "ctrl_volumn_time", "round_up", "limit",
               "mon_volumn_limit", "left_time_volumn", "mon_time_limit"}));
    EXPECT_EQ(device.log()[0], "init() - Initializing traffic_meter");
    EXPECT_EQ(registry().find(config_key_id("ctrl_volumn_time"))->normal.size(), 2U);
    EXPECT_EQ(registry().find(config_key_id("limit"))->normal.size(), 1U);
}

TEST(IetfTrafficMeterTest, RegisterOnlyLogs)
{
    const DeviceRoot device;
    ietf_traffic_meter.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  traffic_meter"});
}

class IetfTrafficMeterSettingsTest : public testing::Test {
protected:
    IetfTrafficMeterSettingsTest()
    {
        device_.set({{"endis_traffic", "1"},
                     {"ctrl_volumn_time", "0"},
                     {"restart_counter_time", "12:30"},
                     {"traffic_restart_day", "15"},
                     {"traffic_block_all", "1"},
                     {"traffic_led", "0"},
                     {"round_up", "5"},
                     {"limit", "2"},
                     {"mon_volumn_limit", "1000"},
                     {"left_time_volumn", "50"},
                     {"mon_time_limit", "300"}});
    }

    DeviceRoot device_;
};

TEST_F(IetfTrafficMeterSettingsTest, TheGlobalSectionHoldsTheSwitchAndTheRestart)
{
    device_.start_up(ietf_traffic_meter);
    EXPECT_EQ(device_.document("trafficmeter", "global"),
              R"({"trafficmeter":{"global":{"enable":"1","control_type":"0",)"
              R"("restart_time":"12:30","restart_day":"15","disable_internet":"1",)"
              R"("turn_led":"0"}}})");
    const Lines log = device_.log();
    EXPECT_EQ(std::count(log.begin(), log.end(), " update traffic meter global"), 1);
    EXPECT_EQ(log.back(), " update traffic meter ctrl type");
}

TEST_F(IetfTrafficMeterSettingsTest, AnAccessPointIsSwitchedByTheKeyNamedZero)
{
    device_.set({{"ap_mode", "1"}, {"0", "odd"}});
    device_.start_up(ietf_traffic_meter);
    EXPECT_EQ(device_.startup_lines("trafficmeter", "global")[1],
              "set trafficmeter.global.enable=odd");
}

TEST_F(IetfTrafficMeterSettingsTest, AnAccessPointWithoutThatKeyHasNoSwitch)
{
    device_.set({{"ap_mode", "1"}});
    device_.start_up(ietf_traffic_meter);
    EXPECT_EQ(device_.startup_lines("trafficmeter", "global")[1],
              "set trafficmeter.global.control_type=0");
}

TEST_F(IetfTrafficMeterSettingsTest, VolumeControlHasItsLimits)
{
    device_.start_up(ietf_traffic_meter);
    EXPECT_EQ(device_.startup_lines("trafficmeter", "volume_control"),
              (Lines{"set trafficmeter.volume_control=trafficmeter",
                     "set trafficmeter.volume_control.round_up_volume=5",
                     "set trafficmeter.volume_control.volume_type=2",
                     "set trafficmeter.volume_control.monthly_limit=1000",
                     "set trafficmeter.volume_control.left_volume=50"}));
    EXPECT_EQ(device_.document("trafficmeter", "time_control"), "");
}

TEST_F(IetfTrafficMeterSettingsTest, AnyOtherControlTypeIsTime)
{
    for (const char *type : {"1", "", "00"}) {
        device_.set({{"ctrl_volumn_time", type}});
        device_.start_up(ietf_traffic_meter);
        EXPECT_EQ(device_.document("trafficmeter", "time_control"),
                  R"({"trafficmeter":{"time_control":{"monthly_limit":"300","left_time":"50"}}})");
    }
    EXPECT_EQ(device_.document("trafficmeter", "volume_control"), "");
}

TEST_F(IetfTrafficMeterSettingsTest, SwitchingToTimeControlLeavesVolumeControlAsItWas)
{
    device_.start_up(ietf_traffic_meter);
    const std::string volume = device_.document("trafficmeter", "volume_control");
    device_.set({{"ctrl_volumn_time", "1"}});
    device_.apply({"ctrl_volumn_time"}, 1);
    EXPECT_EQ(device_.lines(1, "trafficmeter", "time_control"),
              (Lines{"set trafficmeter.time_control=trafficmeter",
                     "set trafficmeter.time_control.monthly_limit=300",
                     "set trafficmeter.time_control.left_time=50"}));
    EXPECT_FALSE(
        device_.exists("/tmp/cache/qorcfg/ucicfg.d/uci_update1.trafficmeter.volume_control"));
    EXPECT_EQ(device_.document("trafficmeter", "volume_control"), volume);
    EXPECT_EQ(device_.lines(1, "trafficmeter", "global")[3],
              "set trafficmeter.global.control_type=1");
}

TEST_F(IetfTrafficMeterSettingsTest, ASatelliteWritesNothing)
{
    device_.be_base(false);
    EXPECT_EQ(device_.run_update(ietf_traffic_meter, 1), 1);
    EXPECT_EQ(registry().find(config_key_id("limit"))->normal.at(0)(1), 1);
    EXPECT_EQ(device_.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
    EXPECT_EQ(device_.log().back(), " update traffic meter ctrl type");
}

} // namespace
} // namespace qorcfg
