#include "platform/uci/names.h"

#include <algorithm>
#include <cstdint>

namespace qorcfg::uci {

namespace {

bool is_name_char(unsigned char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

std::string hexadecimal(std::uint32_t number, std::size_t width)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (; number != 0 || text.size() < width; number >>= 4) {
        text.insert(text.begin(), digits[number & 15]);
    }
    return text;
}

} // namespace

bool is_name(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), is_name_char);
}

bool is_package_name(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return is_name_char(c) || c == '-';
    });
}

bool is_printable_word(std::string_view text)
{
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return c > 32 && c < 127; });
}

bool is_value(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return c >= 32 || c == '\t' || c == '\n' || c == '\r';
    });
}

std::string generated_name(unsigned number, std::string_view type)
{
    std::uint32_t hash = 5381;
    // Plain char, signed or not as the machine has it: so have the device's other programs.
    for (const char c : type) {
        hash = hash * 33 + static_cast<std::uint32_t>(c);
    }
    return "cfg" + hexadecimal(number, 2) + hexadecimal((hash & 0x7fffffff) % 65536, 4);
}

} // namespace qorcfg::uci
