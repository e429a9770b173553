#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace qorcfg {

/// Appends one line of a batch file, put together from `parts`, with its newline. A line feed or
/// carriage return inside a part is written as one blank: a line is a command.
void append_line(std::string &lines, std::initializer_list<std::string_view> parts);

} // namespace qorcfg
