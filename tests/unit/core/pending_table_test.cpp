#include "core/pending_table.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

PendingTable table_of(int announcements)
{
    PendingTable table;
    for (int i = 1; i <= announcements; ++i) {
        table.add({i, i % 3});
    }
    return table;
}

TEST(PendingTableTest, ChangesStandInOrderOfAnnouncement)
{
    const PendingTable table = table_of(3);
    ASSERT_EQ(table.count(), 3U);
    EXPECT_EQ(table.slots()[0].key_id, 1);
    EXPECT_EQ(table.slots()[2].key_id, 3);
    EXPECT_EQ(table.slots()[2].action, 0);
}

TEST(PendingTableTest, TheSameKeyMayStandTwice)
{
    PendingTable table;
    table.add({9, 1});
    table.add({9, 2});
    EXPECT_EQ(table.count(), 2U);
}

TEST(PendingTableTest, SeventyAnnouncementsLeaveSixtyFourWithTheLastSixInFront)
{
    const PendingTable table = table_of(70);
    ASSERT_EQ(table.count(), 64U);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(table.slots()[static_cast<std::size_t>(i)].key_id, 65 + i);
    }
    EXPECT_EQ(table.slots()[6].key_id, 7);
    EXPECT_EQ(table.slots()[63].key_id, 64);
}

TEST(PendingTableTest, TheCountStaysAtSixtyFourRoundTheRing)
{
    EXPECT_EQ(table_of(63).count(), 63U);
    EXPECT_EQ(table_of(64).count(), 64U);
    EXPECT_EQ(table_of(65).count(), 64U);
    EXPECT_EQ(table_of(200).count(), 64U);
}

TEST(PendingTableTest, AClearedTableFillsFromSlotZeroAgain)
{
    PendingTable table = table_of(70);
    table.clear();
    EXPECT_EQ(table.count(), 0U);
    table.add({5, 2});
    EXPECT_EQ(table.count(), 1U);
    EXPECT_EQ(table.slots()[0].key_id, 5);
}

} // namespace
} // namespace qorcfg
