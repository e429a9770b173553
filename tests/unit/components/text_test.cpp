#include "components/text.h"

#include "components/numbered_keys.h"
#include "support/device_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

using Fields = std::vector<std::string>;

TEST(TextTest, RunsOfBlanksAndTabsSeparateOnce)
{
    EXPECT_EQ(split_at_blanks("  a\t b  c "), (Fields{"a", "b", "c"}));
    EXPECT_EQ(split_at_blanks(" \t "), Fields{});
    EXPECT_EQ(split_at_blanks(""), Fields{});
    EXPECT_EQ(split_at_blanks("a\nb"), Fields{"a\nb"});
}

TEST(TextTest, TheFirstFieldsAreThereOnlyWhenAllOfThemAre)
{
    using Pair = std::array<std::string, 2>;
    EXPECT_EQ(first_fields<2>({"a", "b", "surplus"}), (Pair{"a", "b"}));
    EXPECT_EQ(first_fields<2>({"a", ""}), (Pair{"a", ""}));
    EXPECT_EQ(first_fields<2>({"a"}), std::nullopt);
}

TEST(TextTest, EverySingleBlankSeparates)
{
    EXPECT_EQ(split_at_single_blanks("a  b "), (Fields{"a", "", "b", ""}));
    EXPECT_EQ(split_at_single_blanks("a\tb"), Fields{"a\tb"});
    EXPECT_EQ(split_at_single_blanks(""), Fields{""});
}

TEST(TextTest, LeadingDigitsAreTheNumber)
{
    EXPECT_EQ(number_of("12abc"), 12);
    EXPECT_EQ(number_of(" -3"), -3);
    EXPECT_EQ(number_of("0x10"), 0);
    EXPECT_EQ(number_of("010"), 10);
    EXPECT_EQ(number_of("abc"), 0);
    EXPECT_EQ(number_of(""), 0);
    EXPECT_EQ(number_of("99999999999999999999"), 2147483647);
    EXPECT_EQ(number_of("-99999999999"), -2147483647 - 1);
}

TEST(NumberedKeysTest, TheWalkEndsAtTheFirstEmptyValue)
{
    const test::DeviceRoot device;
    device.set({{"rule1", "a"}, {"rule2", "b"}, {"rule4", "d"}});
    Fields seen;
    const auto visit = [&](int number, const std::string &value) {
        seen.push_back(std::to_string(number) + value);
    };
    for_each_numbered_key("rule", 1, visit);
    EXPECT_EQ(seen, (Fields{"1a", "2b"}));
    seen.clear();
    for_each_numbered_key("rule", 0, visit);
    EXPECT_EQ(seen, Fields{});
}

TEST(NumberedKeysTest, AVisitThatReturnsFalseEndsTheWalk)
{
    const test::DeviceRoot device;
    device.set({{"rule1", "a"}, {"rule2", "b"}, {"rule3", "c"}});
    Fields seen;
    for_each_numbered_key("rule", 1, [&](int, const std::string &value) {
        seen.push_back(value);
        return value != "b";
    });
    EXPECT_EQ(seen, (Fields{"a", "b"}));
}

} // namespace
} // namespace qorcfg
