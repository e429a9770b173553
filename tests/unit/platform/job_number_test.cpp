#include "platform/job_number.h"

#include <gtest/gtest.h>

namespace qorcfg {
namespace {

TEST(JobNumberTest, NumbersRunToFourThousandNinetySevenAndBeginAtOneAgain)
{
    EXPECT_EQ(next_job_number(0), 1);
    EXPECT_EQ(next_job_number(4095), 4096);
    EXPECT_EQ(next_job_number(4096), 4097);
    EXPECT_EQ(next_job_number(4097), 1);
}

TEST(JobNumberTest, NewerIsCountedTheShorterWayRoundWhereTheLatestJobIsNotKnown)
{
    EXPECT_TRUE(is_newer_job(8, 7));
    EXPECT_FALSE(is_newer_job(7, 8));
    EXPECT_FALSE(is_newer_job(7, 7));
    EXPECT_TRUE(is_newer_job(1, 4097));
    EXPECT_FALSE(is_newer_job(4097, 1));
    EXPECT_TRUE(is_newer_job(2049, 1));
    EXPECT_FALSE(is_newer_job(2050, 1));
}

TEST(JobNumberTest, NewerIsCountedBackFromTheLatestJob)
{
    EXPECT_TRUE(is_newer_job(8, 7, 8));
    EXPECT_FALSE(is_newer_job(7, 8, 8));
    EXPECT_FALSE(is_newer_job(7, 7, 8));
    EXPECT_TRUE(is_newer_job(1, 4097, 1));
    EXPECT_FALSE(is_newer_job(4097, 1, 1));
    EXPECT_TRUE(is_newer_job(4000, 1, 4000));
    EXPECT_FALSE(is_newer_job(1, 4000, 4000));
    EXPECT_FALSE(is_newer_job(10, 9, 9));
    EXPECT_EQ(jobs_since(4097, 2), 2);
    EXPECT_EQ(jobs_since(3, 2), 4096);
}

} // namespace
} // namespace qorcfg
