#include "core/explained_jobs.h"

#include "core/base/globals.h"
#include "core/job_board.h"
#include "engine/uci_commit.h"
#include "platform/file.h"
#include "platform/key_id.h"
#include "support/device_root.h"
#include "support/wait.h"
#include "tools/explanations.h"

#include <array>
#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

namespace qorcfg {
namespace {

namespace fs = std::filesystem;
using test::DeviceRoot;
using test::wait_until;

constexpr const char *hook = "/etc/qorcfg.d/commit.sh";

void write_document(const std::string &section, const std::string &value, int job)
{
    Document doc;
    doc.section("type", section).add("value", value);
    commit_uci_section(doc, "package", section, 0, job);
}

int update(int job)
{
    write_document("section", std::to_string(job), job);
    return 0;
}

constexpr int overlapping_jobs = 4;
std::atomic<int> at_work{0};

/// Writes documents of its own while its fellows are at work too.
template <int Number> int overlapping_update(int job)
{
    ++at_work;
    EXPECT_TRUE(wait_until([] { return at_work >= overlapping_jobs; }));
    for (int i = 0; i < 50; ++i) {
        write_document("of" + std::to_string(Number), std::to_string(i), job);
    }
    return 0;
}

class ExplainedJobsTest : public testing::Test {
protected:
    ExplainedJobsTest()
    {
        explained_jobs().wanted(); // forgets what earlier tests left
        registry().begin_component("component");
        subscribe_config(10, update, "key");
        device_.write_program(hook, "#!/bin/sh\nexit 0\n");
    }

    void switch_on() const { device_.write(explain_switch, ""); }
    int run_job() const
    {
        const int job = job_board().create();
        device_.apply({"key"}, job);
        return job;
    }
    static std::vector<int> told_jobs()
    {
        std::vector<int> numbers;
        for (const ExplainedJob &job : read_explanations().jobs) {
            numbers.push_back(job.job);
        }
        return numbers;
    }

