#include "core/base/registry.h"

#include "core/base/component.h"
#include "platform/key_id.h"
#include "support/device_root.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

int first_update(int)
{
    return 0;
}
int second_update(int)
{
    return 0;
}
int first_soap(const ChangedKeys *, int)
{
    return 0;
}
int second_soap(const ChangedKeys *, int)
{
    return 0;
}

// Two names with the same id.
constexpr const char *colliding_key = "rmmvykip";
constexpr const char *other_colliding_key = "fldnexye";

TEST(RegistryTest, SubscribingTheSameCallbackTwiceLeavesOneNode)
{
    Registry registry;
    EXPECT_EQ(registry.subscribe("key", first_update), config_key_id("key"));
    EXPECT_EQ(registry.subscribe("key", first_update), config_key_id("key"));
    ASSERT_EQ(registry.records().size(), 1U);
    EXPECT_EQ(registry.records()[0].normal, std::vector<UpdateCallback>{first_update});
    EXPECT_TRUE(registry.records()[0].soap.empty());
}

TEST(RegistryTest, TheSameCallbackUnderTwoKeysStandsInBothLists)
{
    Registry registry;
    registry.subscribe("a", first_update);
    registry.subscribe("b", first_update);
    ASSERT_EQ(registry.records().size(), 2U);
    EXPECT_EQ(registry.find(config_key_id("a"))->normal.size(), 1U);
    EXPECT_EQ(registry.find(config_key_id("b"))->normal.size(), 1U);
}

TEST(RegistryTest, TwoKeysWithTheSameIdShareOneRecord)
{
    ASSERT_EQ(config_key_id(colliding_key), config_key_id(other_colliding_key));
    Registry registry;
    registry.subscribe(colliding_key, first_update);
    registry.subscribe(other_colliding_key, second_update);
    ASSERT_EQ(registry.records().size(), 1U);
    EXPECT_EQ(registry.records()[0].normal,
              (std::vector<UpdateCallback>{first_update, second_update}));
}

TEST(RegistryTest, ASoapSubscriptionMakesARecordWithoutNormalCallbacksAndLogsNoLine)
{
    const DeviceRoot device;
    Registry registry;
    EXPECT_EQ(registry.subscribe_soap("key", first_soap), config_key_id("key"));
    registry.subscribe_soap("key", second_soap);
    registry.subscribe_soap("key", first_soap);
    ASSERT_EQ(registry.records().size(), 1U);
    EXPECT_TRUE(registry.records()[0].normal.empty());
    EXPECT_EQ(registry.records()[0].soap, (std::vector<SoapCallback>{first_soap, second_soap}));
    EXPECT_EQ(device.log(), Lines{});
}

TEST(RegistryTest, RecordsStandInOrderOfFirstSubscription)
{
    Registry registry;
    registry.subscribe("c", first_update);
    registry.subscribe_soap("a", first_soap);
    registry.subscribe("b", first_update);
    registry.subscribe("c", second_update);
    std::vector<std::int32_t> ids;
    for (const KeyRecord &record : registry.records()) {
        ids.push_back(record.key_id);
    }
    EXPECT_EQ(ids, (std::vector<std::int32_t>{config_key_id("c"), config_key_id("a"),
                                              config_key_id("b")}));
}

TEST(RegistryTest, AKeyWithoutSubscriberIsNotFound)
{
    EXPECT_EQ(Registry().find(config_key_id("key")), nullptr);
}

TEST(RegistryTest, ASubscriptionIsLoggedWithNameAndId)
{
    const DeviceRoot device;
    registry().clear();
    EXPECT_EQ(subscribe_config(10, first_update, "endis_ddns"), 853673979);
    EXPECT_EQ(subscribe_soap(10, first_soap, "endis_ddns"), 853673979);
    EXPECT_EQ(device.log(), Lines{"Subscribe name endis_ddns spoint 853673979 !!!!"});
    EXPECT_EQ(registry().records().size(), 1U);
}

TEST(RegistryTest, ACallbackBelongsToTheComponentThatSubscribedItFirstAndIsNumberedByItsKind)
{
    Registry registry;
    registry.begin_component("one");
    registry.subscribe("a", first_update);
    registry.subscribe_soap("a", first_soap);
    registry.begin_component("two");
    registry.subscribe("a", first_update);
    registry.begin_component("one");
    registry.subscribe("b", second_update);
    const CallbackOwner second = registry.owner_of(second_update);
    EXPECT_STREQ(registry.owner_of(first_update).component, "one");
    EXPECT_EQ(registry.owner_of(first_update).number, 1);
    EXPECT_STREQ(second.component, "one");
    EXPECT_EQ(second.number, 2);
    EXPECT_EQ(registry.owner_of(first_soap).number, 1);
    EXPECT_EQ(registry.owner_of(second_soap).number, 0);
    registry.clear();
    EXPECT_EQ(registry.owner_of(first_update).number, 0);
}

void fill(Registry &registry, int records)
{
    for (int i = 0; i < records; ++i) {
        registry.subscribe_soap(("key" + std::to_string(i)).c_str(), first_soap);
    }
}

TEST(RegistryTest, WarningsBeginAtTheFiveHundredTwelfthRecordWalkedAndRefuseNothing)
{
    const DeviceRoot device;
    Registry registry;
    fill(registry, 511);
    ASSERT_EQ(registry.records().size(), 511U);
    device.clear_log();
    registry.subscribe("the 512th", first_update); // walks 511 records
    EXPECT_EQ(device.log().size(), 1U);
    device.clear_log();
    registry.subscribe("the 513th", first_update); // walks 512
    EXPECT_EQ(device.log().back(), "Too many subscriptions 512 (max 512)");
    EXPECT_EQ(registry.records().size(), 513U);
}

TEST(RegistryTest, TheMatchingRecordCountsAsWalked)
{
    const DeviceRoot device;
    Registry registry;
    fill(registry, 514);
    device.clear_log();
    registry.subscribe_soap("key511", second_soap); // the 512th record
    EXPECT_EQ(device.log(), Lines{"Too many soap subscriptions 512 (max 512)"});
    device.clear_log();
    registry.subscribe_soap("key513", second_soap);
    EXPECT_EQ(device.log(), (Lines{"Too many soap subscriptions 512 (max 512)",
                                   "Too many soap subscriptions 513 (max 512)",
                                   "Too many soap subscriptions 514 (max 512)"}));
    device.clear_log();
    registry.subscribe_soap("key510", second_soap);
    EXPECT_EQ(device.log(), Lines{});
}

TEST(ComponentTest, SubscribingAllKeysKeepsTheirOrder)
{
    const DeviceRoot device;
    registry().clear();
    const std::array keys{"b", "a"};
    subscribe_all(keys, first_update);
    subscribe_all_soap(keys, first_soap);
    ASSERT_EQ(registry().records().size(), 2U);
    EXPECT_EQ(registry().records()[0].key_id, config_key_id("b"));
    EXPECT_EQ(registry().records()[1].soap.size(), 1U);
}

TEST(ComponentTest, AnInitLineNamesTheComponentsOwnSource)
{
    const DeviceRoot device;
    log_init("thing");
    log_register("thing");
    EXPECT_EQ(device.log(), (Lines{"init() - Initializing thing", "register() -  thing"}));
    EXPECT_NE(device.log_lines()[0].find("[registry_test "), std::string::npos);
}

} // namespace
} // namespace qorcfg
