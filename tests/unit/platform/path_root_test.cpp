#include "platform/path_root.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

TEST(PathRootTest, AnEmptyRootLeavesThePathOfTheDevice)
{
    set_path_root("");
    EXPECT_EQ(rooted("/tmp/cache/config"), "/tmp/cache/config");
}

TEST(PathRootTest, ARootStandsInFrontOfThePath)
{
    set_path_root("/scratch");
    EXPECT_EQ(rooted("/etc/config"), "/scratch/etc/config");
    set_path_root("");
}

TEST(PathRootTest, TrailingSlashesOfTheRootAreDropped)
{
    set_path_root("/scratch//");
    EXPECT_EQ(rooted("/etc"), "/scratch/etc");
    EXPECT_EQ(path_root(), "/scratch");
    set_path_root("");
}

} // namespace
} // namespace qorcfg
