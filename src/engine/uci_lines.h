#pragma once

#include "engine/diff.h"
#include "engine/json.h"

#include <string>
#include <string_view>

namespace qorcfg {

// Each function appends UCI batch lines, in the order of the document's members and elements. Types
// whose container is neither object nor array, and the placeholders of a difference, give no line.
// A line feed or carriage return inside a name or value is written as one blank: a line is a
// command.

/// The lines that remove what `removed`, a difference, holds. With option granularity a named
/// section loses its options only, by the verb "del".
void append_deletion_lines(std::string &lines, std::string_view package, json_object *removed,
                           Granularity granularity);

/// The lines that create what `added`, a document or a difference, holds.
void append_setting_lines(std::string &lines, std::string_view package, json_object *added);

/// The lines that remove every section of `old`, and of `cut_off`, the document of a write whose
/// end is not known; each may be null. What both hold is removed once.
void append_full_deletion_lines(std::string &lines, std::string_view package, json_object *old,
                                json_object *cut_off);

} // namespace qorcfg
