#include "platform/qor_platform.h"

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>

namespace {

constexpr const char *end = nullptr;

TEST(ExecTest, TheProgramGetsItsArgumentsWithoutAShellAndItsStatusIsReturned)
{
    EXPECT_EQ(qor_safe_system(0, 0, 0, "/bin/sh", "-c", "[ \"$1\" = '$(id) x' ] && exit 5", "sh",
                              "$(id) x", end),
              5);
    EXPECT_EQ(qor_safe_system(0, 0, 0, "true", end), 0);
}

TEST(ExecTest, ASignalIsToldAbove128)
{
    EXPECT_EQ(qor_safe_system(0, 0, 0, "/bin/sh", "-c", "kill -15 $$", end), 128 + SIGTERM);
}

TEST(ExecTest, AMissingProgramAndNoProgramAreFailures)
{
    EXPECT_EQ(qor_safe_system(0, 0, 0, "/no/such/program", end), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(qor_safe_system(0, 0, 0, end), -1);
    EXPECT_EQ(errno, EINVAL);
}

} // namespace
