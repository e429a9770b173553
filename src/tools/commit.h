#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace qorcfg {

/// How announcing the changed keys ended.
struct CommitResult {
    enum class Kind {
        nothing,   ///< no key was marked
        announced, ///< the daemon has been told of every marked key
        unheard,   ///< without a daemon the store was made persistent and nobody told
        failed     ///< `text` says why; keys that no commit carried are still marked
    };
    Kind kind;
    std::string text;
};

/// Announces every marked key and commits, in groups that the daemon can hold; the marks of a group
/// go once its commit was sent. With `wait` it then waits, that long in all, until the daemon has
/// taken every commit and has ended every job up to the last one. Runs of several processes follow
/// each other; they do not wait for each other's jobs.
CommitResult commit_changes(std::optional<std::chrono::milliseconds> wait);

} // namespace qorcfg
