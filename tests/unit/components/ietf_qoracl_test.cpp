#include "components/components.h"

#include "core/base/hooks.h"
#include "platform/key_id.h"
#include "platform/qor_platform.h"
#include "support/device_root.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using testing::HasSubstr;
using testing::Not;
using Lines = std::vector<std::string>;

class IetfQoraclTest : public testing::Test {
protected:
    std::string access_list() const
    {
        device_.start_up(ietf_qoracl);
        return device_.document("acl", "acld");
    }

    DeviceRoot device_;
};

TEST_F(IetfQoraclTest, EachKeyIsNamedBeforeItIsSubscribed)
{
    EXPECT_EQ(device_.subscribed_keys(ietf_qoracl),
              (Lines{"enable_block_device", "new_device_statue_by_default", "access_control"}));
    const Lines log = device_.log();
    ASSERT_EQ(log.size(), 8U);
    EXPECT_EQ(log[0], "init() - Initializing qoracl");
    EXPECT_EQ(log[1], "ietf_qoracl subscribe for config enable_block_device");
    EXPECT_EQ(log[2].rfind("Subscribe name enable_block_device ", 0), 0U);
    EXPECT_EQ(log[3], "ietf_qoracl subscribe for config new_device_statue_by_default");
    EXPECT_EQ(log[5], "ietf_qoracl subscribe for config access_control");
    EXPECT_EQ(log[7], "init() - Initializing qoracl_soap");
    EXPECT_EQ(device_.log_lines()[1].find("[ietf_qoracl ") == std::string::npos, false);
}

TEST_F(IetfQoraclTest, RegisterLogsTheShortNames)
{
    ietf_qoracl.register_();
    ietf_qoracl_guest_sche.register_();
    EXPECT_EQ(device_.log(), (Lines{"register() -  qoracl", "register() -  qoracl_guest_sche"}));
}

TEST_F(IetfQoraclTest, ARulesFieldsAreItsOptionsInOrder)
{
    device_.set({{"enable_block_device", "1"},
                 {"new_device_statue_by_default", "Allow"},
                 {"access_control1", "0 00:11:22:33:44:55 wired 1 laptop 0 family surplus"}});
    device_.start_up(ietf_qoracl);
    EXPECT_EQ(device_.startup_lines("acl", "acld"),
              (Lines{"set acl.acld=acl", "set acl.acld.enabled=1", "set acl.acld.default=Allow",
                     "set acl.acl_rule0=acl", "set acl.acl_rule0.status=0",
                     "set acl.acl_rule0.mac=00:11:22:33:44:55", "set acl.acl_rule0.conn_type=wired",
                     "set acl.acl_rule0.order=1", "set acl.acl_rule0.name=laptop",
                     "set acl.acl_rule0.log=0", "set acl.acl_rule0.group=family"}));
}

TEST_F(IetfQoraclTest, VerdictsAreCutToTheirFields)
{
    device_.set({{"enable_block_device", "10"}, {"new_device_statue_by_default", "Blocked"}});
    EXPECT_EQ(access_list(), R"({"acl":{"acld":{"enabled":"1","default":"Block"}}})");
}

TEST_F(IetfQoraclTest, AnEmptyFirstRuleLeavesTheVerdictsAlone)
{
    device_.set({{"enable_block_device", "0"}, {"access_control2", "a b c d e f g"}});
    EXPECT_EQ(access_list(), R"({"acl":{"acld":{"enabled":"0"}}})");
}

TEST_F(IetfQoraclTest, EmptyingTheFirstRuleDeletesAllRuleSections)
{
    device_.set({{"access_control1", "a b c d e f g"}, {"access_control2", "a b c d e f g"}});
    device_.start_up(ietf_qoracl);
    device_.set({{"access_control1", ""}});
    device_.apply({"access_control"}, 2);
    EXPECT_EQ(device_.lines(2, "acl", "acld"),
              (Lines{"delete acl.acl_rule0", "delete acl.acl_rule1"}));
}

TEST_F(IetfQoraclTest, RuleWithSixFieldsIsSkippedAndItsNumberUsedUp)
{
    device_.set({{"access_control1", "a b c d e f g"},
                 {"access_control2", "a b c d e f"},
                 {"access_control3", "s m c o n l g"}});
    EXPECT_EQ(access_list(),
              R"({"acl":{"acld":{},)"
              R"("acl_rule0":{"status":"a","mac":"b","conn_type":"c","order":"d","name":"e",)"
              R"("log":"f","group":"g"},)"
              R"("acl_rule2":{"status":"s","mac":"m","conn_type":"c","order":"o","name":"n",)"
              R"("log":"l","group":"g"}}})");
}

TEST_F(IetfQoraclTest, TwoBlanksEncloseAnEmptyFieldAndTabsBelongToTheirs)
{
    device_.set({{"access_control1", "1 m c 2  0\tx g"}});
    EXPECT_EQ(access_list(), R"({"acl":{"acld":{},"acl_rule0":{"status":"1","mac":"m",)"
                             R"("conn_type":"c","order":"2","log":"0\tx","group":"g"}}})");
}

