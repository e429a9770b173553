#pragma once

#include "engine/json.h"

#include <string>
#include <string_view>

namespace qorcfg {

/// How the sections of one type are kept in a package document, and addressed in UCI lines.
enum SectionKind : int {
    anonymous_sections = 0, ///< array behind the marker {"alias-name": false}: @type[N]
    numbered_sections = 1,  ///< array behind the marker {"alias-name": true}: type_N
    named_sections = 2      ///< object {name: options}: name
};

/// Adds `value` as string member `key`, but only when it is neither null nor empty, so that unset
/// store keys yield no option. False when memory runs out.
bool json_add_string(json_object *object, const char *key, std::string_view value);
bool json_add_string(json_object *object, const char *key, const char *value);

/// Adds an integer member. False when memory runs out.
bool json_add_int(json_object *object, const char *key, int number);

/// Member `key` of an object; null when it is missing, null, or `object` is no object.
json_object *json_get_member(json_object *object, const char *key);

/// A new container for sections of the given kind, with the marker of an array in place; empty for
/// any other kind and without memory.
Json new_section_container(int kind);

/// The kind of a container: 2 for what is no array; else 0 or 1 by the marker in its first element.
/// An array without marker counts as 1, and so does a marker whose value is a text that is not
/// empty.
int section_kind(json_object *container);

/// Largest device-information file that is read, in bytes.
inline constexpr std::size_t info_file_bound = std::size_t{1} << 20;

/// Text of member `key` of the JSON file at the built-in path `path`, at most 127 bytes of it; ""
/// when the file cannot be read or has no such member. Safe from any thread.
std::string read_info_value(const char *path, const char *key);

} // namespace qorcfg
