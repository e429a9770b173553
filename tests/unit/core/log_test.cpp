#include "core/base/log.h"

#include "support/device_root.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <regex>

namespace qorcfg {
namespace {

using test::DeviceRoot;

TEST(LogTest, ALineHasTimeSourceNumberAndMessage)
{
    const DeviceRoot device;
    EXPECT_EQ(qorcfg_log("ietf_ddns", 42, " update %s", "package ddns"), 0);
    ASSERT_EQ(device.log_lines().size(), 1U);
    const std::regex form(
        R"(\[\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\]\[ietf_ddns 42\] :  update package ddns)");
    EXPECT_TRUE(std::regex_match(device.log_lines().front(), form)) << device.log_lines().front();
}

TEST(LogTest, NothingIsWrittenWhileTheSwitchFileIsAbsent)
{
    const DeviceRoot device;
    std::filesystem::remove(device.path("/tmp/qorcfg_debug"));
    qorcfg_log("unit", 1, "silent");
    EXPECT_FALSE(device.exists("/dev/console"));
    device.write("/tmp/qorcfg_debug", "");
    qorcfg_log("unit", 1, "spoken");
    EXPECT_EQ(device.log(), std::vector<std::string>{"spoken"});
}

TEST(LogTest, AMessageIsCutAt1023Bytes)
{
    const DeviceRoot device;
    qorcfg_log("unit", 1, "%s", std::string(2000, 'x').c_str());
    EXPECT_EQ(device.log(), std::vector<std::string>{std::string(1023, 'x')});
}

TEST(LogTest, AMissingConsoleIsSilent)
{
    const DeviceRoot device;
    std::filesystem::remove_all(device.path("/dev"));
    EXPECT_EQ(qorcfg_log("unit", 1, "lost"), 0);
}

TEST(LogTest, TheMacroNamesTheSourceUnitAndTheLineItStandsOn)
{
    const DeviceRoot device;
    QORCFG_LOG("here");
    const std::string mark = "[log_test " + std::to_string(__LINE__ - 1) + "] : here";
    ASSERT_EQ(device.log_lines().size(), 1U);
    EXPECT_NE(device.log_lines().front().find(mark), std::string::npos);
}

} // namespace
} // namespace qorcfg
