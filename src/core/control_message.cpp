#include "core/control_message.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>

namespace qorcfg {

namespace {

/// Reads a number at `text`, behind blanks; false when there is none. `text` moves behind it.
bool read_number(const char *&text, std::int32_t &number)
{
    char *end = nullptr;
    const long long value = std::strtoll(text, &end, 10);
    if (end == text) {
        return false;
    }
    using Limits = std::numeric_limits<std::int32_t>;
    number = static_cast<std::int32_t>(std::clamp<long long>(value, Limits::min(), Limits::max()));
    text = end;
    return true;
}

} // namespace

ControlMessage parse_control_message(std::string_view received)
{
    const std::string terminated(received.substr(0, control_message_limit));
    const char *text = terminated.c_str();
    ControlMessage message;
    if (read_number(text, message.action) && *text == ':') {
        ++text;
        read_number(text, message.key_id);
    }
    return message;
}

} // namespace qorcfg
