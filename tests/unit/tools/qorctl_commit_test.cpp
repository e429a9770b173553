#include "support/control_listener.h"
#include "support/qorctl_test.h"
#include "support/scripted_jobs.h"

#include "platform/file.h"
#include "platform/key_id.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <future>
#include <set>
#include <sys/file.h>

namespace qorcfg {

namespace {

using Answer = ControlListener::Answer;
using Messages = std::vector<std::string>;

constexpr const char *jobs_path = "/tmp/cache/qorcfg/jobs.json";
constexpr const char *store_copy = "/etc/qorcfg/config.mdb";

std::string message(int action, const std::string &key)
{
    return std::to_string(action) + ":" + std::to_string(config_key_id(key.c_str()));
}

class QorctlCommit : public QorctlTest {
protected:
    /// Sets PREFIX1 to PREFIXcount; returns what is announced for them.
    static std::set<std::string> set_numbered(const std::string &prefix, int count)
    {
        std::set<std::string> wanted{message(0, prefix)};
        std::vector<StoreWrite> writes;
        for (int i = 1; i <= count; ++i) {
            writes.push_back({prefix + std::to_string(i), "x"});
            wanted.insert(message(0, writes.back().key));
        }
        EXPECT_EQ(store_write(writes, Marking::mark), "");
        return wanted;
    }

    void publish(const std::string &text) const
    {
        EXPECT_TRUE(replace_file(path(jobs_path), text, 0644));
    }

