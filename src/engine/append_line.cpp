#include "engine/append_line.h"

#include <algorithm>

namespace qorcfg {

void append_line(std::string &lines, std::initializer_list<std::string_view> parts)
{
    const std::size_t begin = lines.size();
    for (const std::string_view part : parts) {
        lines += part;
    }
    std::replace_if(
        lines.begin() + static_cast<std::ptrdiff_t>(begin), lines.end(),
        [](char byte) { return byte == '\n' || byte == '\r'; }, ' ');
    lines += '\n';
}

} // namespace qorcfg
