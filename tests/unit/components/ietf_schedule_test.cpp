#include "components/components.h"

#include "support/device_root.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using Lines = std::vector<std::string>;

TEST(IetfScheduleTest, KeysAreSubscribedInOrder)
{
    const DeviceRoot device;
    EXPECT_EQ(device.subscribed_keys(ietf_schedule),
              (Lines{"everyday", "schedule_days_to_block", "schedule_start_block_time",
                     "schedule_end_block_time"}));
    EXPECT_EQ(device.log()[0], "init() - Initializing schedule");
}

TEST(IetfScheduleTest, RegisterOnlyLogs)
{
    const DeviceRoot device;
    ietf_schedule.register_();
    EXPECT_EQ(device.log(), Lines{"register() -  schedule"});
}

std::string document(const DeviceRoot &device)
{
    device.start_up(ietf_schedule);
    return device.document("schedule", "block_sched");
}

TEST(IetfScheduleTest, TheWordEverydayChoosesEveryDay)
{
    const DeviceRoot device;
    device.set({{"schedule_days_to_block", "everyday"},
                {"schedule_start_block_time", "08:00"},
                {"schedule_end_block_time", "23:30"}});
    EXPECT_EQ(document(device),
              R"({"schedule":{"block_sched":{"everyday":"1","sun":"1","mon":"1","tue":"1",)"
              R"("wed":"1","thu":"1","fri":"1","sat":"1","start_time":"08:00",)"
              R"("end_time":"23:30"}}})");
    EXPECT_EQ(device.log().back(), " update block schedule");
}

TEST(IetfScheduleTest, DaysAreChosenByTheirDigits)
{
    const DeviceRoot device;
    const std::vector<std::pair<std::string, std::string>> choices{
        {"0,6", "1000001"}, {"1,2", "0110000"}, {"345", "0001110"},
        {"", "0000000"},    {"7", "0000000"},   {"everyday1", "0100000"}};
    for (const auto &[digits, days] : choices) {
        device.set({{"schedule_days_to_block", digits}});
        const auto day = [&days = days](std::size_t i) { return days.substr(i, 1); };
        EXPECT_EQ(document(device), R"({"schedule":{"block_sched":{"everyday":"0","sun":")" +
                                        day(0) + R"(","mon":")" + day(1) + R"(","tue":")" + day(2) +
                                        R"(","wed":")" + day(3) + R"(","thu":")" + day(4) +
                                        R"(","fri":")" + day(5) + R"(","sat":")" + day(6) +
                                        R"("}}})")
            << digits;
    }
}

TEST(IetfScheduleTest, TheKeyEverydayIsNotRead)
{
    const DeviceRoot device;
    device.set({{"everyday", "1"}, {"schedule_days_to_block", "2"}});
    EXPECT_NE(document(device).find(R"("everyday":"0","sun":"0","mon":"0","tue":"1")"),
              std::string::npos);
}

TEST(IetfScheduleTest, ASpanThatEndsWithTheDayIsClosedAMinuteEarly)
{
    const DeviceRoot device;
    const std::vector<std::pair<std::string, std::string>> ends{
        {"24:00", "23:59"}, {"24:30", "23:59"}, {"23:30", "23:30"}, {"2400", "2400"}};
    for (const auto &[stored, written] : ends) {
        device.set({{"schedule_start_block_time", stored}, {"schedule_end_block_time", stored}});
        EXPECT_NE(document(device).find(R"("start_time":")" + stored + R"(","end_time":")" +
                                        written + R"("}}})"),
                  std::string::npos)
            << stored;
    }
}

TEST(IetfScheduleTest, ASatelliteWritesNothing)
{
    const DeviceRoot device;
    device.be_base(false);
    EXPECT_EQ(device.run_update(ietf_schedule, 1), 1);
    EXPECT_EQ(device.names_in("/tmp/cache/qorcfg/ucicfg.d"), Lines{});
    EXPECT_EQ(device.log().back(), " update block schedule");
}

} // namespace
} // namespace qorcfg
