#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qorcfg {

inline constexpr std::size_t control_message_limit = 128; ///< bytes of one read

/// "action:key id" in decimal. A field that is missing or no number is 0.
struct ControlMessage {
    std::int32_t action = 0;
    std::int32_t key_id = 0;
};

/// The first message of what one read returned, of any content. Numbers beyond 32 bits stop at the
/// nearest limit.
ControlMessage parse_control_message(std::string_view received);

} // namespace qorcfg
