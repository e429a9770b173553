#pragma once

#include "platform/fd.h"

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

namespace qorcfg::test {

/// How a program ended and what it printed.
struct ProcessEnd {
    int status = -1; ///< exit status, 128 + signal for a killed one
    std::string out;
    std::string err;
};

/// A program that runs beside the test; killed and reaped with its owner. Its output goes to files.
class Process {
public:
    /// Starts argv[0] with the test's environment and the added variables ("NAME=value").
    explicit Process(const std::vector<std::string> &argv,
                     const std::vector<std::string> &environment = {},
                     const std::string &input = {});
    ~Process();
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    pid_t pid() const { return pid_; }
    bool running();
    void signal(int number) const;
    /// Waits for the end, at most `bound`; a program that does not end is killed and has status -1.
    ProcessEnd wait(std::chrono::milliseconds bound = std::chrono::seconds(120));

private:
    bool reap(bool block);

    pid_t pid_ = -1;
    int status_ = -1;
    bool ended_ = false;
    Fd out_;
    Fd err_;
};

/// Runs a program to its end.
ProcessEnd run_process(const std::vector<std::string> &argv,
                       const std::vector<std::string> &environment = {},
                       const std::string &input = {});

} // namespace qorcfg::test
