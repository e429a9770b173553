#pragma once

#include <chrono>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace qorcfg {

/// Runs `body` in a forked process, whose exit status is what it returns. The process number.
template <typename Body> pid_t start_process(Body body)
{
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::_exit(body());
    }
    return pid;
}

/// Exit status of a forked process, 128 + signal of a killed one.
inline int end_of(pid_t pid)
{
    int status = 0;
    if (::waitpid(pid, &status, 0) != pid) {
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// Waits until `condition` holds, 20 seconds at most; whether it does.
template <typename Condition> bool eventually(Condition condition)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace qorcfg