    /// The last line of a commit that waits and fails in the daemon's hands.
    ControlListener::Decide publishing(const std::string &text) const
    {
        return [=, this](const std::string &received) {
            if (received == "3:0") {
                publish(text);
            }
            return Answer::take;
        };
    }
};

TEST_F(QorctlCommit, EachMarkedKeyIsAnnouncedByWhatHappenedToItAndThenCommitted)
{
    run({"set", "--no-announce", "changed=1", "removed=1"});
    run({"set", "changed=2", "created=1"});
    run({"unset", "removed"});
    ControlListener daemon;
    const Outcome committed = run({"commit"});
    EXPECT_EQ(committed.status, 0);
    EXPECT_EQ(committed.out + committed.err, "");
    EXPECT_EQ(daemon.messages(4), (Messages{message(2, "changed"), message(0, "created"),
                                            message(1, "removed"), "3:0"}));
    EXPECT_TRUE(marked().empty());
    EXPECT_FALSE(device.exists(store_copy));
}

TEST_F(QorctlCommit, TheStemOfANumberedKeyIsAnnouncedOnce)
{
    const std::set<std::string> wanted = set_numbered("rule", 3);
    ControlListener daemon;
    EXPECT_EQ(run({"commit"}).status, 0);
    Messages messages = daemon.messages(5);
    ASSERT_EQ(messages.size(), 5u);
    EXPECT_EQ(messages.back(), "3:0");
    messages.pop_back();
    EXPECT_EQ(std::set<std::string>(messages.begin(), messages.end()), wanted);
}

TEST_F(QorctlCommit, TwoHundredMarkedKeysGoAsFourCommitsThatTheDaemonCanHold)
{
    const std::set<std::string> wanted = set_numbered("rule", 200);
    ControlListener daemon;
    EXPECT_EQ(run({"commit"}).status, 0);
    const Messages messages = daemon.messages(wanted.size() + 4);
    EXPECT_EQ(messages.size(), wanted.size() + 4);
    std::set<std::string> announced;
    int commits = 0;
    int in_group = 0;
    for (const std::string &each : messages) {
        if (each == "3:0") {
            ++commits;
            EXPECT_GE(in_group, 1);
            EXPECT_LE(in_group, 64);
            in_group = 0;
        } else {
            ++in_group;
            EXPECT_TRUE(announced.insert(each).second) << each;
        }
    }
    EXPECT_EQ(commits, 4);
    EXPECT_EQ(in_group, 0);
    EXPECT_EQ(announced, wanted);
    EXPECT_TRUE(marked().empty());
}

TEST_F(QorctlCommit, NothingMarkedIsSaidAndIsNoError)
{
    run({"set", "--no-announce", "a=1"});
    for (const auto &arguments : {std::vector<std::string>{"commit"}, {"commit", "--wait"}}) {
        const Outcome committed = run(arguments);
        EXPECT_EQ(committed.status, 0);
        EXPECT_EQ(committed.out, "nothing to commit\n");
        EXPECT_EQ(committed.err, "");
    }
}

TEST_F(QorctlCommit, WithoutDaemonTheStoreIsSavedAndThatIsSaid)
{
    run({"set", "a=1"});
    const Outcome committed = run({"commit", "--wait"});
    EXPECT_EQ(committed.status, 0);
    EXPECT_EQ(committed.out, "");
    EXPECT_NE(committed.err.find("nobody was told"), std::string::npos);
    EXPECT_EQ(std::count(committed.err.begin(), committed.err.end(), '\n'), 1);
    EXPECT_TRUE(marked().empty());
    EXPECT_TRUE(device.exists(store_copy));
}

TEST_F(QorctlCommit, ASocketThatADaemonLeftBehindCountsAsNone)
{
    {
        const ControlListener gone;
    }
    ASSERT_TRUE(device.exists("/tmp/cache/qorcfg/server.socket"));
    run({"set", "a=1"});
    const Outcome committed = run({"commit"});
    EXPECT_EQ(committed.status, 0);
    EXPECT_NE(committed.err.find("nobody was told"), std::string::npos);
    EXPECT_TRUE(device.exists(store_copy));
}

TEST_F(QorctlCommit, AStoreThatCannotBeSavedKeepsTheMarks)
{
    run({"set", "a=1"});
    std::filesystem::remove_all(path("/etc"));
    const Outcome committed = run({"commit"});
    EXPECT_EQ(committed.status, 1);
    EXPECT_EQ(marked(), Messages{"a"});
}

TEST_F(QorctlCommit, WhatADyingDaemonHasNotTakenStaysMarked)
{
    set_numbered("rule", 200);
    ControlListener daemon([](const std::string &received) {
        return received == "3:0" ? Answer::take_last : Answer::take;
    });
    publish("{\"last\": 1, \"running\": [], \"ended\": 1}");
    const Outcome committed = run({"commit", "--wait=20"});
    EXPECT_TRUE(committed.refused(1, path("/tmp/cache/qorcfg/server.socket")));
    EXPECT_TRUE(committed.refused(1, "still marked: 137 of 200 keys"));
    EXPECT_EQ(daemon.messages(65).size(), 65u);
    EXPECT_EQ(marked().size(), 137u);
    EXPECT_FALSE(device.exists(store_copy));
}

TEST_F(QorctlCommit, ACommitThatTheDaemonDroppedUnreadKeepsTheMarks)
{
    run({"set", "a=1", "b=1"});
    ControlListener daemon([](const std::string &received) {
        return received == "3:0" ? Answer::drop_unread : Answer::take;
    });
    EXPECT_TRUE(run({"commit", "--wait=20"}).refused(1, "still marked: 2 of 2 keys"));
    EXPECT_EQ(marked(), (Messages{"a", "b"}));
}

TEST_F(QorctlCommit, WaitingReturnsWhenTheCommitsJobAndAllOlderOnesHaveEnded)
{
    run({"set", "a=1"});
    ControlListener daemon;
    ScriptedJobs jobs(path(jobs_path),
                      {"{\"last\": 3, \"running\": [2, 3], \"ended\": 1}",
                       "{\"last\": 3, \"running\": [2], \"ended\": 3}",
                       "{\"last\": 4, \"running\": [2, 4], \"ended\": 3}",
                       "{\"last\": 4, \"running\": [4], \"ended\": 2}", "not reached"});
    const Outcome committed = run({"commit", "--wait=20"});
    EXPECT_EQ(committed.status, 0) << committed.err;
    EXPECT_EQ(jobs.read(), 4u);
}

TEST_F(QorctlCommit, OlderJobsAreThoseBeforeTheNumbersBeganAnewToo)
{
    run({"set", "a=1"});
    ControlListener daemon;
    ScriptedJobs jobs(path(jobs_path),
                      {"{\"last\": 1, \"running\": [4096, 4097], \"ended\": 1}",
                       "{\"last\": 2, \"running\": [2, 4097], \"ended\": 4096}",
                       "{\"last\": 2, \"running\": [2], \"ended\": 4097}", "not reached"});
    const Outcome committed = run({"commit", "--wait=20"});
    EXPECT_EQ(committed.status, 0) << committed.err;
    EXPECT_EQ(jobs.read(), 3u);
}

TEST_F(QorctlCommit, ADaemonThatIsStartedAnewWhileItsJobRunsIsAFailure)
{
    run({"set", "a=1"});
    ControlListener daemon;
    ScriptedJobs jobs(path(jobs_path), {"{\"last\": 3000, \"running\": [3000], \"ended\": 2999}",
                                        "{\"last\": 0, \"running\": [], \"ended\": 0}"});
    EXPECT_TRUE(run({"commit", "--wait=20"}).refused(1, "started anew"));
    EXPECT_TRUE(marked().empty());
}

TEST_F(QorctlCommit, AJobThatDoesNotEndInTimeIsNamedAndIsAFailure)
{
    run({"set", "a=1"});
    ControlListener daemon(publishing("{\"last\": 5, \"running\": [4, 5], \"ended\": 3}"));
    EXPECT_TRUE(run({"commit", "--wait=1"}).refused(1, "not ended: job 4, 5"));
    EXPECT_TRUE(marked().empty());
}

TEST_F(QorctlCommit, ADaemonThatDoesNotTakeTheCommitInTimeIsAFailure)
{
    run({"set", "a=1"});
    std::promise<void> over;
    std::future<void> wait_for_end = over.get_future();
    ControlListener daemon([&](const std::string &received) {
        if (received == "3:0") {
            wait_for_end.wait();
        }
        return Answer::take;
    });
    EXPECT_TRUE(run({"commit", "--wait=1"}).refused(1, "still marked: 1 of 1 keys"));
    over.set_value();
}

TEST_F(QorctlCommit, WaitingWithoutPublishedJobsIsAFailure)
{
    run({"set", "a=1"});
    ControlListener daemon;
    EXPECT_TRUE(run({"commit", "--wait"}).refused(1, path(jobs_path)));
}

TEST_F(QorctlCommit, AWaitThatIsNoTimeIsMisuse)
{
    for (const char *wait : {"--wait=0", "--wait=-1", "--wait=x", "--wait=86401"}) {
        EXPECT_TRUE(run({"commit", wait}).refused(2, "--wait")) << wait;
    }
    EXPECT_TRUE(run({"commit", "surplus"}).refused(2, "surplus"));
}

TEST_F(QorctlCommit, WhileOneCommitIsSentTheLockKeepsOthersOut)
{
    run({"set", "a=1"});
    publish("{\"last\": 1, \"running\": [], \"ended\": 1}");
    std::atomic<int> error_while_sent{0};
    const std::string lock_path_name = path("/tmp/cache/qorcfg/commit.lock");
    const auto try_lock = [&] {
        const Fd other = open_file(lock_path_name, O_RDONLY);
        return ::flock(other.get(), LOCK_EX | LOCK_NB) == 0 ? 0 : errno;
    };
    ControlListener daemon([&](const std::string &received) {
        if (received == "3:0") {
            error_while_sent = try_lock();
        }
        return Answer::take;
    });
    EXPECT_EQ(run({"commit", "--wait=20"}).status, 0);
    EXPECT_EQ(error_while_sent, EWOULDBLOCK);
    EXPECT_EQ(try_lock(), 0);
}

TEST_F(QorctlCommit, TwoCommitsAtOnceAnnounceEveryKeyOnce)
{
    const std::set<std::string> wanted = set_numbered("rule", 40);
    ControlListener daemon;
    auto other = std::async(std::launch::async, [] { return run({"commit"}); });
    const Outcome one = run({"commit"});
    const Outcome two = other.get();
    EXPECT_EQ(one.status, 0);
    EXPECT_EQ(two.status, 0);
    EXPECT_EQ(one.out + two.out, "nothing to commit\n");
    EXPECT_EQ(daemon.messages(wanted.size() + 1).size(), wanted.size() + 1);
}

TEST_F(QorctlCommit, ALockThatCannotBeTakenIsNoError)
{
    std::filesystem::create_symlink("/none/at/all", path("/tmp/cache/qorcfg/commit.lock"));
    run({"set", "a=1"});
    ControlListener daemon;
    EXPECT_EQ(run({"commit"}).status, 0);
    EXPECT_EQ(daemon.messages(2).size(), 2u);
}

} // namespace

} // namespace qorcfg
