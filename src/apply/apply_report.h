#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace qorcfg {

/// Where a run tells what went wrong, one line each, and remembers that something did. Names from
/// batch files are printed with "?" in place of control bytes.
class ApplyReport {
public:
    explicit ApplyReport(std::ostream &err) : err_(err) {}

    void fault(std::string_view text);
    /// "FILE:LINE: REASON"
    void line_fault(const std::string &file, std::size_t line, const std::string &reason);
    bool failed() const { return failed_; }

private:
    std::ostream &err_;
    bool failed_ = false;
};

} // namespace qorcfg
