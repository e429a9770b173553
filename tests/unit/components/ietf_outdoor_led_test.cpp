#include "components/components.h"

#include "core/base/hooks.h"
#include "platform/config_value.h"
#include "platform/key_id.h"
#include "support/device_root.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

/// The words that the agent was sent, in order, taken at the pause behind each.
Lines sent;

class IetfOutdoorLedTest : public testing::Test {
protected:
    IetfOutdoorLedTest()
    {
        sent.clear();
        set_soap_pause([] { sent.push_back(config_value("soap_setting")); });
        device_.enable(ietf_outdoor_led);
    }
    /// The words of one job that announces `keys` with `action`.
    Lines words(const Lines &keys, int action)
    {
        sent.clear();
        device_.apply(keys, 1, action);
        return sent;
    }
    Lines words_of_removal(const std::string &index)
    {
        device_.set({{"mac_led_index", index}});
        return words({"led_time_schedule"}, 1);
    }

    DeviceRoot device_;
};

TEST_F(IetfOutdoorLedTest, FiveKeysAreSubscribedForTheAgentOnly)
{
    EXPECT_EQ(device_.log(), (Lines{"init() - Initializing outdoor_led",
                                    "ietf_outdoor_led subscribe for config led_light",
                                    "ietf_outdoor_led subscribe for config sync_btn",
                                    "ietf_outdoor_led subscribe for config led_schedule",
                                    "ietf_outdoor_led subscribe for config led_time_schedule",
                                    "ietf_outdoor_led subscribe for config Location"}));
    const std::vector<const char *> keys{"led_light", "sync_btn", "led_schedule",
                                         "led_time_schedule", "Location"};
    ASSERT_EQ(registry().records().size(), keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(registry().records()[i].key_id, config_key_id(keys[i]));
        EXPECT_EQ(registry().records()[i].soap.size(), 1U);
        EXPECT_TRUE(registry().records()[i].normal.empty());
    }
    EXPECT_EQ(ietf_outdoor_led.init, nullptr);
}

TEST_F(IetfOutdoorLedTest, RegisterOnlyLogs)
{
    device_.clear_log();
    ietf_outdoor_led.register_();
    EXPECT_EQ(device_.log(), Lines{"register() -  outdoor_led"});
}

TEST_F(IetfOutdoorLedTest, EachSettingHasItsMethodWhateverTheAction)
{
    for (const int action : {0, 1, 2, 7}) {
        EXPECT_EQ(words({"led_light"}, action), Lines{"SetLightingLEDSettings"});
        EXPECT_EQ(words({"sync_btn"}, action), Lines{"SetHWSyncButtonStatus"});
        EXPECT_EQ(words({"led_schedule"}, action), Lines{"SetLightingLEDsOnBySchedule"});
        EXPECT_EQ(words({"Location"}, action), Lines{"SetDeviceLocation"});
    }
}

TEST_F(IetfOutdoorLedTest, SeveralSettingsOfOneJobAreSentInTheOrderOfTheTable)
{
    EXPECT_EQ(words({"Location", "led_light"}, 2),
              (Lines{"SetLightingLEDSettings", "SetDeviceLocation"}));
    EXPECT_EQ(
        words({"led_time_schedule", "Location", "led_schedule", "sync_btn", "led_light"}, 2),
        (Lines{"SetLightingLEDSettings", "SetHWSyncButtonStatus", "SetLightingLEDsOnBySchedule",
               "SetDeviceLocation", "SetLightingLEDOnPeriodByIndex"}));
    EXPECT_EQ(device_.killall_calls().size(), 7U);
    EXPECT_EQ(device_.killall_calls()[0], "-SIGUSR1 soap_agent");
}

TEST_F(IetfOutdoorLedTest, TheActionAndEachMethodAreLogged)
{
    device_.clear_log();
    device_.apply({"led_light", "sync_btn", "led_schedule", "Location", "led_time_schedule"}, 1, 0);
    const Lines log = device_.log();
    ASSERT_GE(log.size(), 6U);
    EXPECT_EQ(Lines(log.end() - 6, log.end()),
              (Lines{" update update_outdoor_led_soap my action is 0",
                     "send soap for SetLightingLEDSettings", "send soap for SetHWSyncButtonStatus",
                     "send soap for SetLightingLEDsOnBySchedule", "send soap for SetDeviceLocation",
                     "send soap for SetLightingLEDOnPeriodByIndex"}));
}

