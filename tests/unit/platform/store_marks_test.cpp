#include "platform/qor_platform.h"
#include "platform/reference/store.h"
#include "support/scratch_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

class StoreMarksTest : public testing::Test {
protected:
    void TearDown() override { store_close(); }

    static std::vector<MarkedKey> marked()
    {
        std::vector<MarkedKey> keys;
        EXPECT_EQ(store_marked_keys(keys), "");
        return keys;
    }
    /// "key:action" of each marked key.
    static std::vector<std::string> marks()
    {
        std::vector<std::string> lines;
        for (const MarkedKey &key : marked()) {
            lines.push_back(key.key + ":" + std::to_string(static_cast<int>(key.change)));
        }
        return lines;
    }
    /// Stores without marking, as if the change had been announced long ago.
    static void given(const std::string &key, const std::string &value)
    {
        ASSERT_EQ(store_write({{key, value}}, Marking::leave), "");
    }

    ScratchRoot root;
};

using Lines = std::vector<std::string>;

TEST_F(StoreMarksTest, ANewKeyIsCreatedAnOtherValueChangesItAndUnsettingRemovesIt)
{
    given("old", "1");
    given("gone", "1");
    ASSERT_EQ(config_set("new", "1"), 0);
    ASSERT_EQ(config_set("old", "2"), 0);
    ASSERT_EQ(config_unset("gone"), 0);
    EXPECT_EQ(marks(), (Lines{"gone:1", "new:0", "old:2"}));
}

TEST_F(StoreMarksTest, WhatAReaderCannotSeeMarksNothing)
{
    given("key", "1");
    given("empty", "");
    ASSERT_EQ(config_set("key", "1"), 0);
    ASSERT_EQ(config_set("unset", ""), 0);
    ASSERT_EQ(config_unset("empty"), 0);
    ASSERT_EQ(config_unset("never set"), 0);
    EXPECT_EQ(marks(), Lines{});
    EXPECT_TRUE(store_has("unset"));
    EXPECT_FALSE(store_has("empty"));
}

TEST_F(StoreMarksTest, ACreatedKeyThatChangesAgainIsStillCreated)
{
    ASSERT_EQ(config_set("key", "1"), 0);
    ASSERT_EQ(config_set("key", "2"), 0);
    EXPECT_EQ(marks(), Lines{"key:0"});
}

TEST_F(StoreMarksTest, ARemovedKeyThatIsSetAgainIsChanged)
{
    given("key", "1");
    ASSERT_EQ(config_unset("key"), 0);
    EXPECT_EQ(marks(), Lines{"key:1"});
    ASSERT_EQ(config_set("key", "2"), 0);
    EXPECT_EQ(marks(), Lines{"key:2"});
    ASSERT_EQ(config_unset("key"), 0);
    EXPECT_EQ(marks(), Lines{"key:1"});
}

TEST_F(StoreMarksTest, ACreatedKeyThatIsRemovedIsRemoved)
{
    ASSERT_EQ(config_set("key", "1"), 0);
    ASSERT_EQ(config_unset("key"), 0);
    EXPECT_EQ(marks(), Lines{"key:1"});
}

TEST_F(StoreMarksTest, AKeySetFromEmptyIsChanged)
{
    given("key", "");
    ASSERT_EQ(config_set("key", "1"), 0);
    EXPECT_EQ(marks(), Lines{"key:2"});
    ASSERT_EQ(config_set("key", ""), 0);
    EXPECT_EQ(marks(), Lines{"key:2"});
}

TEST_F(StoreMarksTest, MessagesAndUnannouncedWritesLeaveNoMark)
{
    ASSERT_EQ(mappi_set("soap_setting", "SetNTP"), 0);
    given("key", "1");
    ASSERT_EQ(store_write({{"key", std::nullopt}}, Marking::leave), "");
    EXPECT_STREQ(config_get("soap_setting"), "SetNTP");
    EXPECT_EQ(marks(), Lines{});
}

TEST_F(StoreMarksTest, AnUnannouncedWriteLeavesAnEarlierMark)
{
    ASSERT_EQ(config_set("key", "1"), 0);
    given("key", "2");
    EXPECT_EQ(marks(), Lines{"key:0"});
}

TEST_F(StoreMarksTest, ARefusedCallMarksNothing)
{
    EXPECT_NE(store_write({{"key", "1"}, {"", "2"}}, Marking::mark), "");
    EXPECT_EQ(marks(), Lines{});
}

TEST_F(StoreMarksTest, EachMarkingWriteHasALaterSerial)
{
    ASSERT_EQ(store_write({{"b", "1"}, {"a", "1"}, {"c", "1"}}, Marking::mark), "");
    auto keys = marked();
    ASSERT_EQ(keys.size(), 3U);
    EXPECT_LT(keys[1].serial, keys[0].serial) << "a was written after b";
    EXPECT_LT(keys[0].serial, keys[2].serial);
    const auto last = keys[2].serial;
    ASSERT_EQ(config_set("b", "2"), 0);
    EXPECT_GT(marked()[1].serial, last);
    ASSERT_EQ(config_set("b", "2"), 0);
    ASSERT_EQ(config_set("a", "2"), 0);
    keys = marked();
    EXPECT_GT(keys[0].serial, keys[1].serial);
}

TEST_F(StoreMarksTest, SerialsGrowAcrossAClosedStore)
{
    ASSERT_EQ(config_set("key", "1"), 0);
    const auto first = marked()[0].serial;
    store_close();
    ASSERT_EQ(config_set("key", "2"), 0);
    EXPECT_GT(marked()[0].serial, first);
}

TEST_F(StoreMarksTest, AnnouncedMarksAreClearedAndThoseOfLaterChangesStay)
{
    ASSERT_EQ(store_write({{"a", "1"}, {"b", "1"}, {"c", "1"}}, Marking::mark), "");
    auto announced = marked();
    announced.pop_back();
    ASSERT_EQ(config_set("b", "2"), 0);
    EXPECT_EQ(store_clear_marks(announced), "");
    EXPECT_EQ(marks(), (Lines{"b:0", "c:0"}));
    EXPECT_EQ(store_clear_marks(announced), "") << "once more does no harm";
    EXPECT_EQ(store_clear_marks(marked()), "");
    EXPECT_EQ(marks(), Lines{});
    EXPECT_EQ(store_clear_marks({}), "");
    EXPECT_STREQ(config_get("a"), "1");
}

TEST_F(StoreMarksTest, AKeyChangedAfterItsMarkWasClearedIsChangedNotCreated)
{
    ASSERT_EQ(config_set("key", "1"), 0);
    ASSERT_EQ(store_clear_marks(marked()), "");
    ASSERT_EQ(config_set("key", "2"), 0);
    EXPECT_EQ(marks(), Lines{"key:2"});
}

} // namespace
} // namespace qorcfg
