#pragma once

#include "core/base/explanation.h"

#include <string>
#include <vector>

namespace qorcfg {

/// What the daemon tells of the jobs that ended last, in the order of their ends.
struct Explanations {
    std::vector<ExplainedJob> jobs;
    std::string error; ///< why there are none: file and place of the first fault, or no right to it
};

/// Reads explain.json; without the file there are no jobs and no error.
Explanations read_explanations();

} // namespace qorcfg
