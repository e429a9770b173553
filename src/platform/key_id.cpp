#include "platform/key_id.h"

#include <string_view>

namespace qorcfg {

std::int32_t config_key_id(const char *key)
{
    constexpr std::uint32_t factor = 1313;
    const std::string_view bytes = key == nullptr ? "" : key;
    std::uint32_t forward = 0;
    std::uint32_t backward = 0;
    for (auto byte = bytes.begin(); byte != bytes.end(); ++byte) {
        forward = forward * factor + static_cast<unsigned char>(*byte);
    }
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
        backward = backward * factor + static_cast<unsigned char>(*byte);
    }
    return static_cast<std::int32_t>((backward + (forward << 16)) & 0x7fffffffU);
}

} // namespace qorcfg
