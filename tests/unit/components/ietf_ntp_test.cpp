#include "components/components.h"

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

TEST(IetfNtpTest, KeysAreSubscribedInOrder)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_ntp),
              (Lines{"endis_ntp", "ntp_server_type", "manual_ntp_server", "time_zone",
                     "schedule_apply_flag", "ntpadjust"}));
    EXPECT_EQ(device.log().front(), "init() - Initializing ntp");
    EXPECT_EQ(device.log().back(), "init() - Initializing ntp");
}

TEST(IetfNtpTest, SatellitesHearOfThreeKeys)
{
    const DeviceRoot device;
    device.enable(ietf_ntp);
    for (const char *key : {"time_zone", "ntpadjust", "ntp_hidden_select"}) {
        const KeyRecord *record = registry().find(config_key_id(key));
        ASSERT_NE(record, nullptr) << key;
        EXPECT_EQ(record->soap.size(), 1U) << key;
    }
    EXPECT_TRUE(registry().find(config_key_id("endis_ntp"))->soap.empty());
    EXPECT_EQ(registry().records().back().key_id, config_key_id("ntp_hidden_select"));
}

TEST(IetfNtpTest, RegisterOnlyLogs)
{
    const DeviceRoot device;
    ietf_ntp.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  ntp"});
}

TEST(IetfNtpTest, TheZoneTravelsApartFromTheDaylightSectionWhichIsAlwaysUtc)
{
    const DeviceRoot device;
    device.set({{"endis_ntp", "1"},
                {"ntp_server_type", "2"},
                {"manual_ntp_server", "ntp.example.com"},
                {"time_zone", "GMT-1"},
                {"schedule_apply_flag", "0"},
                {"ntpadjust", "1"}});
    device.start_up(ietf_ntp);
    EXPECT_EQ(device.document("system", "ntp"),
              R"({"system":{)"
              R"("ntp":{"enable":"1","server_mode":"2","server1":"ntp.example.com"},)"
              R"("systemtimezone":{"timezone":"GMT-1","schedule_apply_flag":"0"},)"
              R"("daylight":{"daylight_enable":"1","isdst":0,"timezone":"UTC"}}})");
    EXPECT_EQ(device.log().back(), " update ntp");
}

TEST(IetfNtpTest, NothingSetLeavesTheDaylightConstants)
{
    const DeviceRoot device;
    device.start_up(ietf_ntp);
    EXPECT_EQ(
        device.document("system", "ntp"),
        R"({"system":{"ntp":{},"systemtimezone":{},"daylight":{"isdst":0,"timezone":"UTC"}}})");
}

TEST(IetfNtpTest, SeveralChangedKeysSendOneWord)
{
    const DeviceRoot device;
    device.enable(ietf_ntp);
    device.apply({"ntp_hidden_select", "time_zone", "ntpadjust"}, 1);
    EXPECT_EQ(device.killall_calls(), Lines{"-SIGUSR1 soap_agent"});
    EXPECT_EQ(config_value("soap_setting"), "SetNTP");
}

TEST(IetfNtpTest, EachOfTheThreeKeysAloneSendsTheWord)
{
    const DeviceRoot device;
    device.enable(ietf_ntp);
    int job = 0;
    for (const char *key : {"time_zone", "ntpadjust", "ntp_hidden_select"}) {
        device.apply({key}, ++job);
        EXPECT_EQ(device.killall_calls().size(), static_cast<std::size_t>(job)) << key;
    }
}

TEST(IetfNtpTest, TheHiddenChoiceAloneOnlyTellsTheSatellites)
{
    const DeviceRoot device;
    device.enable(ietf_ntp);
    device.apply({"ntp_hidden_select"}, 1);
    EXPECT_EQ(device.killall_calls().size(), 1U);
    EXPECT_EQ(device.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
}

TEST(IetfNtpTest, AnotherKeySendsNothing)
{
    const DeviceRoot device;
    device.enable(ietf_ntp);
    device.apply({"endis_ntp"}, 1);
    EXPECT_EQ(device.killall_calls(), Lines{});
    EXPECT_FALSE(device.lines(1, "system", "ntp").empty());
}

TEST(IetfNtpTest, WithoutOneOfItsKeysTheSoapCallbackTellsNobody)
{
    const DeviceRoot device;
    device.enable(ietf_ntp);
    const SoapCallback callback = registry().find(config_key_id("time_zone"))->soap.at(0);
    ChangedKeys keys;
    keys.append(config_key_id("endis_ntp"));
    EXPECT_EQ(callback(&keys, 2), 0);
    EXPECT_EQ(device.killall_calls(), Lines{});
    keys.append(config_key_id("time_zone"));
    EXPECT_EQ(callback(&keys, 2), 0);
    EXPECT_EQ(device.killall_calls().size(), 1U);
}

TEST(IetfNtpTest, ASatelliteWritesTheSectionsAndSendsNothing)
{
    const DeviceRoot device;
    device.be_base(false);
    device.set({{"time_zone", "GMT-1"}});
    device.enable(ietf_ntp);
    device.apply({"time_zone"}, 1);
    EXPECT_EQ(device.lines(1, "system", "ntp")[0], "set system.ntp=system");
    EXPECT_EQ(device.killall_calls(), Lines{});
    EXPECT_EQ(config_value("soap_setting"), "");
}

} // namespace
} // namespace qorcfg
