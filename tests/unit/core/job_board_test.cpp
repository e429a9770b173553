#include "core/job_board.h"

#include "core/base/globals.h"
#include "support/device_root.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

namespace qorcfg {
namespace {

using test::DeviceRoot;

class JobBoardTest : public testing::Test {
protected:
    JobBoardTest() { pth_count = 0; }
    std::string status() const { return device_.read(status_file); }
    std::string jobs() const { return device_.read(jobs_file); }

    DeviceRoot device_;
    JobBoard board_;
};

TEST_F(JobBoardTest, OneJobGoesFromTwoToOne)
{
    const int job = board_.create();
    EXPECT_EQ(job, 1);
    EXPECT_EQ(status(), "");
    board_.begin(job);
    EXPECT_EQ(status(), "2");
    board_.callbacks_done(job);
    EXPECT_EQ(status(), "2");
    board_.end(job, status_done);
    EXPECT_EQ(status(), "1");
}

TEST_F(JobBoardTest, AnOvertakenJobLeavesTheEndToTheNewerOne)
{
    while (pth_count < 7) {
        board_.create();
    }
    board_.begin(7);
    board_.create();
    board_.begin(8);
    board_.end(7, status_done);
    EXPECT_EQ(status(), "2");
    board_.end(8, status_done);
    EXPECT_EQ(status(), "1");
}

TEST_F(JobBoardTest, AWorkerThatStartsAfterANewerJobsEndDoesNotWriteTwo)
{
    board_.create();
    board_.create();
    board_.begin(2);
    board_.end(2, status_done);
    board_.begin(1);
    EXPECT_EQ(status(), "1");
    board_.end(1, status_done);
    EXPECT_EQ(status(), "1");
}

TEST_F(JobBoardTest, AJobThatFollowsAnEndOfThousandsOfJobsAgoWritesTwo)
{
    board_.end(board_.create(), status_done);
    pth_count = 3000;
    board_.begin(3000);
    EXPECT_EQ(status(), "2");
}

TEST_F(JobBoardTest, TheNumberAfterFourThousandNinetySevenIsOne)
{
    pth_count = 4096;
    EXPECT_EQ(board_.create(), 4097);
    board_.begin(4097);
    board_.end(4097, status_done);
    EXPECT_EQ(status(), "1");
    EXPECT_EQ(board_.create(), 1);
    board_.begin(1);
    EXPECT_EQ(status(), "2");
    board_.end(1, status_invalid);
    EXPECT_EQ(status(), "3");
}

TEST_F(JobBoardTest, TheJobsFileTellsLastRunningAndEnded)
{
    board_.publish();
    EXPECT_EQ(jobs(), "{\"last\": 0, \"running\": [], \"ended\": 0}\n");
    board_.create();
    board_.create();
    EXPECT_EQ(jobs(), "{\"last\": 2, \"running\": [1, 2], \"ended\": 0}\n");
    board_.end(2, status_done);
    EXPECT_EQ(jobs(), "{\"last\": 2, \"running\": [1], \"ended\": 2}\n");
    board_.abandon(1);
    EXPECT_EQ(jobs(), "{\"last\": 2, \"running\": [], \"ended\": 1}\n");
}

TEST_F(JobBoardTest, BothFilesCanBeReadByEverybody)
{
    board_.begin(board_.create());
    for (const char *file : {status_file, jobs_file}) {
        struct stat info {};
        ASSERT_EQ(::stat(device_.path(file).c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 07777, 0644U) << file;
    }
}

TEST_F(JobBoardTest, AJobThatCouldNotStartLeavesTheStatusAlone)
{
    board_.end(board_.create(), status_done);
    board_.abandon(board_.create());
    EXPECT_EQ(status(), "1");
}

TEST_F(JobBoardTest, AJobThatCouldNotStartLeavesNobodyWaitingForTheOneBeforeIt)
{
    board_.begin(board_.create());
    board_.begin(board_.create());
    board_.abandon(board_.create());
    board_.end(2, status_done);
    EXPECT_EQ(status(), "2");
    board_.end(1, status_done);
    EXPECT_EQ(status(), "1");

    board_.begin(board_.create());
    board_.create();
    board_.end(4, status_done);
    EXPECT_EQ(status(), "2");
    board_.abandon(5);
    EXPECT_EQ(status(), "1");
}

TEST_F(JobBoardTest, WaitingForCallbacksEndsWhenTheLastOneReturnsAndTellsOfWorkersLeft)
{
    const int job = board_.create();
    board_.worker_started();
    std::thread worker([&] { board_.callbacks_done(job); });
    EXPECT_FALSE(board_.wait_for_callbacks());
    worker.join();
    board_.end(job, status_done);
    board_.worker_gone();
    EXPECT_TRUE(board_.wait_for_callbacks());
}

} // namespace
} // namespace qorcfg