TEST_F(IetfQoraclTest, TheHundredTwentyNinthRuleIsNotLookedAt)
{
    for (int number = 1; number <= 129; ++number) {
        device_.set({{("access_control" + std::to_string(number)).c_str(), "a b c d e f g"}});
    }
    const std::string doc = access_list();
    EXPECT_THAT(doc, HasSubstr("\"acl_rule127\""));
    EXPECT_THAT(doc, Not(HasSubstr("\"acl_rule128\"")));
}

TEST_F(IetfQoraclTest, ARunLogsItsDocument)
{
    device_.set({{"enable_block_device", "1"}, {"access_control1", "a b c/d d e f"}});
    device_.enable(ietf_qoracl);
    device_.clear_log();
    EXPECT_EQ(registry().records().at(0).normal.at(0)(1), 0);
    EXPECT_EQ(device_.log(),
              (Lines{" update qoracl", R"(qoracl json output {"acl":{"acld":{"enabled":"1"}}})"}));
}

TEST_F(IetfQoraclTest, SatellitesAreToldOnceHoweverManyKeysChanged)
{
    device_.enable(ietf_qoracl);
    device_.clear_log();
    device_.apply({"access_control", "enable_block_device"}, 1);
    EXPECT_EQ(device_.killall_calls(), Lines{"-SIGUSR1 soap_agent"});
    EXPECT_STREQ(config_get("soap_setting"), "AccessControl");
    const Lines log = device_.log();
    EXPECT_EQ(std::count(log.begin(), log.end(), " update qoracl_soap_update"), 1);
    EXPECT_EQ(std::count(log.begin(), log.end(), "qoracl send soap AccessControl"), 1);
}

TEST_F(IetfQoraclTest, TheTellingIsLoggedWhenItIsDone)
{
    static const DeviceRoot *device;
    static std::string last;
    device = &device_;
    set_soap_pause([] { last = device->log().back(); });
    device_.enable(ietf_qoracl);
    ChangedKeys keys;
    keys.append(config_key_id("access_control"));
    EXPECT_EQ(registry().find(config_key_id("access_control"))->soap.at(0)(&keys, 2), 0);
    EXPECT_EQ(last, " update qoracl_soap_update");
    EXPECT_EQ(device_.log().back(), "qoracl send soap AccessControl");
}

TEST_F(IetfQoraclTest, EachKeyAloneTellsTheSatellites)
{
    device_.enable(ietf_qoracl);
    std::size_t told = 0;
    for (const char *key :
         {"enable_block_device", "new_device_statue_by_default", "access_control"}) {
        device_.apply({key}, static_cast<int>(told) + 1);
        EXPECT_EQ(device_.killall_calls().size(), ++told) << key;
    }
}

TEST_F(IetfQoraclTest, WithoutOneOfItsKeysTheSoapCallbackTellsNobody)
{
    device_.enable(ietf_qoracl);
    const SoapCallback callback = registry().find(config_key_id("access_control"))->soap.at(0);
    ChangedKeys other;
    other.append(config_key_id("guest_schedule"));
    EXPECT_EQ(callback(&other, 2), 0);
    EXPECT_EQ(callback(nullptr, 2), 0);
    EXPECT_EQ(device_.killall_calls(), Lines{});
    EXPECT_STREQ(config_get("soap_setting"), "");
}

TEST_F(IetfQoraclTest, TheGuestScheduleSubscribesItsOneKeyAndTellsNobody)
{
    EXPECT_EQ(device_.subscribed_keys(ietf_qoracl_guest_sche), Lines{"guest_schedule"});
    EXPECT_EQ(device_.log()[0], "init() - Initializing qoracl_guest_sche");
    EXPECT_EQ(device_.log()[1], "ietf_qoracl_guest_sche subscribe for config guest_schedule");
    EXPECT_EQ(ietf_qoracl_guest_sche.soap_init, nullptr);
}

TEST_F(IetfQoraclTest, GuestSettingsAreCutToTheirFields)
{
    device_.set({{"wlg1_endis_guestNet", "12"},
                 {"wla1_endis_guestNet", "01"},
                 {"guest_schedule", "12345678"}});
    device_.enable(ietf_qoracl_guest_sche);
    device_.clear_log();
    EXPECT_EQ(registry().records().at(0).normal.at(0)(3), 0);
    EXPECT_EQ(device_.log(),
              (Lines{" update qoracl_guest_sche",
                     R"(qoracl guest sche json output {"acl":{"acl_group":{"wlg_enabled":"1",)"
                     R"("wla_enabled":"0","guest_schedule":"1234567"}}})"}));
    EXPECT_EQ(
        device_.lines(3, "acl", "guest_sche"),
        (Lines{"set acl.acl_group=acl", "set acl.acl_group.wlg_enabled=1",
               "set acl.acl_group.wla_enabled=0", "set acl.acl_group.guest_schedule=1234567"}));
}

TEST_F(IetfQoraclTest, BothComponentsKeepSnapshotsOfTheirOwnInOnePackage)
{
    device_.set({{"enable_block_device", "1"}, {"guest_schedule", "1"}});
    device_.start_up(ietf_qoracl);
    device_.start_up(ietf_qoracl_guest_sche);
    EXPECT_EQ(device_.document("acl", "acld"), R"({"acl":{"acld":{"enabled":"1"}}})");
    EXPECT_EQ(device_.document("acl", "guest_sche"),
              R"({"acl":{"acl_group":{"guest_schedule":"1"}}})");
}

} // namespace
} // namespace qorcfg
