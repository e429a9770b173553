#include "components/text.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace qorcfg {

std::vector<std::string> split_at_blanks(std::string_view rule)
{
    constexpr std::string_view separators = " \t";
    std::vector<std::string> fields;
    while (!rule.empty()) {
        const std::size_t begin = std::min(rule.find_first_not_of(separators), rule.size());
        rule.remove_prefix(begin);
        const std::size_t length = std::min(rule.find_first_of(separators), rule.size());
        if (length > 0) {
            fields.emplace_back(rule.substr(0, length));
        }
        rule.remove_prefix(length);
    }
    return fields;
}

std::vector<std::string> split_at_single_blanks(std::string_view rule)
{
    std::vector<std::string> fields;
    for (;;) {
        const std::size_t blank = rule.find(' ');
        fields.emplace_back(rule.substr(0, blank));
        if (blank == std::string_view::npos) {
            return fields;
        }
        rule.remove_prefix(blank + 1);
    }
}

int number_of(std::string_view text)
{
    using Limits = std::numeric_limits<int>;
    const long long number = std::strtoll(std::string(text).c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long long>(number, Limits::min(), Limits::max()));
}

} // namespace qorcfg
