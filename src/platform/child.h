#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace qorcfg {

/// How a program run ended.
struct ProgramEnd {
    int status = -1; ///< exit status, 128 + signal of a killed program, -1 when it never ran
    int error = 0;   ///< errno when it could not be run, ETIMEDOUT when it was ended at the bound
    bool ok() const { return error == 0 && status == 0; }
};

/// How long a program may run before its process group is ended.
inline constexpr std::chrono::seconds program_bound{300};

/// Runs argv[0] (searched in PATH when it has no "/") with the given arguments, without a shell,
/// and waits for its end, at most `bound`; then the whole process group of the program gets
/// SIGTERM, and SIGKILL two seconds later, and a line on standard error says so. The program runs
/// in a process group of its own with default signal handling, standard input from /dev/null, and
/// no other descriptor than 0, 1 and 2. Processes that it leaves behind go on. Safe from several
/// threads.
ProgramEnd run_program(const std::vector<std::string> &argv,
                       std::chrono::milliseconds bound = program_bound);

} // namespace qorcfg
