#include "tools/setting_lines.h"

namespace qorcfg {

namespace {

/// Reads the value behind "=" into `value`; "" or what is wrong with it.
std::string unescape(std::string_view text, std::string &value)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            value += text[i];
            continue;
        }
        const char kind = ++i < text.size() ? text[i] : '\0';
        switch (kind) {
        case 'n':
            value += '\n';
            break;
        case 'r':
            value += '\r';
            break;
        case '\\':
            value += '\\';
            break;
        default:
            return "bad escape in the value, only \\n, \\r and \\\\ are known";
        }
    }
    if (value.size() > store_value_limit) {
        return "value longer than " + std::to_string(store_value_limit) + " bytes";
    }
    return "";
}

std::string parse_line(std::string_view line, std::vector<StoreWrite> &writes)
{
    if (line.find('\0') != std::string_view::npos) {
        return "NUL byte";
    }
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos) {
        return "no \"=\"";
    }
    if (sign == 0) {
        return "no key before \"=\"";
    }
    if (sign > store_key_limit) {
        return "key longer than " + std::to_string(store_key_limit) + " bytes";
    }
    std::string value;
    std::string reason = unescape(line.substr(sign + 1), value);
    if (reason.empty()) {
        writes.push_back({std::string(line.substr(0, sign)), std::move(value)});
    }
    return reason;
}

} // namespace

std::optional<std::string> setting_line(const Setting &setting)
{
    if (setting.key.find_first_of("=\n") != std::string::npos || setting.key.front() == '#') {
        return std::nullopt;
    }
    std::string line = setting.key + '=';
    for (const char c : setting.value) {
        switch (c) {
        case '\n':
            line += "\\n";
            break;
        case '\r':
            line += "\\r";
            break;
        case '\\':
            line += "\\\\";
            break;
        default:
            line += c;
        }
    }
    return line;
}

std::optional<LineFault> parse_setting_lines(std::string_view text, std::vector<StoreWrite> &writes)
{
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(line.size() + (line.size() < text.size() ? 1 : 0));
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (std::string reason = parse_line(line, writes); !reason.empty()) {
            return LineFault{number, std::move(reason)};
        }
    }
    return std::nullopt;
}

} // namespace qorcfg
