#include "components/device_table.h"

#include "engine/document.h"

#include <algorithm>
#include <cstdint>
#include <netinet/ether.h>
#include <string_view>

namespace qorcfg {

namespace {

constexpr std::size_t mac_limit = 17;

std::string_view html_entity(char character)
{
    switch (character) {
    case '\\':
        return "&#92;";
    case '"':
        return "&#34;";
    case '(':
        return "&#40;";
    case ')':
        return "&#41;";
    case '#':
        return "&#35;";
    case '&':
        return "&#38;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '\'':
        return "&#39;";
    default:
        return {};
    }
}

} // namespace

std::optional<std::size_t> mac_bucket(const std::string &mac)
{
    ether_addr address{};
    if (mac.find('/') != std::string::npos || ether_aton_r(mac.c_str(), &address) == nullptr) {
        return std::nullopt;
    }
    const auto &octets = address.ether_addr_octet;
    std::uint32_t hash =
        static_cast<std::uint32_t>(octets[0]) | static_cast<std::uint32_t>(octets[1]) << 8 |
        static_cast<std::uint32_t>(octets[2]) << 16 | static_cast<std::uint32_t>(octets[3]) << 24;
    hash ^= hash >> 16;
    hash ^= hash >> 8;
    return (hash ^ (hash >> 3)) & 31;
}

std::string html_escaped(const std::string &text)
{
    std::string escaped;
    for (const char character : text) {
        const std::string_view entity = html_entity(character);
        if (entity.empty()) {
            escaped += character;
        } else {
            escaped += entity;
        }
    }
    return escaped;
}

DeviceRecord *DeviceTable::record(const std::string &mac)
{
    const std::optional<std::size_t> bucket = mac_bucket(mac);
    if (!bucket) {
        return nullptr;
    }
    const std::string key = cut<mac_limit>(mac);
    auto &chain = buckets_.at(*bucket);
    const auto found = std::find_if(chain.begin(), chain.end(),
                                    [&](const DeviceRecord &each) { return each.mac == key; });
    if (found != chain.end()) {
        return &*found;
    }
    return &chain.emplace_front(DeviceRecord{key, {}, {}, {}, {}});
}

} // namespace qorcfg
