#include "engine/json.h"

#include <gtest/gtest.h>
#include <random>

namespace qorcfg {
namespace {

/// A value of a few kinds and texts, so that two of them are often nearly the same.
Json some_value(std::mt19937 &random, int depth)
{
    const auto roll = [&](unsigned sides) { return static_cast<int>(random() % sides); };
    switch (roll(depth == 0 ? 6 : 8)) {
    case 0:
        return {};
    case 1:
        return Json::integer(roll(2));
    case 2:
        return Json::boolean(roll(2) == 0);
    case 3:
        return Json::own(json_object_new_double(roll(2)));
    case 4:
        return Json::string(std::string_view("1\0x", 3).substr(0, roll(4)));
    case 5:
        return Json::string(roll(2) == 0 ? "a/\"\n" : "null");
    case 6: {
        Json array = Json::array();
        for (int i = roll(3); i > 0; --i) {
            json_append(array.get(), some_value(random, depth - 1));
        }
        return array;
    }
    default:
        Json object = Json::object();
        for (int i = roll(3); i > 0; --i) {
            json_set(object.get(), roll(2) == 0 ? "a" : "b", some_value(random, depth - 1));
        }
        return object;
    }
}

TEST(JsonEqualTest, TwoValuesAreEqualWhenTheirCompactTextsAre)
{
    std::mt19937 random(7);
    int equal = 0;
    constexpr int pairs = 20000;
    for (int i = 0; i < pairs; ++i) {
        const Json left = some_value(random, 2);
        const Json right = some_value(random, 2);
        const bool same_text = json_compact_text(left.get()) == json_compact_text(right.get());
        ASSERT_EQ(json_equal(left.get(), right.get()), same_text)
            << json_compact_text(left.get()) << " and " << json_compact_text(right.get());
        equal += same_text ? 1 : 0;
    }
    EXPECT_GT(equal, pairs / 50);
    EXPECT_LT(equal, pairs / 2);
}

TEST(JsonEqualTest, MembersInAnotherOrderAreADifference)
{
    const Json one = parse_json(R"({"a":"1","b":"2"})", JsonSyntax::strict);
    const Json other = parse_json(R"({"b":"2","a":"1"})", JsonSyntax::strict);
    EXPECT_FALSE(json_equal(one.get(), other.get()));
}

TEST(JsonEqualTest, AWholeNumberAndItsTextAreDifferent)
{
    EXPECT_FALSE(json_equal(Json::integer(1).get(), Json::string("1").get()));
    EXPECT_TRUE(json_equal(Json::integer(1).get(), Json::integer(1).get()));
}

} // namespace
} // namespace qorcfg
