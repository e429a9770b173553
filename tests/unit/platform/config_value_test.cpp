#include "platform/config_value.h"

#include "platform/qor_platform.h"
#include "support/scratch_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

TEST(ConfigValueTest, AnUnsetKeyIsAnEmptyText)
{
    const ScratchRoot root;
    EXPECT_EQ(config_value("lan_ipaddr"), "");
    EXPECT_EQ(config_value(""), "");
    EXPECT_EQ(config_value(nullptr), "");
}

TEST(ConfigValueTest, ACopyOutlivesTheNextRead)
{
    const ScratchRoot root;
    ASSERT_EQ(mappi_set("first", "1"), 0);
    ASSERT_EQ(mappi_set("second", "2"), 0);
    const std::string first = config_value("first");
    EXPECT_EQ(config_value(std::string("second")), "2");
    EXPECT_EQ(first, "1");
}

} // namespace
} // namespace qorcfg