    DeviceRoot device_;
};

TEST_F(ExplainedJobsTest, WithoutTheSwitchNothingIsTold)
{
    run_job();
    EXPECT_FALSE(device_.exists(explain_file));
}

TEST_F(ExplainedJobsTest, AJobIsToldInAFileOfItsOwnerAlone)
{
    switch_on();
    run_job();
    struct stat info {};
    ASSERT_EQ(::stat(device_.path(explain_file).c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600U);
    const Explanations told = read_explanations();
    ASSERT_EQ(told.error, "");
    ASSERT_EQ(told.jobs.size(), 1U);
    const ExplainedJob &job = told.jobs[0];
    EXPECT_EQ(job.job, 1);
    ASSERT_EQ(job.keys.size(), 1U);
    EXPECT_EQ(job.keys[0].id, config_key_id("key"));
    EXPECT_EQ(job.keys[0].callbacks, std::vector<std::string>{"component update #1"});
    ASSERT_EQ(job.callbacks.size(), 1U);
    EXPECT_EQ(job.callbacks[0].name, "component update #1");
    ASSERT_EQ(job.callbacks[0].writes.size(), 1U);
    EXPECT_EQ(job.callbacks[0].writes[0].package, "package");
    EXPECT_EQ(job.callbacks[0].writes[0].section, "section");
    EXPECT_EQ(job.callbacks[0].writes[0].lines,
              "set package.section=type\nset package.section.value=1\n");
    EXPECT_TRUE(job.hook.ok());
    EXPECT_GT(job.hook_time.count(), 0);
    EXPECT_GE(job.time, job.callbacks[0].time + job.hook_time);
}

TEST_F(ExplainedJobsTest, TheHookScriptsEndIsTold)
{
    switch_on();
    for (const char *end : {"exit 3", "kill -TERM $$"}) {
        device_.write_program(hook, std::string("#!/bin/sh\n") + end + "\n");
        run_job();
    }
    const std::vector<ExplainedJob> jobs = read_explanations().jobs;
    ASSERT_EQ(jobs.size(), 2U);
    EXPECT_EQ(jobs[0].hook.status, 3);
    EXPECT_EQ(jobs[1].hook.status, 128 + SIGTERM);
}

TEST_F(ExplainedJobsTest, AMissingHookScriptIsTold)
{
    switch_on();
    fs::remove(device_.path(hook));
    run_job();
    const std::vector<ExplainedJob> jobs = read_explanations().jobs;
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_EQ(jobs[0].hook.error, ENOENT);
}

TEST_F(ExplainedJobsTest, TheLastSixteenJobsAreKept)
{
    switch_on();
    for (std::size_t i = 0; i < ExplainedJobs::kept_jobs + 2; ++i) {
        run_job();
    }
    const std::vector<int> told = told_jobs();
    ASSERT_EQ(told.size(), 16U);
    EXPECT_EQ(told.front(), 3);
    EXPECT_EQ(told.back(), 18);
}

TEST_F(ExplainedJobsTest, TheSwitchIsLookedAtWhenAJobBegins)
{
    device_.write_program(hook, "#!/bin/sh\n: >" + device_.path(explain_switch) + "\n");
    run_job();
    EXPECT_FALSE(device_.exists(explain_file));
    run_job();
    EXPECT_EQ(told_jobs(), std::vector<int>{2});
}

TEST_F(ExplainedJobsTest, SwitchedOffWhileAJobRunsNothingComesBack)
{
    switch_on();
    run_job();
    device_.write_program(hook, "#!/bin/sh\nrm " + device_.path(explain_switch) + " " +
                                    device_.path(explain_file) + "\n");
    run_job();
    EXPECT_FALSE(device_.exists(explain_file));
}

TEST_F(ExplainedJobsTest, AJobWithoutTheSwitchRemovesWhatWasTold)
{
    switch_on();
    run_job();
    fs::remove(device_.path(explain_switch));
    run_job();
    EXPECT_FALSE(device_.exists(explain_file));
}

TEST_F(ExplainedJobsTest, SwitchedOffAndOnAgainEarlierJobsDoNotComeBack)
{
    switch_on();
    run_job();
    fs::remove(device_.path(explain_file));
    EXPECT_EQ(run_job(), 2);
    EXPECT_EQ(told_jobs(), std::vector<int>{2});
}

TEST_F(ExplainedJobsTest, TheJobHasEndedForEverybodyBeforeItIsTold)
{
    switch_on();
    // Telling fails, as nothing can be renamed over this folder, and that is logged on a console
    // that holds up its writer.
    device_.write(std::string(explain_file) + "/in_the_way", "");
    const std::string console = device_.path("/dev/console");
    device_.write_program(hook, "#!/bin/sh\nrm " + console + "\nmkfifo " + console + "\n");
    std::thread worker([this] { run_job(); });
    EXPECT_TRUE(wait_until([this] {
        return device_.read(jobs_file) == "{\"last\": 1, \"running\": [], \"ended\": 1}\n";
    }));
    EXPECT_EQ(device_.read(status_file), "1");
    EXPECT_NE(device_.read("/dev/console").find(std::string("cannot write ") + explain_file),
              std::string::npos);
    worker.join();
    EXPECT_FALSE(device_.exists(std::string(explain_file) + ".new"));
}

TEST_F(ExplainedJobsTest, OverlappingJobsTellOnlyOfThemselves)
{
    switch_on();
    at_work = 0;
    subscribe_config(10, overlapping_update<0>, "key0");
    subscribe_config(10, overlapping_update<1>, "key1");
    subscribe_config(10, overlapping_update<2>, "key2");
    subscribe_config(10, overlapping_update<3>, "key3");
    std::vector<std::thread> workers;
    for (int i = 0; i < overlapping_jobs; ++i) {
        workers.emplace_back([this, i, job = job_board().create()] {
            device_.apply({"key" + std::to_string(i)}, job);
        });
    }
    for (std::thread &worker : workers) {
        worker.join();
    }
    const std::vector<ExplainedJob> jobs = read_explanations().jobs;
    ASSERT_EQ(jobs.size(), static_cast<std::size_t>(overlapping_jobs));
    for (const ExplainedJob &job : jobs) {
        const std::string number = std::to_string(job.job - 1);
        ASSERT_EQ(job.keys.size(), 1U);
        EXPECT_EQ(job.keys[0].id, config_key_id(("key" + number).c_str()));
        ASSERT_EQ(job.callbacks.size(), 1U);
        ASSERT_EQ(job.callbacks[0].writes.size(), 50U);
        for (const ExplainedWrite &write : job.callbacks[0].writes) {
            EXPECT_EQ(write.section, "of" + number);
        }
        // A new section gives two lines, a changed one three.
        EXPECT_EQ(job.line_count(), 2U + 49 * 3);
    }
}

} // namespace
} // namespace qorcfg
