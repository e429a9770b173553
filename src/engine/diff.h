#pragma once

#include "engine/json.h"

namespace qorcfg {

/// How fine the differences of named sections are taken.
enum class Granularity {
    sections, ///< a changed section travels whole
    options   ///< of a changed section only the changed options travel
};

/// The sections of `doc` that are new or changed with respect to `base`; both are package
/// documents. Named sections appear whole. An array keeps its marker and the position of each
/// section, with the integer 0 in place of an unchanged one. A container of the other form in
/// `base` counts as empty. Empty for a null `doc`; `doc` itself, shared, for a null `base`. Parts
/// of `doc` are shared, so the result belongs to the same thread.
Json diff_sections(json_object *base, json_object *doc);

/// The same, but a named section that changed is taken option by option: only options that are new
/// or whose text differs appear, as text (a changed list as its JSON text), and one whose new text
/// is empty leaves its section present without it.
Json diff_options(json_object *base, json_object *doc);

} // namespace qorcfg
