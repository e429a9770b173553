#include "core/base/xmalloc.h"

#include "support/device_root.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>

namespace qorcfg {
namespace {

TEST(XmallocTest, MemoryThatIsThereCanBeWritten)
{
    const Memory memory = xmalloc(8);
    ASSERT_TRUE(memory);
    std::memset(memory.get(), 0x5a, 8);
}

TEST(XmallocTest, MemoryThatCannotBeHadIsLoggedAndNull)
{
    const test::DeviceRoot device;
    // A byte less is had where the addresses are of 32 bits.
    const Memory memory = xmalloc(SIZE_MAX / 2 + 1);
    EXPECT_FALSE(memory);
    ASSERT_EQ(device.log().size(), 1U);
    EXPECT_EQ(device.log().front().rfind("Failed to allocate ", 0), 0U);
    EXPECT_NE(device.log().front().find(" bytes"), std::string::npos);
}

} // namespace
} // namespace qorcfg
