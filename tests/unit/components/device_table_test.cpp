#include "components/device_table.h"

#include <gtest/gtest.h>
#include <vector>

namespace qorcfg {
namespace {

using Macs = std::vector<std::string>;

Macs order_of(const DeviceTable &table)
{
    Macs macs;
    table.for_each([&](const DeviceRecord &record) { macs.push_back(record.mac); });
    return macs;
}

TEST(DeviceTableTest, TheBucketMixesTheFirstFourBytesLowestFirst)
{
    // 0x33221100 gives 0x33222222 and then 0x33110000: nothing is left in the low bits.
    EXPECT_EQ(mac_bucket("00:11:22:33:44:55"), 0U);
    EXPECT_EQ(mac_bucket("00:00:00:00:00:00"), 0U);
    EXPECT_EQ(mac_bucket("01:00:00:00:00:00"), 1U);
    EXPECT_EQ(mac_bucket("08:00:00:00:00:00"), 9U);
    EXPECT_EQ(mac_bucket("00:01:00:00:00:00"), 1U);
    EXPECT_EQ(mac_bucket("00:00:01:00:00:00"), 1U);
    EXPECT_EQ(mac_bucket("00:00:00:80:00:00"), 16U);
    EXPECT_EQ(mac_bucket("1d:00:00:00:00:00"), 30U);
    EXPECT_EQ(mac_bucket("10:20:30:40:00:00"), 8U);
    EXPECT_EQ(mac_bucket("ff:ff:ff:ff:00:00"), 0U);
}

TEST(DeviceTableTest, OnlyTheFirstFourBytesCount)
{
    EXPECT_EQ(mac_bucket("0a:1b:2c:3d:00:00"), mac_bucket("0A:1B:2C:3D:ff:01"));
}

TEST(DeviceTableTest, WhatIsNoAddressOrHoldsASlashHasNoBucket)
{
    for (const char *text : {"", ":", "00:11:22:33:44", "00-11-22-33-44-55", "gg:11:22:33:44:55",
                             "00:11:22:33:44:55/../x", "/0:11:22:33:44:55"}) {
        EXPECT_FALSE(mac_bucket(text)) << text;
        EXPECT_EQ(DeviceTable().record(text), nullptr) << text;
    }
}

TEST(DeviceTableTest, EachCharacterThatMeansSomethingIsEscaped)
{
    EXPECT_EQ(html_escaped(R"(\"()#&<>')"), "&#92;&#34;&#40;&#41;&#35;&#38;&lt;&gt;&#39;");
    EXPECT_EQ(html_escaped("Bob; 100% /ok\t\xc3\xa4"), "Bob; 100% /ok\t\xc3\xa4");
}

TEST(DeviceTableTest, BucketsComeInOrderAndWithinOneTheNewestFirst)
{
    DeviceTable table;
    for (const char *mac : {"12:34:56:78:00:01", "01:00:00:00:00:01", "00:01:00:00:00:02",
                            "00:00:00:00:00:03", "01:00:00:00:00:04", "01:00:00:00:00:01"}) {
        ASSERT_NE(table.record(mac), nullptr);
    }
    EXPECT_EQ(order_of(table), (Macs{"00:00:00:00:00:03", "01:00:00:00:00:04", "00:01:00:00:00:02",
                                     "01:00:00:00:00:01", "12:34:56:78:00:01"}));
}

TEST(DeviceTableTest, AddressesAreComparedAsText)
{
    DeviceTable table;
    DeviceRecord *lower = table.record("aa:00:00:00:00:01");
    EXPECT_EQ(table.record("aa:00:00:00:00:01"), lower);
    EXPECT_NE(table.record("AA:00:00:00:00:01"), lower);
    EXPECT_EQ(order_of(table), (Macs{"AA:00:00:00:00:01", "aa:00:00:00:00:01"}));
}

} // namespace
} // namespace qorcfg
