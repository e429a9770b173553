#include "core/call_tables.h"

#include "support/device_root.h"

#include <array>
#include <gtest/gtest.h>
#include <utility>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

template <int Number> int update(int)
{
    return Number;
}
template <int Number> int soap(const ChangedKeys *, int)
{
    return Number;
}

template <int... Numbers>
std::vector<UpdateCallback> updates(std::integer_sequence<int, Numbers...>)
{
    return {update<Numbers>...};
}

template <int... Numbers> std::vector<SoapCallback> soaps(std::integer_sequence<int, Numbers...>)
{
    return {soap<Numbers>...};
}

std::vector<std::int32_t> ids(const ChangedKeys &keys)
{
    std::vector<std::int32_t> result;
    keys.for_each([&](std::int32_t id) { result.push_back(id); });
    return result;
}

TEST(CallTablesTest, EachUpdateCallbackIsCollectedOnceUnderItsFirstKey)
{
    CallTables calls(1);
    calls.collect_updates({5, {update<1>, update<2>}, {}});
    calls.collect_updates({6, {update<2>, nullptr, update<3>}, {}});
    ASSERT_EQ(calls.updates().size(), 3U);
    EXPECT_EQ(calls.updates()[1].callback, update<2>);
    EXPECT_EQ(calls.updates()[1].key_id, 5);
    EXPECT_EQ(calls.updates()[2].callback, update<3>);
    EXPECT_EQ(calls.updates()[2].key_id, 6);
}

TEST(CallTablesTest, ASoapCallbackGathersItsKeysInOrderAndKeepsTheFirstAction)
{
    CallTables calls(1);
    calls.collect_soap({8, {}, {soap<1>}}, 7);
    calls.collect_soap({5, {}, {soap<1>, soap<2>}}, 9);
    calls.collect_soap({8, {}, {soap<1>}}, 0);
    ASSERT_EQ(calls.soap().size(), 2U);
    EXPECT_EQ(ids(calls.soap()[0].keys), (std::vector<std::int32_t>{8, 5, 8}));
    EXPECT_EQ(calls.soap()[0].action, 7);
    EXPECT_EQ(ids(calls.soap()[1].keys), std::vector<std::int32_t>{5});
    EXPECT_EQ(calls.soap()[1].action, 9);
}

TEST(CallTablesTest, WhatDoesNotFitIsLoggedWithTheJobNumberAndLeftOut)
{
    const DeviceRoot device;
    CallTables calls(12);
    KeyRecord record{5, updates(std::make_integer_sequence<int, 258>()),
                     soaps(std::make_integer_sequence<int, 17>())};
    calls.collect_updates(record);
    EXPECT_EQ(calls.updates().size(), 256U);
    EXPECT_EQ(device.log(), Lines(2, "Too many callbacks in job 12"));
    device.clear_log();
    calls.collect_soap(record, 1);
    EXPECT_EQ(calls.soap().size(), 16U);
    EXPECT_EQ(device.log(), Lines{"Too many callbacks in job 12"});
}

TEST(CallTablesTest, AFullTableStillTakesKeysOfWhatItHolds)
{
    CallTables calls(1);
    const KeyRecord record{5, {}, soaps(std::make_integer_sequence<int, 16>())};
    calls.collect_soap(record, 1);
    calls.collect_soap({6, {}, {soap<15>}}, 1);
    EXPECT_EQ(ids(calls.soap()[15].keys), (std::vector<std::int32_t>{5, 6}));
}

} // namespace
} // namespace qorcfg
