#include "platform/qor_platform.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

namespace {

bool is_blank(char c)
{
    return std::string_view(" \t\n\v\f\r").find(c) != std::string_view::npos;
}

/// Formats into the buffer; the length that the whole text has, -1 when there is no text.
int format_text(char *buffer, std::size_t size, const char *format, va_list arguments)
{
    if (buffer == nullptr || size == 0) {
        return -1;
    }
    buffer[0] = '\0';
    const int length = format == nullptr ? -1 : std::vsnprintf(buffer, size, format, arguments);
    if (length < 0) {
        buffer[0] = '\0';
    }
    return length;
}

int kept_length(int length, std::size_t size)
{
    return length < 0 || static_cast<std::size_t>(length) < size ? length
                                                                 : static_cast<int>(size - 1);
}

/// Takes fields off the front of a text.
class Scanner {
public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    bool at_end() const { return rest_.empty(); }

    void skip_blanks()
    {
        while (!rest_.empty() && is_blank(rest_.front())) {
            rest_.remove_prefix(1);
        }
    }

    bool take(char c)
    {
        if (rest_.empty() || rest_.front() != c) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    /// A decimal number with an optional sign, held at the ends of int32. A sign alone is none.
    std::optional<std::int32_t> take_number()
    {
        const bool negative = take('-');
        if (!negative) {
            take('+');
        }
        constexpr std::int64_t beyond = std::int64_t{1} << 32;
        std::int64_t value = 0;
        std::size_t digits = 0;
        while (digits < rest_.size() && rest_[digits] >= '0' && rest_[digits] <= '9') {
            value = std::min(value * 10 + (rest_[digits] - '0'), beyond);
            ++digits;
        }
        if (digits == 0) {
            return std::nullopt;
        }
        rest_.remove_prefix(digits);
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(
            negative ? -value : value, std::numeric_limits<std::int32_t>::min(),
            std::numeric_limits<std::int32_t>::max()));
    }

    /// The longest run of characters that `excluded` does not name.
    template <typename Excluded> std::string_view take_until(Excluded excluded)
    {
        const auto end = std::find_if(rest_.begin(), rest_.end(), excluded);
        const auto run = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
        rest_.remove_prefix(run.size());
        return run;
    }

private:
    std::string_view rest_;
};

/// The characters named in "[^...]" at the front of `format`, which is moved behind it. A "]" right
/// after the "^" is one of them.
std::optional<std::string_view> excluded_set(std::string_view &format)
{
    if (format.substr(0, 2) != "[^") {
        return std::nullopt;
    }
    const auto end = format.find(']', 3);
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    const auto set = format.substr(2, end - 2);
    format.remove_prefix(end + 1);
    return set;
}

bool store_text(std::string_view found, char *buffer, std::size_t size)
{
    if (found.empty() || buffer == nullptr || size == 0) {
        return false;
    }
    const std::size_t kept = std::min(found.size(), size - 1);
    std::memcpy(buffer, found.data(), kept);
    buffer[kept] = '\0';
    return true;
}

int scan(Scanner &text, std::string_view format, va_list arguments)
{
    int stored = 0;
    const auto stopped = [&] { return stored == 0 && text.at_end() ? -1 : stored; };
    while (!format.empty()) {
        const char c = format.front();
        format.remove_prefix(1);
        if (is_blank(c)) {
            text.skip_blanks();
            continue;
        }
        if (c != '%' || format.substr(0, 1) == "%") {
            if (c == '%') {
                format.remove_prefix(1);
                text.skip_blanks();
            }
            if (!text.take(c)) {
                return stopped();
            }
            continue;
        }
        const auto set = excluded_set(format);
        const char kind = set ? '[' : format.substr(0, 1).empty() ? '\0' : format.front();
        if (!set && kind != 'd' && kind != 's') {
            return stored; // no conversion that this knows
        }
        if (!set) {
            format.remove_prefix(1);
            text.skip_blanks();
        }
        if (text.at_end()) {
            return stopped();
        }
        if (kind == 'd') {
            const auto number = text.take_number();
            int *target = va_arg(arguments, int *);
            if (!number || target == nullptr) {
                return stored;
            }
            *target = *number;
        } else {
            const auto found =
                set ? text.take_until([&](char d) { return set->find(d) != set->npos; })
                    : text.take_until(is_blank);
            char *buffer = va_arg(arguments, char *);
            const auto size = va_arg(arguments, std::size_t);
            if (!store_text(found, buffer, size)) {
                return stored;
            }
        }
        ++stored;
    }
    return stored;
}

} // namespace

int qor_sprintf_s(const char *routine, char *buffer, size_t size, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = format_text(buffer, size, format, arguments);
    va_end(arguments);
    const int kept = kept_length(length, size);
    if (kept != length) {
        std::fprintf(stderr, "%s: text of %d bytes cut to %d\n",
                     routine == nullptr ? "qor_sprintf_s" : routine, length, kept);
    }
    return kept;
}

int qor_snprintf(char *buffer, size_t size, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = format_text(buffer, size, format, arguments);
    va_end(arguments);
    return kept_length(length, size);
}

int qor_sscanf_s(const char *text, const char *format, ...)
{
    if (text == nullptr || format == nullptr) {
        return -1;
    }
    Scanner scanner(text);
    va_list arguments;
    va_start(arguments, format);
    const int stored = scan(scanner, format, arguments);
    va_end(arguments);
    return stored;
}
