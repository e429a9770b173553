#include "support/apply_test.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <random>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qorcfg {
namespace {

using Lines = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

class ApplyCrashTest : public test::ApplyTest {
protected:
    /// A process that applies everything; `before` runs in it first.
    template <typename Before> pid_t start(Before before)
    {
        const pid_t child = ::fork();
        if (child == 0) {
            before();
            apply();
            ::_exit(0);
        }
        return child;
    }
    Lines items(const std::string &name, const std::string &section = "s") const
    {
        return test::list_items(device, name, section, "l");
    }
    static std::string item_line(const std::string &package, const std::string &item)
    {
        return "add_list " + package + ".s.l=" + item + "\n";
    }
};

TEST_F(ApplyCrashTest, EveryBatchIsAppliedOnceHoweverOftenTheApplierIsKilled)
{
    constexpr int rounds = 300;
    std::mt19937 random(20240229);
    for (const char *name : {"one", "two"}) {
        set_package("config t 's'\n", name);
    }
    const auto lay = [&](int round) {
        const std::string number = std::to_string(round);
        batch("uci_update" + number + ".one.a", item_line("one", number + "a"));
        batch("uci_update" + number + ".one.b", item_line("one", number + "b"));
        batch("uci_update" + number + ".two.a", item_line("two", number + "a"));
    };
    // How long an undisturbed run takes.
    lay(1);
    const auto began = Clock::now();
    pid_t child = start([] {});
    ::waitpid(child, nullptr, 0);
    auto span = Clock::now() - began;
    int killed = 0;
    Lines wanted_one{"1a", "1b"};
    Lines wanted_two{"1a"};
    for (int round = 2; round <= rounds; ++round) {
        lay(round);
        wanted_one.push_back(std::to_string(round) + "a");
        wanted_one.push_back(std::to_string(round) + "b");
        wanted_two.push_back(std::to_string(round) + "a");
        const auto moment = Clock::now() + span * (random() % 1000) / 900;
        child = start([] {});
        while (Clock::now() < moment) {
        }
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        // On a busy machine no run takes as long as another: the span follows them, so that about
        // two of three are killed.
        if (WIFSIGNALED(status)) {
            ++killed;
            span += span / 20;
        } else {
            span -= span / 10;
        }
    }
    EXPECT_TRUE(apply()) << errors;
    EXPECT_EQ(items("one"), wanted_one);
    EXPECT_EQ(items("two"), wanted_two);
    EXPECT_EQ(files(), Lines{});
    EXPECT_EQ(device.names_in("/tmp/etc/config"), (Lines{"one", "two"}));
    EXPECT_GT(killed, rounds / 4);
}

/// Lets a traced child run and kills it when it is about to enter its system call number `count`.
/// False when it ended before, or cannot be traced.
bool kill_before_call(pid_t child, int count, bool &traced)
{
    int status = 0;
    ::waitpid(child, &status, 0);
    traced = WIFSTOPPED(status);
    // Each call stops the child twice.
    for (int stop = 0; traced && stop < 2 * count - 1; ++stop) {
        ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        ::waitpid(child, &status, 0);
        if (!WIFSTOPPED(status)) {
            return false;
        }
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, &status, 0);
    return traced;
}

void stop_to_be_traced()
{
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0) {
        ::raise(SIGSTOP);
    }
}

TEST_F(ApplyCrashTest, AKillBeforeAnySystemCallLosesNothingAndRepeatsNothing)
{
    const std::string old = "config t 's'\n\tlist l '0'\n";
    constexpr int enough = 2000;
    int call = 1;
    for (; call < enough && !HasFailure(); ++call) {
        set_package(old);
        set_package(old, "wireless");
        device.write("/tmp/.uci/wireless", "+wireless.cfg021234='t'\n@wireless.cfg021234='made'\n");
        batch("uci_update1.net.a", item_line("net", "1") + "nonsense\n");
        batch("uci_update2.net.a", item_line("net", "2"));
        batch("uci_update2.wireless.a", item_line("wireless", "1"));
        bool traced = false;
        const bool killed = kill_before_call(start(stop_to_be_traced), call, traced);
        ASSERT_TRUE(traced) << "this test needs ptrace(2)";
        apply();
        EXPECT_EQ(items("net"), (Lines{"0", "1", "2"})) << "call " << call;
        EXPECT_EQ(package("wireless"), "\nconfig t 's'\n\tlist l '0'\n\tlist l '1'\n\n"
                                       "config t 'made'\n\n")
            << "call " << call;
        EXPECT_EQ(files(), Lines{"failed.uci_update1.net.a"}) << "call " << call;
        EXPECT_EQ(device.read(folder + std::string("failed.uci_update1.net.a")),
                  item_line("net", "1") + "nonsense\n");
        EXPECT_EQ(device.names_in("/tmp/etc/config"), (Lines{"net", "wireless"}));
        std::filesystem::remove(device.path(folder) + "failed.uci_update1.net.a");
        if (!killed) {
            break;
        }
    }
    EXPECT_GT(call, 50);
    EXPECT_LT(call, enough);
}

} // namespace
} // namespace qorcfg
