#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace qorcfg {

/// What one line of a UCI batch file asks for. The texts point into the line.
struct BatchLine {
    enum class Verb { remove, set, add_list, add };

    Verb verb = Verb::set;
    std::string_view package;
    std::string_view section;            ///< name of the section, or its type where `by_type`
    bool by_type = false;                ///< written as @TYPE[N], or the type of an `add`
    std::optional<std::size_t> position; ///< N; none for an empty index
    std::string_view option;             ///< empty when the line is about the section itself
    std::string_view value;              ///< all that follows the first "=", verbatim

    bool is_deletion() const { return verb == Verb::remove; }
};

/// Reads one line, without its line feed. Nothing when it is no command; `fault` then says why.
std::optional<BatchLine> parse_batch_line(std::string_view line, const char *&fault);

} // namespace qorcfg
