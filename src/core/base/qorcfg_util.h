#pragma once

#include <string>
#include <string_view>

namespace qorcfg {

/// Makes `text` the whole content of the file at `path` (no newline is added; mode 0644 for a new
/// file). The file is rewritten in place and then cut to length, so that a reader who polls it
/// never meets it empty. A file that cannot be opened is left alone.
void write_status_file(const std::string &path, std::string_view text);

} // namespace qorcfg