TEST_F(IetfOutdoorLedTest, EachMethodIsLoggedBehindItsPause)
{
    static const DeviceRoot *device;
    device = &device_;
    sent.clear();
    set_soap_pause([] { sent.push_back(device->log().back()); });
    device_.apply({"led_light", "Location"}, 1, 2);
    EXPECT_EQ(sent, (Lines{" update update_outdoor_led_soap my action is 2",
                           "send soap for SetLightingLEDSettings"}));
    EXPECT_EQ(device_.log().back(), "send soap for SetDeviceLocation");
}

TEST_F(IetfOutdoorLedTest, APeriodIsSetWhenItIsCreatedOrChanged)
{
    EXPECT_EQ(words({"led_time_schedule"}, 0), Lines{"SetLightingLEDOnPeriodByIndex"});
    EXPECT_EQ(words({"led_time_schedule"}, 2), Lines{"SetLightingLEDOnPeriodByIndex"});
}

TEST_F(IetfOutdoorLedTest, AnyOtherActionSendsNothingForAPeriod)
{
    EXPECT_EQ(words({"led_time_schedule"}, 4), Lines{});
    EXPECT_EQ(words({"led_time_schedule"}, -1), Lines{});
    EXPECT_EQ(device_.log().back(), " update update_outdoor_led_soap my action is -1");
    EXPECT_EQ(device_.killall_calls(), Lines{});
}

TEST_F(IetfOutdoorLedTest, IndexZeroWithoutAFirstPeriodDeletesAllUnderAnotherNameInTheLog)
{
    EXPECT_EQ(words_of_removal("0200000000AA-0"), Lines{"DeleteLightingLEDOnAllPeriod"});
    EXPECT_EQ(device_.log().back(), "send soap for DeleteLightingLEDOnPeriodAll");
}

TEST_F(IetfOutdoorLedTest, AnotherIndexDeletesThatPeriod)
{
    EXPECT_EQ(words_of_removal("0200000000AA-3"), Lines{"DeleteLightingLEDOnPeriodByIndex"});
    EXPECT_EQ(device_.log().back(), "send soap for DeleteLightingLEDOnPeriodByIndex");
}

TEST_F(IetfOutdoorLedTest, IndexZeroOfADeviceWithAFirstPeriodDeletesThatPeriod)
{
    device_.set({{"led_time_schedule_0200000000AA_1", "08:00-20:00"}});
    EXPECT_EQ(words_of_removal("0200000000AA-0"), Lines{"DeleteLightingLEDOnPeriodByIndex"});
    EXPECT_EQ(words_of_removal("0200000000BB-0"), Lines{"DeleteLightingLEDOnAllPeriod"});
}

TEST_F(IetfOutdoorLedTest, AnIndexWithoutDigitsOrDashCountsAsZero)
{
    for (const char *index : {"0200000000AA", "0200000000AA-", "0200000000AA-x", "m- 0"}) {
        EXPECT_EQ(words_of_removal(index), Lines{"DeleteLightingLEDOnAllPeriod"}) << index;
    }
    EXPECT_EQ(words_of_removal("m- 5"), Lines{"DeleteLightingLEDOnPeriodByIndex"});
    // Only the first dash separates, so that this index is negative.
    EXPECT_EQ(words_of_removal("m--5"), Lines{"DeleteLightingLEDOnPeriodByIndex"});
}

TEST_F(IetfOutdoorLedTest, WithoutAPrefixBothPartsAreEmpty)
{
    for (const char *index : {"", "-3", "-"}) {
        EXPECT_EQ(words_of_removal(index), Lines{"DeleteLightingLEDOnAllPeriod"}) << index;
    }
    device_.set({{"led_time_schedule__1", "08:00-20:00"}});
    EXPECT_EQ(words_of_removal("-3"), Lines{"DeleteLightingLEDOnPeriodByIndex"});
}

TEST_F(IetfOutdoorLedTest, TheNameOfAPeriodIsCutAt31Characters)
{
    EXPECT_EQ(words_of_removal(std::string(29, 'm') + "-3"),
              Lines{"DeleteLightingLEDOnPeriodByIndex"});
    EXPECT_EQ(words_of_removal(std::string(30, 'm') + "-3"), Lines{"DeleteLightingLEDOnAllPeriod"});
}

TEST_F(IetfOutdoorLedTest, ASatelliteTellsItsAgentTooAndNoDocumentIsWritten)
{
    device_.be_base(false);
    EXPECT_EQ(words({"led_light"}, 2), Lines{"SetLightingLEDSettings"});
    EXPECT_EQ(device_.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
}

} // namespace
} // namespace qorcfg
