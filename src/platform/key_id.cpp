#include "platform/key_id.h"

namespace qorcfg {

namespace {

std::string list_name(std::string_view key)
{
    constexpr std::string_view schedule = "led_time_schedule";
    if (key.size() > schedule.size() && key.substr(0, schedule.size()) == schedule &&
        key[schedule.size()] == '_') {
        return std::string(schedule);
    }
    // npos + 1 is 0: digits alone leave nothing.
    return std::string(key.substr(0, key.find_last_not_of("0123456789") + 1));
}

} // namespace

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

std::vector<std::string> announced_names(std::string_view key)
{
    std::vector<std::string> names{std::string(key)};
    if (auto list = list_name(key); !list.empty() && list != key) {
        names.push_back(std::move(list));
    }
    return names;
}

} // namespace qorcfg
