#include "platform/key_id.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

TEST(KeyIdTest, NullAndTheEmptyKeyHaveTheNumberZero)
{
    EXPECT_EQ(config_key_id(nullptr), 0);
    EXPECT_EQ(config_key_id(""), 0);
}

TEST(KeyIdTest, OneByteGoesIntoBothHalves)
{
    EXPECT_EQ(config_key_id("a"), 97 + (97 << 16));
}

TEST(KeyIdTest, TheOrderOfTheBytesCounts)
{
    EXPECT_EQ(config_key_id("ab"), 1910830851);
    EXPECT_EQ(config_key_id("ba"), 1996812771);
}

TEST(KeyIdTest, LongKeysWrapAndAreNeverNegative)
{
    EXPECT_EQ(config_key_id("endis_ddns"), 853673979);
    EXPECT_EQ(config_key_id("reservation"), 2144850258);
    EXPECT_EQ(config_key_id("led_time_schedule"), 1507016527);
    EXPECT_EQ(config_key_id("wan_ether_dns1"), 2106665586);
}

TEST(KeyIdTest, BytesAbove127CountAsPositive)
{
    EXPECT_EQ(config_key_id("\xff\x80\x01"), 56418240);
}

} // namespace
} // namespace qorcfg
