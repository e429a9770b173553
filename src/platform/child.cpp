#include "platform/child.h"

#include "platform/fd.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char **environ;

namespace qorcfg {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::chrono::seconds grace{2}; ///< between SIGTERM and SIGKILL

/// Attributes and file actions of one spawn; `error` has the first failure.
class SpawnPlan {
public:
    SpawnPlan()
    {
        error_ = ::posix_spawnattr_init(&attributes_);
        if (error_ == 0) {
            error_ = ::posix_spawn_file_actions_init(&actions_);
            has_actions_ = error_ == 0;
            has_attributes_ = true;
        }
    }
    ~SpawnPlan()
    {
        if (has_actions_) {
            ::posix_spawn_file_actions_destroy(&actions_);
        }
        if (has_attributes_) {
            ::posix_spawnattr_destroy(&attributes_);
        }
    }
    SpawnPlan(const SpawnPlan &) = delete;
    SpawnPlan &operator=(const SpawnPlan &) = delete;

    int error() const { return error_; }
    const posix_spawnattr_t *attributes() const { return &attributes_; }
    const posix_spawn_file_actions_t *actions() const { return &actions_; }

    /// Signals that this process ignores or blocks would stay so in the program.
    void reset_signals()
    {
        sigset_t all;
        sigset_t none;
        ::sigfillset(&all);
        ::sigemptyset(&none);
        step([&] { return ::posix_spawnattr_setsigdefault(&attributes_, &all); });
        step([&] { return ::posix_spawnattr_setsigmask(&attributes_, &none); });
        step([&] { return ::posix_spawnattr_setpgroup(&attributes_, 0); });
        step([&] {
            return ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP |
                                                                POSIX_SPAWN_SETSIGDEF |
                                                                POSIX_SPAWN_SETSIGMASK);
        });
    }

    void read_nothing()
    {
        step([&] {
            return ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null",
                                                      O_RDONLY, 0);
        });
    }

    void close_in_program(int fd)
    {
        const int status = ::posix_spawn_file_actions_addclose(&actions_, fd);
        if (status == EBADF) {
            // Opened before the limit of open files was lowered below it: only this is left.
            ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        } else {
            step([&] { return status; });
        }
    }

private:
    template <typename Step> void step(Step call)
    {
        if (error_ == 0) {
            error_ = call();
        }
    }

    posix_spawnattr_t attributes_;
    posix_spawn_file_actions_t actions_;
    bool has_attributes_ = false;
    bool has_actions_ = false;
    int error_ = 0;
};

bool passes_through_exec(int fd)
{
    const int flags = ::fcntl(fd, F_GETFD);
    return flags >= 0 && (flags & FD_CLOEXEC) == 0;
}

/// Libraries open descriptors without FD_CLOEXEC; a program that stays would keep them open.
void close_inherited(SpawnPlan &plan)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::opendir("/proc/self/fd"), ::closedir);
    if (!folder) {
        const long limit = std::clamp(::sysconf(_SC_OPEN_MAX), 256L, 4096L);
        for (int fd = 3; fd < limit; ++fd) {
            if (passes_through_exec(fd)) {
                plan.close_in_program(fd);
            }
        }
        return;
    }
    while (const dirent *entry = ::readdir(folder.get())) {
        const int fd = std::atoi(entry->d_name);
        if (fd > STDERR_FILENO && passes_through_exec(fd)) {
            plan.close_in_program(fd);
        }
    }
}

/// A started program: the leader of a process group of its own.
class Program {
public:
    explicit Program(pid_t pid) : pid_(pid)
    {
#ifdef SYS_pidfd_open
        pidfd_.reset(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
#endif
    }

    /// Waits for the end until `deadline`. True once it has ended and its status is known.
    bool wait_until(Clock::time_point deadline)
    {
        auto pause = milliseconds(1);
        while (!collect()) {
            const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
            if (left <= milliseconds(0)) {
                return false;
            }
            pollfd ready{pidfd_.get(), POLLIN, 0};
            if (!pidfd_ ||
                ::poll(&ready, 1, static_cast<int>(std::min(left, longest_wait).count())) < 0) {
                // An older kernel, or an interrupted call: ask again shortly.
                std::this_thread::sleep_for(std::min(left, pause));
                pause = std::min(pause * 2, milliseconds(50));
            }
        }
        return true;
    }

    /// Ends the whole group: the program may have started others that it waits for. Members that
    /// ignore SIGTERM are killed after the time of grace, even if the program itself has ended.
    void end_group()
    {
        ::kill(-pid_, SIGTERM);
        const auto deadline = Clock::now() + grace;
        wait_until(deadline);
        while (Clock::now() < deadline) {
            if (::kill(-pid_, 0) != 0) {
                return; // nobody left; the number may soon be another group's
            }
            std::this_thread::sleep_for(milliseconds(10));
        }
        ::kill(-pid_, SIGKILL);
        while (!ended_) {
            wait_until(Clock::now() + longest_wait);
        }
    }

    ProgramEnd end() const
    {
        return end_;
    }

private:
    static constexpr milliseconds longest_wait{3'600'000};

    bool collect()
    {
        if (ended_) {
            return true;
        }
        int status = 0;
        pid_t got = 0;
        do {
            got = ::waitpid(pid_, &status, WNOHANG);
        } while (got < 0 && errno == EINTR);
        if (got == 0) {
            return false;
        }
        ended_ = true;
        if (got < 0) {
            // With SIGCHLD ignored the kernel throws the status away.
            end_.error = errno;
        } else if (WIFEXITED(status)) {
            end_.status = WEXITSTATUS(status);
        } else {
            end_.status = 128 + WTERMSIG(status);
        }
        return true;
    }

    pid_t pid_;
    Fd pidfd_;
    bool ended_ = false;
    ProgramEnd end_;
};

} // namespace

ProgramEnd run_program(const std::vector<std::string> &argv, milliseconds bound)
{
    if (argv.empty()) {
        return {-1, EINVAL};
    }
    std::vector<char *> arguments;
    arguments.reserve(argv.size() + 1);
    for (const std::string &argument : argv) {
        arguments.push_back(const_cast<char *>(argument.c_str())); // posix_spawn changes none
    }
    arguments.push_back(nullptr);

    SpawnPlan plan;
    plan.reset_signals();
    plan.read_nothing();
    close_inherited(plan);
    if (plan.error() != 0) {
        return {-1, plan.error()};
    }
    pid_t pid = -1;
    const int error = ::posix_spawnp(&pid, arguments[0], plan.actions(), plan.attributes(),
                                     arguments.data(), environ);
    if (error != 0) {
        return {-1, error};
    }
    Program program(pid);
    if (program.wait_until(Clock::now() + bound)) {
        return program.end();
    }
    std::fprintf(stderr, "%s: not done after %lld ms, ended\n", argv[0].c_str(),
                 static_cast<long long>(bound.count()));
    program.end_group();
    return {-1, ETIMEDOUT};
}

} // namespace qorcfg
