#include "core/worker.h"

#include "core/base/globals.h"
#include "core/base/registry.h"
#include "core/change_queue.h"
#include "core/job_board.h"
#include "core/startup.h"
#include "platform/key_id.h"
#include "support/device_root.h"
#include "support/wait.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace qorcfg {
namespace {

using test::DeviceRoot;
using test::wait_until;
using Lines = std::vector<std::string>;

// What the callbacks below were called with, in order.
Lines calls;

int update_a(int job)
{
    return static_cast<int>(calls.emplace_back("a " + std::to_string(job)).size());
}
int update_b(int job)
{
    return static_cast<int>(calls.emplace_back("b " + std::to_string(job)).size());
}
int failing_update(int)
{
    throw std::runtime_error("broken");
}

std::string described(const ChangedKeys *keys, int action)
{
    std::string text = "soap " + std::to_string(action) + ":";
    keys->for_each([&](std::int32_t id) { text += " " + std::to_string(id); });
    return text;
}

int soap(const ChangedKeys *keys, int action)
{
    calls.push_back(described(keys, action));
    return 0;
}

class WorkerTest : public testing::Test {
protected:
    WorkerTest()
    {
        calls.clear();
        pth_count = 0;
        device_.write_program("/etc/qorcfg.d/commit.sh", "#!/bin/sh\necho \"commit $*\" >>" +
                                                             device_.path("/tmp/runs") + "\n");
    }

    std::string id(const char *key) const { return std::to_string(config_key_id(key)); }
    std::string status() const { return device_.read(status_file); }

    DeviceRoot device_;
};

TEST_F(WorkerTest, AJobWithoutSubscribersStillPublishesAndRunsTheHook)
{
    const int job = job_board().create();
    device_.apply({"unknown"}, job);
    EXPECT_EQ(status(), "1");
    EXPECT_EQ(device_.read("/tmp/runs"), "commit 1\n");
    EXPECT_EQ(device_.log(), Lines{"NO.1 get config change number is  1"});
}

TEST_F(WorkerTest, ACallbackOfTwoChangedKeysRunsOnce)
{
    subscribe_config(10, update_a, "A");
    subscribe_config(10, update_b, "A");
    subscribe_config(10, update_a, "B");
    device_.apply({"B", "A"}, job_board().create());
    EXPECT_EQ(calls, (Lines{"a 1", "b 1"}));
}

TEST_F(WorkerTest, ASoapCallbackGetsItsKeysInSlotOrderWithTheFirstAction)
{
    subscribe_soap(10, soap, "A");
    subscribe_soap(10, soap, "B");
    JobRecord record;
    record.job = job_board().create();
    record.changes[0] = {config_key_id("B"), 5};
    record.changes[1] = {config_key_id("A"), 6};
    record.count = 2;
    run_job(record);
    EXPECT_EQ(calls, Lines{"soap 5: " + id("B") + " " + id("A")});
}

TEST_F(WorkerTest, SoapCallbacksRunBeforeUpdateCallbacksAndTheHookLast)
{
    device_.write_program("/etc/qorcfg.d/commit.sh", "#!/bin/sh\ncp " + device_.path(status_file) +
                                                         " " + device_.path("/tmp/status_at_hook") +
                                                         "\n");
    subscribe_config(10, update_a, "A");
    subscribe_soap(10, soap, "A");
    device_.apply({"A"}, job_board().create(), 0);
    EXPECT_EQ(calls, (Lines{"soap 0: " + id("A"), "a 1"}));
    EXPECT_EQ(device_.read("/tmp/status_at_hook"), "2");
    EXPECT_EQ(status(), "1");
}

TEST_F(WorkerTest, AnExceptionEndsOnlyItsCallback)
{
    subscribe_config(10, failing_update, "A");
    subscribe_config(10, update_b, "A");
    device_.apply({"A"}, job_board().create());
    EXPECT_EQ(calls, Lines{"b 1"});
    EXPECT_EQ(status(), "1");
    EXPECT_EQ(device_.log().back(), "callback failed: broken");
}

TEST_F(WorkerTest, AJobWithoutChangesIsInvalid)
{
    JobRecord record;
    record.job = job_board().create();
    run_job(record);
    EXPECT_EQ(status(), "3");
    EXPECT_FALSE(device_.exists("/tmp/runs"));
    EXPECT_EQ(device_.log(), Lines{"  This is not a valid Action"});
}

TEST_F(WorkerTest, AnOvertakenJobWithoutChangesWritesNothing)
{
    JobRecord record;
    record.job = job_board().create();
    const int newer = job_board().create();
    run_job(record);
    EXPECT_EQ(status(), "");
    job_board().abandon(newer);
}

TEST_F(WorkerTest, AWorkerLogsItsStartAndItsStop)
{
    auto record = std::make_unique<JobRecord>();
    record->job = job_board().create();
    record->count = 1;
    ASSERT_TRUE(start_worker(std::move(record)));
    ASSERT_TRUE(wait_until([] { return job_board().wait_for_callbacks(); }));
    EXPECT_EQ(device_.log(),
              (Lines{" NO.1 Start pthread !!!", "NO.1 get config change number is  1",
                     " NO.1 Stop pthread !!!"}));
}

TEST_F(WorkerTest, TheQueueStartsOneJobForWhatWasAnnounced)
{
    subscribe_config(10, update_a, "A");
    ChangeQueue queue;
    queue.handle({3, 0});
    EXPECT_EQ(device_.log().back(), "No found config change !!");
    EXPECT_EQ(pth_count, 0);
    queue.handle({2, config_key_id("A")});
    EXPECT_EQ(device_.log().back(), " recv set action " + id("A"));
    queue.handle({3, 77});
    ASSERT_TRUE(wait_until([] { return job_board().wait_for_callbacks(); }));
    EXPECT_EQ(calls, Lines{"a 1"});
    EXPECT_EQ(pth_count, 1);
    EXPECT_TRUE(device_.exists("/etc/qorcfg/config.mdb"));
    queue.handle({3, 0});
    EXPECT_EQ(device_.log().back(), "No found config change !!");
    EXPECT_EQ(pth_count, 1);
}

TEST_F(WorkerTest, TheStartUpPassRunsEachUpdateCallbackOnceWithItsFirstKeyAndNoSoapCallback)
{
    subscribe_soap(10, soap, "A");
    subscribe_config(10, update_b, "B");
    subscribe_config(10, update_a, "C");
    subscribe_config(10, update_b, "C");
    subscribe_config(10, nullptr, "C");
    device_.clear_log();
    run_startup_pass();
    EXPECT_EQ(calls, (Lines{"b " + id("B"), "a " + id("C")}));
    EXPECT_EQ(device_.log(),
              (Lines{"Init call callback " + id("B"), "Init call callback " + id("C")}));
}

} // namespace
} // namespace qorcfg
