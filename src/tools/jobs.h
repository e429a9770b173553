#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

// What the daemon publishes about its apply jobs, as a reader sees it.
namespace qorcfg {

/// The content of jobs.json.
struct JobsState {
    int last = 0;             ///< highest job numbered, 0 before the first
    std::vector<int> running; ///< jobs that have not ended
    int ended = 0;            ///< the job that ended last
};

/// Reads jobs.json. Nothing when it is missing or holds something else; errno is then ENOENT or
/// another reason.
std::optional<JobsState> read_jobs();

/// The character in the status file; 0 when there is none.
char read_status();

/// What a character of the status file means: "done", "working", ...
const char *status_meaning(char status);

using WaitClock = std::chrono::steady_clock;

/// Waits until every job that is numbered by now has ended, however they overlap. Returns "", or at
/// `deadline` or when the daemon has been started anew in the meantime one line that says so.
std::string wait_for_jobs(WaitClock::time_point deadline);

} // namespace qorcfg
