#pragma once

#include <cerrno>
#include <string>
#include <vector>

namespace qorcfg::test {

/// What happens at a call that writes.
enum class FaultKind {
    none,
    fail,     ///< nothing is done, and the call returns an error
    half,     ///< a write takes half of its bytes, and the next write fails
    stop,     ///< the program is killed before the call
    half_stop ///< a write takes half of its bytes, and then the program is killed
};

/// A fault at the call of this number, counted from 1 in each process.
struct Fault {
    long call = 0;
    FaultKind kind = FaultKind::none;
    int error = EIO;

    bool stops() const { return kind == FaultKind::stop || kind == FaultKind::half_stop; }
};

/// From now on this process counts its calls that write, tells each in the file `log`, and meets
/// the fault when it comes to it. Only for programs that are linked with the failing calls.
void arm(const Fault &fault, const std::string &log);

/// A variable ("NAME=value") that arms the program of this name, from its start, if it is one that
/// is linked with the failing calls.
std::string armed_environment(const std::string &program, const Fault &fault,
                              const std::string &log);

/// What armed processes told in their log.
class CallLog {
public:
    explicit CallLog(const std::string &path);

    /// Whether the fault has come.
    bool met() const { return met_; }
    /// Every fault that can come to these processes: at each call a failure and a stop, and at each
    /// write also both after half of it.
    std::vector<Fault> faults() const;
    /// The calls up to now, one a line, for the report of a failed test.
    const std::string &text() const { return text_; }

private:
    std::string text_;
    std::vector<bool> writes_; ///< one a call: whether it can be done by half
    bool met_ = false;
};

} // namespace qorcfg::test
