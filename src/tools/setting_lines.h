#pragma once

#include "platform/reference/store.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The text form of settings: one KEY=VALUE a line. In values a line feed is "\n", a carriage return
// "\r" and a backslash "\\"; every other byte stands for itself.
namespace qorcfg {

/// The line of a setting, without line feed. Nothing for a key that no line can carry: one that
/// contains "=" or a line feed, or begins with "#".
std::optional<std::string> setting_line(const Setting &setting);

/// What is wrong with a text of settings, and in which line, counted from 1.
struct LineFault {
    std::size_t line;
    std::string reason;
};

/// Reads all lines of `text` into `writes`, in order. Empty lines and lines that begin with "#" are
/// skipped. Stops at the first line that is no setting, or whose key or value the store would
/// refuse, and returns what is wrong with it; `writes` is then of no use.
std::optional<LineFault> parse_setting_lines(std::string_view text,
                                             std::vector<StoreWrite> &writes);

} // namespace qorcfg
