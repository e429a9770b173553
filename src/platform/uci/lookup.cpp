#include "platform/uci/lookup.h"

#include "platform/uci/context.h"
#include "platform/uci/names.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

namespace qorcfg::uci {

namespace {

void add_flag(uci_ptr &ptr, int flag)
{
    ptr.flags = static_cast<decltype(ptr.flags)>(ptr.flags | flag);
}

/// Ends the text before the next `separator` and gives what follows it, or null.
char *cut(char *text, char separator)
{
    char *const at = text == nullptr ? nullptr : std::strchr(text, separator);
    if (at == nullptr) {
        return nullptr;
    }
    *at = '\0';
    return at + 1;
}

struct Position {
    std::string_view type; // empty: any
    int index = 0;
};

/// Reads "@type[index]"; an empty index is 0.
std::optional<Position> parse_position(std::string_view text)
{
    const auto open = text.find('[');
    if (!text.starts_with('@') || open == std::string_view::npos || !text.ends_with(']')) {
        return std::nullopt;
    }
    Position position{text.substr(1, open - 1), 0};
    const std::string digits(text.substr(open + 1, text.size() - open - 2));
    if (digits.empty()) {
        return position;
    }
    char *end = nullptr;
    const long long index = std::strtoll(digits.c_str(), &end, 10);
    if (end == digits.c_str() || *end != '\0') {
        return std::nullopt;
    }
    // Numbers wrap as an int does, like on the device; what no integer holds is past every end.
    position.index = index == LLONG_MAX || index == LLONG_MIN ? INT_MAX : static_cast<int>(index);
    return position;
}

Section *section_at(const Package &package, const Position &position)
{
    const uci_list &list = package.sections;
    const bool backwards = position.index < 0;
    // From the end, -1 is the first that is met.
    long long left = backwards ? -static_cast<long long>(position.index) - 1 : position.index;
    for (uci_list *link = backwards ? list.prev : list.next; link != &list;
         link = backwards ? link->prev : link->next) {
        Section &section = Section::of(*list_to_element(link));
        if ((position.type.empty() || position.type == section.type) && left-- == 0) {
            return &section;
        }
    }
    return nullptr;
}

int check_path(const uci_ptr &ptr)
{
    if (!is_printable_word(ptr.package) || (ptr.option != nullptr && !is_name(ptr.option)) ||
        (ptr.value != nullptr && !is_value(ptr.value))) {
        return UCI_ERR_PARSE;
    }
    if (ptr.section != nullptr && !is_name(ptr.section) && !parse_position(ptr.section)) {
        return UCI_ERR_INVAL;
    }
    return UCI_OK;
}

} // namespace

int parse_path(uci_ptr &ptr, char *text)
{
    ptr = {};
    ptr.value = cut(text, '=');
    char *const section = cut(text, '.');
    char *const option = cut(section, '.');
    ptr.package = text;
    ptr.section = section;
    ptr.option = option;
    ptr.target = option != nullptr    ? UCI_TYPE_OPTION
                 : section != nullptr ? UCI_TYPE_SECTION
                                      : UCI_TYPE_PACKAGE;
    if (const int result = check_path(ptr); result != UCI_OK) {
        ptr = {};
        return result;
    }
    if (section != nullptr && *section == '@') {
        add_flag(ptr, uci_ptr::UCI_LOOKUP_EXTENDED);
    }
    return UCI_OK;
}

int find_in_package(uci_ptr &ptr, bool extended)
{
    add_flag(ptr, uci_ptr::UCI_LOOKUP_DONE);
    ptr.last = &ptr.p->e;
    if (ptr.s == nullptr && ptr.section != nullptr) {
        if ((ptr.flags & uci_ptr::UCI_LOOKUP_EXTENDED) == 0) {
            ptr.s = package_of(ptr).find(ptr.section);
        } else if (!extended) {
            return UCI_ERR_INVAL;
        } else if (const auto position = parse_position(ptr.section)) {
            ptr.s = section_at(package_of(ptr), *position);
        }
        if (ptr.s == nullptr) {
            return UCI_OK;
        }
        ptr.section = ptr.s->e.name;
    }
    if (ptr.s != nullptr) {
        ptr.last = &ptr.s->e;
        if (ptr.o == nullptr && ptr.option != nullptr) {
            ptr.o = static_cast<Section *>(ptr.s)->find(ptr.option);
            if (ptr.o == nullptr) {
                return UCI_OK;
            }
        }
        if (ptr.o != nullptr) {
            ptr.last = &ptr.o->e;
        }
    }
    add_flag(ptr, uci_ptr::UCI_LOOKUP_COMPLETE);
    return UCI_OK;
}

int expand(uci_context *ctx, uci_ptr &ptr, bool complete)
{
    if ((ptr.flags & uci_ptr::UCI_LOOKUP_DONE) == 0) {
        if (const int result = Context::of(*ctx).look_up(ptr, true); result != UCI_OK) {
            return result;
        }
    }
    if (complete && (ptr.flags & uci_ptr::UCI_LOOKUP_COMPLETE) == 0) {
        return UCI_ERR_NOTFOUND;
    }
    if (ptr.p == nullptr) {
        return UCI_ERR_INVAL;
    }
    if (ptr.package == nullptr) {
        ptr.package = ptr.p->e.name;
    }
    if (ptr.s != nullptr && ptr.section == nullptr) {
        ptr.section = ptr.s->e.name;
    }
    if (ptr.o != nullptr && ptr.option == nullptr) {
        ptr.option = ptr.o->e.name;
    }
    return UCI_OK;
}

} // namespace qorcfg::uci
