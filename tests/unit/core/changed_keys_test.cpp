#include "core/base/changed_keys.h"

#include "platform/key_id.h"

#include <gtest/gtest.h>
#include <vector>

namespace qorcfg {
namespace {

ChangedKeys list_of(std::initializer_list<const char *> keys)
{
    ChangedKeys list;
    for (const char *key : keys) {
        list.append(config_key_id(key));
    }
    return list;
}

TEST(ChangedKeysTest, IdsKeepTheirOrderAndDuplicatesStay)
{
    ChangedKeys list;
    for (const std::int32_t id : {7, 3, 7}) {
        list.append(id);
    }
    std::vector<std::int32_t> ids;
    list.for_each([&](std::int32_t id) { ids.push_back(id); });
    EXPECT_EQ(ids, (std::vector<std::int32_t>{7, 3, 7}));
}

TEST(ChangedKeysTest, OnlyTheFirstKeyNamedDecides)
{
    const ChangedKeys list = list_of({"b", "c"});
    EXPECT_EQ(changed_keys_contain(&list, "b", nullptr), 1);
    EXPECT_EQ(changed_keys_contain(&list, "b", "x", nullptr), 1);
    EXPECT_EQ(changed_keys_contain(&list, "x", "b", nullptr), 0);
    EXPECT_EQ(changed_keys_contain(&list, "c", "b", nullptr), 1);
    EXPECT_EQ(changed_keys_contain(&list, "x", nullptr), 0);
}

TEST(ChangedKeysTest, ANullListAndAnEmptyQuestionGiveZero)
{
    const ChangedKeys list = list_of({"b"});
    EXPECT_EQ(changed_keys_contain(nullptr, "b", nullptr), 0);
    EXPECT_EQ(changed_keys_contain(&list, nullptr, "b"), 0);
}

TEST(ChangedKeysTest, AMovedListTakesItsIdsAlong)
{
    ChangedKeys list = list_of({"b"});
    const ChangedKeys moved = std::move(list);
    EXPECT_EQ(changed_keys_contain(&moved, "b", nullptr), 1);
}

TEST(ChangedKeysTest, AnyOfSeveralKeysIsFoundWhereverItStands)
{
    const std::array names{"first", "second", "third"};
    const ChangedKeys third = list_of({"other", "third"});
    const ChangedKeys none = list_of({"other"});
    EXPECT_TRUE(any_key_changed(&third, names));
    EXPECT_FALSE(any_key_changed(&none, names));
    EXPECT_FALSE(any_key_changed(nullptr, names));
}

} // namespace
} // namespace qorcfg
