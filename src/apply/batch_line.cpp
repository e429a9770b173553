#include "apply/batch_line.h"

#include <array>
#include <charconv>

namespace qorcfg {

namespace {

using Verb = BatchLine::Verb;

struct Word {
    std::string_view word;
    Verb verb;
};

constexpr std::array verbs{
    Word{"set", Verb::set},       Word{"add_list", Verb::add_list}, Word{"add", Verb::add},
    Word{"delete", Verb::remove}, Word{"del", Verb::remove},
};

/// What stands before the first `separator`; `rest` is what follows it, none without one.
std::string_view cut(std::string_view text, char separator, std::optional<std::string_view> &rest)
{
    const std::size_t at = text.find(separator);
    rest.reset();
    if (at != std::string_view::npos) {
        rest = text.substr(at + 1);
    }
    return text.substr(0, at);
}

bool read_index(std::string_view digits, std::optional<std::size_t> &position)
{
    if (digits.empty()) {
        return true;
    }
    std::size_t number = 0;
    const char *const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    position = number;
    return error == std::errc() && stop == end;
}

/// Reads "@TYPE[N]" off the front of `text`. A type may hold dots.
bool read_typed_section(std::string_view &text, BatchLine &line)
{
    const std::size_t open = text.find('[');
    const std::size_t close = text.find(']', open);
    if (open == std::string_view::npos || close == std::string_view::npos) {
        return false;
    }
    line.by_type = true;
    line.section = text.substr(1, open - 1);
    const std::string_view digits = text.substr(open + 1, close - open - 1);
    text.remove_prefix(close + 1);
    return read_index(digits, line.position);
}

const char *read_path(std::string_view path, BatchLine &line)
{
    std::optional<std::string_view> rest;
    line.package = cut(path, '.', rest);
    if (line.package.empty()) {
        return "no package";
    }
    if (!rest || rest->empty()) {
        return "no section";
    }
    std::optional<std::string_view> option;
    if (rest->front() == '@') {
        std::string_view text = *rest;
        if (!read_typed_section(text, line)) {
            return "no section index that can be read";
        }
        if (!text.empty() && text.front() != '.') {
            return "text behind the section index";
        }
        if (!text.empty()) {
            option = text.substr(1);
        }
    } else {
        line.section = cut(*rest, '.', option);
    }
    if (line.section.empty()) {
        return "no section";
    }
    if (option && option->empty()) {
        return "no option name behind the dot";
    }
    line.option = option.value_or("");
    return nullptr;
}

const char *read_addition(std::string_view text, BatchLine &line)
{
    std::optional<std::string_view> type;
    line.package = cut(text, ' ', type);
    line.section = type.value_or("");
    line.by_type = true;
    return line.package.empty() || line.section.empty() ? "no package and type" : nullptr;
}

const char *read_setting(std::string_view text, BatchLine &line)
{
    std::optional<std::string_view> value;
    const std::string_view path = cut(text, '=', value);
    if (!value) {
        return "no \"=\"";
    }
    line.value = *value;
    if (const char *fault = read_path(path, line)) {
        return fault;
    }
    if (line.option.empty() && line.by_type) {
        return "the type of a section without a name cannot be set";
    }
    return line.verb == Verb::add_list && line.option.empty() ? "no option name" : nullptr;
}

const char *read_rest(std::string_view text, BatchLine &line)
{
    switch (line.verb) {
    case Verb::add:
        return read_addition(text, line);
    case Verb::remove:
        return read_path(text, line);
    default:
        return read_setting(text, line);
    }
}

} // namespace

std::optional<BatchLine> parse_batch_line(std::string_view line, const char *&fault)
{
    std::optional<std::string_view> rest;
    const std::string_view word = cut(line, ' ', rest);
    for (const auto &[name, verb] : verbs) {
        if (word == name) {
            BatchLine result;
            result.verb = verb;
            fault = read_rest(rest.value_or(""), result);
            return fault == nullptr ? std::optional(result) : std::nullopt;
        }
    }
    fault = "no such command";
    return std::nullopt;
}

} // namespace qorcfg
