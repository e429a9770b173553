#include "platform/child.h"

#include "platform/file.h"
#include "support/forked_process.h"
#include "support/scratch_root.h"
#include "support/text.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace qorcfg {
namespace {

using std::chrono::milliseconds;

/// Changes what a signal does as long as the object lives.
class SignalAction {
public:
    SignalAction(int number, void (*handler)(int)) : number_(number)
    {
        old_ = std::signal(number, handler);
    }
    ~SignalAction() { std::signal(number_, old_); }
    SignalAction(const SignalAction &) = delete;
    SignalAction &operator=(const SignalAction &) = delete;

private:
    int number_;
    void (*old_)(int);
};

class ChildTest : public testing::Test {
protected:
    /// Runs a shell script that finds the path of `out` in $1.
    ProgramEnd script(const std::string &text, milliseconds bound = program_bound) const
    {
        return run_program({"/bin/sh", "-c", text, "script", out}, bound);
    }
    std::string output() const { return read_file(out, 65536).value_or("unreadable"); }

    ScratchRoot root;
    std::string out = root / "out";
};

/// A process that is gone, or dead and waiting to be collected by somebody.
bool is_dead(const std::string &pid)
{
    const auto status = read_file("/proc/" + pid + "/stat", 4096);
    return !status || status->find(") Z ") != std::string::npos;
}

std::string first_line(const std::string &text)
{
    return text.substr(0, text.find('\n'));
}

TEST_F(ChildTest, TheExitStatusIsReturned)
{
    EXPECT_EQ(script("exit 7").status, 7);
    EXPECT_EQ(script("exit 7").error, 0);
    EXPECT_FALSE(script("exit 7").ok());
    EXPECT_TRUE(script("exit 0").ok());
}

TEST_F(ChildTest, AKilledProgramHasTheStatusOfItsSignal)
{
    const ProgramEnd end = script("kill -9 $$");
    EXPECT_EQ(end.status, 128 + SIGKILL);
    EXPECT_EQ(end.error, 0);
}

TEST_F(ChildTest, AMissingProgramIsReported)
{
    for (const char *name : {"/no/such/program", "no-such-program-at-all"}) {
        const ProgramEnd end = run_program({name});
        EXPECT_EQ(end.status, -1);
        EXPECT_EQ(end.error, ENOENT);
    }
    EXPECT_EQ(run_program({}).error, EINVAL);
}

TEST_F(ChildTest, AFileThatMayNotBeRunIsReported)
{
    ASSERT_TRUE(replace_file(out, "#!/bin/sh\nexit 0\n", 0600));
    EXPECT_EQ(run_program({out}).error, EACCES);
}

TEST_F(ChildTest, ANameWithoutASlashIsSearchedInThePath)
{
    EXPECT_TRUE(run_program({"true"}).ok());
    EXPECT_EQ(run_program({"false"}).status, 1);
}

TEST_F(ChildTest, ArgumentsReachTheProgramAsTheyAre)
{
    ASSERT_TRUE(run_program({"/bin/sh", "-c", "printf '%s|' \"$@\" > \"$0\"", out, "$(id) `id`", "",
                             "a b\n;c"})
                    .ok());
    EXPECT_EQ(output(), "$(id) `id`||a b\n;c|");
}

TEST_F(ChildTest, TheProgramHasNoDescriptorButTheThreeAndReadsNothing)
{
    const Fd plain(::open("/dev/zero", O_RDONLY)); // NOLINT: without O_CLOEXEC on purpose
    const Fd high(::fcntl(plain.get(), F_DUPFD, 200));
    ASSERT_TRUE(plain && high);
    ASSERT_TRUE(script("exec > \"$1\"; ls /proc/$$/fd; readlink /proc/$$/fd/0; cat; exit 0").ok());
    EXPECT_EQ(output(), "0\n1\n2\n/dev/null\n");
}

TEST_F(ChildTest, SignalsAreAtTheirDefaultThoughThisProcessIgnoresAndBlocksThem)
{
    const SignalAction pipe(SIGPIPE, SIG_IGN);
    const SignalAction file_size(SIGXFSZ, SIG_IGN);
    sigset_t blocked;
    sigset_t old;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, &old), 0);
    // The C library may ignore signals of its own, which come after the first 28.
    const ProgramEnd end =
        run_program({"grep", "-q", "-E", "^Sig(Ign|Blk):.*[1-9a-f].{0,6}$", "/proc/self/status"});
    const ProgramEnd readable = run_program({"grep", "-q", "^SigIgn", "/proc/self/status"});
    ::pthread_sigmask(SIG_SETMASK, &old, nullptr);
    EXPECT_EQ(end.status, 1) << "a signal is ignored or blocked";
    EXPECT_EQ(readable.status, 0);
}

