#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qorcfg {

/// Fields of a rule that are separated by blanks and tabs; several in a row count as one, and none
/// is empty.
std::vector<std::string> split_at_blanks(std::string_view rule);

/// Fields of a rule in which every single blank separates: two in a row enclose an empty field. The
/// empty text has one field, which is empty.
std::vector<std::string> split_at_single_blanks(std::string_view rule);

/// The first `Count` fields of a rule, ready to be named; nothing when it has fewer.
template <std::size_t Count>
std::optional<std::array<std::string, Count>> first_fields(std::vector<std::string> fields)
{
    if (fields.size() < Count) {
        return std::nullopt;
    }
    std::array<std::string, Count> first;
    std::move(fields.begin(), fields.begin() + Count, first.begin());
    return first;
}

/// The number that the text begins with, behind white space and a sign, in decimal; 0 without
/// digits. Beyond 32 bits it stops at the nearest limit.
int number_of(std::string_view text);

} // namespace qorcfg
