#include "engine/uci_lines.h"

#include "engine/append_line.h"
#include "engine/new_json_util.h"

#include <algorithm>

namespace qorcfg {

namespace {

/// How lines address element `index` (1 or more) of an array.
std::string array_section(int kind, std::string_view type, std::size_t index)
{
    const std::string number = std::to_string(index - 1);
    std::string address(type);
    return kind == numbered_sections ? address + "_" + number : "@" + address + "[" + number + "]";
}

void append_options(std::string &lines, std::string_view package, std::string_view section,
                    json_object *options)
{
    for_each_member(options, [&](const char *option, json_object *value) {
        if (!is_json_array(value)) {
            append_line(lines,
                        {"set ", package, ".", section, ".", option, "=", json_value_view(value)});
            return;
        }
        for (std::size_t i = 0; i < json_size(value); ++i) {
            append_line(lines, {"add_list ", package, ".", section, ".", option, "=",
                                json_value_view(json_element(value, i))});
        }
    });
}

/// Calls `visit(index, options)` for the sections of an array that are no placeholder.
template <typename Visit> void for_each_array_section(json_object *container, Visit visit)
{
    for (std::size_t i = 1; i < json_size(container); ++i) {
        json_object *options = json_element(container, i);
        if (!is_json_integer(options)) {
            visit(i, options);
        }
    }
}

/// Deletes the sections of `container` that `done` does not hold.
void append_full_deletion(std::string &lines, std::string_view package, const char *type,
                          json_object *container, json_object *done)
{
    if (!is_json_array(container)) {
        for_each_member(container, [&](const char *name, json_object *) {
            if (!is_json_object(done) || json_object_object_get_ex(done, name, nullptr) == 0) {
                append_line(lines, {"delete ", package, ".", name});
            }
        });
        return;
    }
    const int kind = section_kind(container);
    const bool same_kind = is_json_array(done) && section_kind(done) == kind;
    const std::size_t begin = same_kind ? std::max<std::size_t>(json_size(done), 1) : 1;
    for (std::size_t i = begin; i < json_size(container); ++i) {
        if (kind == numbered_sections) {
            append_line(lines, {"delete ", package, ".", array_section(kind, type, i)});
        } else {
            append_line(lines, {"delete ", package, ".@", type, "[]"});
        }
    }
}

} // namespace

void append_deletion_lines(std::string &lines, std::string_view package, json_object *removed,
                           Granularity granularity)
{
    for_each_member(removed, [&](const char *type, json_object *container) {
        if (is_json_array(container)) {
            const int kind = section_kind(container);
            for_each_array_section(container, [&](std::size_t i, json_object *) {
                append_line(lines, {"delete ", package, ".", array_section(kind, type, i)});
            });
            return;
        }
        for_each_member(container, [&](const char *name, json_object *options) {
            if (granularity == Granularity::sections) {
                append_line(lines, {"delete ", package, ".", name});
                return;
            }
            for_each_member(options, [&](const char *option, json_object *value) {
                if (!is_json_object(value)) {
                    append_line(lines, {"del ", package, ".", name, ".", option});
                }
            });
        });
    });
}

void append_setting_lines(std::string &lines, std::string_view package, json_object *added)
{
    for_each_member(added, [&](const char *type, json_object *container) {
        if (!is_json_array(container)) {
            for_each_member(container, [&](const char *name, json_object *options) {
                append_line(lines, {"set ", package, ".", name, "=", type});
                append_options(lines, package, name, options);
            });
            return;
        }
        const int kind = section_kind(container);
        for_each_array_section(container, [&](std::size_t i, json_object *options) {
            const std::string section = array_section(kind, type, i);
            if (kind == numbered_sections) {
                append_line(lines, {"set ", package, ".", section, "=", type});
            } else {
                append_line(lines, {"add ", package, " ", type});
            }
            append_options(lines, package, section, options);
        });
    });
}

void append_full_deletion_lines(std::string &lines, std::string_view package, json_object *old,
                                json_object *cut_off)
{
    for_each_member(old, [&](const char *type, json_object *container) {
        append_full_deletion(lines, package, type, container, nullptr);
    });
    for_each_member(cut_off, [&](const char *type, json_object *container) {
        append_full_deletion(lines, package, type, container, json_get_member(old, type));
    });
}

} // namespace qorcfg