TEST_F(ChildTest, TheProgramLeadsAProcessGroupOfItsOwn)
{
    ASSERT_TRUE(script("cut -d' ' -f5 < /proc/$$/stat > \"$1\"; echo $$ >> \"$1\"; exit 0").ok());
    const std::string group = first_line(output());
    EXPECT_EQ(output(), group + "\n" + group + "\n");
    EXPECT_NE(group, std::to_string(::getpgrp()));
}

TEST_F(ChildTest, AtTheBoundTheProgramAndWhatItStartedAreEnded)
{
    testing::internal::CaptureStderr();
    const ProgramEnd end = script("sleep 1000 & echo $! > \"$1\"; wait", milliseconds(1000));
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(end.status, -1);
    EXPECT_EQ(end.error, ETIMEDOUT);
    EXPECT_EQ(said, "/bin/sh: not done after 1000 ms, ended\n");
    EXPECT_TRUE(eventually([&] { return is_dead(first_line(output())); }));
}

TEST_F(ChildTest, AGroupMemberThatIgnoresTheFirstSignalIsKilledThoughTheProgramHasEnded)
{
    testing::internal::CaptureStderr();
    const auto start = std::chrono::steady_clock::now();
    const ProgramEnd end =
        script("sh -c 'trap \"\" TERM; echo $$ > \"$0\"; exec sleep 1000' \"$1\" & wait",
               milliseconds(1000));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(end.error, ETIMEDOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(3000));
    EXPECT_TRUE(eventually([&] { return is_dead(first_line(output())); }));
}

TEST_F(ChildTest, AProgramThatIgnoresTheFirstSignalIsKilled)
{
    testing::internal::CaptureStderr();
    const ProgramEnd end =
        script("trap '' TERM; echo $$ > \"$1\"; while :; do sleep 1; done", milliseconds(1000));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(end.error, ETIMEDOUT);
    EXPECT_TRUE(is_dead(first_line(output())));
}

TEST_F(ChildTest, AProcessLeftBehindGoesOn)
{
    ASSERT_TRUE(script("sleep 1000 > /dev/null 2>&1 & echo $! > \"$1\"").ok());
    const std::string pid = first_line(output());
    EXPECT_FALSE(is_dead(pid));
    EXPECT_EQ(::kill(std::stoi(pid), SIGKILL), 0);
}

TEST_F(ChildTest, WithChildrenCollectedByTheKernelTheStatusIsUnknown)
{
    const SignalAction collected(SIGCHLD, SIG_IGN);
    const ProgramEnd end = script("echo ran > \"$1\"");
    EXPECT_EQ(end.status, -1);
    EXPECT_EQ(end.error, ECHILD);
    EXPECT_EQ(output(), "ran\n");
}

TEST_F(ChildTest, WithoutAFreeDescriptorTheProgramStillRunsAndItsEndIsSeen)
{
    const int status = end_of(start_process([] {
        const rlimit few{64, 64};
        if (::setrlimit(RLIMIT_NOFILE, &few) != 0) {
            return 1;
        }
        while (::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3) >= 0) {
        }
        return run_program({"/bin/sh", "-c", "sleep 0.1; exit 7"}).status;
    }));
    EXPECT_EQ(status, 7);
}

TEST_F(ChildTest, ManyThreadsRunProgramsAtOnceAndEachGetsItsOwnStatus)
{
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&right, thread] {
            for (int run = 0; run < 10; ++run) {
                const int status = thread * 10 + run;
                const std::string text = numbered("exit ", status);
                right += run_program({"/bin/sh", "-c", text}).status == status ? 1 : 0;
            }
        });
    }
    for (auto &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, 80);
}

} // namespace
} // namespace qorcfg
