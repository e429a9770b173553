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

TEST(IetfPasswordTest, KeysAreSubscribedInOrder)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_password),
              (Lines{"http_passwd_hashed", "http_username"}));
    EXPECT_EQ(device.log().front(), "init() - Initializing password");
    EXPECT_EQ(device.log().back(), "init() - Initializing password");
}

TEST(IetfPasswordTest, SatellitesHearOfThreeKeys)
{
    const DeviceRoot device;
    device.enable(ietf_password);
    ASSERT_EQ(registry().records().size(), 4U);
    EXPECT_EQ(registry().records()[0].soap.size(), 1U);
    EXPECT_TRUE(registry().records()[1].soap.empty());
    EXPECT_EQ(registry().records()[2].key_id, config_key_id("GUI_only_PWD_question"));
    EXPECT_EQ(registry().records()[3].key_id, config_key_id("PWD_answer"));
}

TEST(IetfPasswordTest, RegisterOnlyLogs)
{
    const DeviceRoot device;
    ietf_password.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  password"});
}

TEST(IetfPasswordTest, TheStoredHashIsPassedThroughAndNeverLogged)
{
    const DeviceRoot device;
    device.set({{"http_username", "admin"}, {"http_passwd_hashed", "$5$salt$hash/value"}});
    device.start_up(ietf_password);
    EXPECT_EQ(device.startup_lines("users", "http"),
              (Lines{"set users.http=users", "set users.http.username=admin",
                     "set users.http.password=$5$salt$hash/value"}));
    EXPECT_EQ(device.log().back(), " update password");
    EXPECT_EQ(device.read("/dev/console").find("salt"), std::string::npos);
}

TEST(IetfPasswordTest, EachOfTheThreeKeysAloneSendsTheWord)
{
    const DeviceRoot device;
    device.enable(ietf_password);
    int job = 0;
    for (const char *key : {"http_passwd_hashed", "GUI_only_PWD_question", "PWD_answer"}) {
        device.apply({key}, ++job);
        EXPECT_EQ(device.killall_calls().size(), static_cast<std::size_t>(job)) << key;
    }
    EXPECT_EQ(config_value("soap_setting"), "SetPassword");
}

TEST(IetfPasswordTest, SeveralChangedKeysSendOneWord)
{
    const DeviceRoot device;
    device.enable(ietf_password);
    device.apply({"PWD_answer", "GUI_only_PWD_question", "http_passwd_hashed"}, 1);
    EXPECT_EQ(device.killall_calls(), Lines{"-SIGUSR1 soap_agent"});
}

TEST(IetfPasswordTest, AnAnswerAloneTellsTheSatellitesAndRewritesNothing)
{
    const DeviceRoot device;
    device.enable(ietf_password);
    device.apply({"PWD_answer"}, 1);
    EXPECT_EQ(config_value("soap_setting"), "SetPassword");
    EXPECT_EQ(device.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
}

TEST(IetfPasswordTest, AUserNameAloneSendsNothing)
{
    const DeviceRoot device;
    device.set({{"http_username", "admin"}});
    device.enable(ietf_password);
    device.apply({"http_username"}, 1);
    EXPECT_EQ(device.killall_calls(), Lines{});
    EXPECT_EQ(device.lines(1, "users", "http"),
              (Lines{"set users.http=users", "set users.http.username=admin"}));
}

TEST(IetfPasswordTest, WithoutOneOfItsKeysTheSoapCallbackTellsNobody)
{
    const DeviceRoot device;
    device.enable(ietf_password);
    const SoapCallback callback = registry().find(config_key_id("PWD_answer"))->soap.at(0);
    ChangedKeys keys;
    keys.append(config_key_id("http_username"));
    EXPECT_EQ(callback(&keys, 2), 0);
    EXPECT_EQ(device.killall_calls(), Lines{});
    keys.append(config_key_id("PWD_answer"));
    EXPECT_EQ(callback(&keys, 2), 0);
    EXPECT_EQ(device.killall_calls().size(), 1U);
}

TEST(IetfPasswordTest, ASatelliteWritesAndSendsNothing)
{
    const DeviceRoot device;
    device.be_base(false);
    device.set({{"http_passwd_hashed", "hash"}});
    device.enable(ietf_password);
    device.apply({"http_passwd_hashed", "PWD_answer"}, 1);
    EXPECT_EQ(device.killall_calls(), Lines{});
    EXPECT_EQ(device.lines(1, "users", "http").back(), "set users.http.password=hash");
}

} // namespace
} // namespace qorcfg
