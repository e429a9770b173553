#pragma once

#include <functional>
#include <istream>
#include <ostream>
#include <string>
#include <string_view>

namespace qorcfg {

/// How a run of the tool ends.
enum ExitStatus : int {
    exit_done = 0,
    exit_failed = 1,  ///< the operation failed
    exit_misused = 2, ///< the command line is wrong
};

/// What a verb works with: the streams of the run and, once the command line is read, the chosen
/// verb itself.
struct Session {
    std::istream &in;
    std::ostream &out;
    std::ostream &err;
    std::function<int()> action;

    /// Says `message` on standard error, as one line whatever it contains.
    void say(std::string_view message);
    /// Both say `message` and return the exit status for it.
    int fail(std::string_view message);
    int misuse(std::string_view message);
};

/// A name as it stands in a message: of a long one its beginning and "...".
std::string shown_name(std::string_view name);

} // namespace qorcfg
