#pragma once

#include "engine/json.h"
#include "tools/explanations.h"
#include "tools/subscribers.h"

#include <iosfwd>

namespace qorcfg {

/// Prints the story of a job: its keys with the callbacks that each triggers, then the callbacks
/// with their documents and the lines of these.
void print_explanation(std::ostream &out, const ExplainedJob &job, KeyNames &names);

/// The same as JSON, without the lines: these hold values.
Json explanation_json(const ExplainedJob &job, KeyNames &names);

} // namespace qorcfg
