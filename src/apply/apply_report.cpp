#include "apply/apply_report.h"

#include <algorithm>
#include <ostream>

namespace qorcfg {

void ApplyReport::fault(std::string_view text)
{
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(),
        [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }, '?');
    err_ << line + '\n' << std::flush;
    failed_ = true;
}

void ApplyReport::line_fault(const std::string &file, std::size_t line, const std::string &reason)
{
    fault(file + ":" + std::to_string(line) + ": " + reason);
}

} // namespace qorcfg
