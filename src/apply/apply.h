#pragma once

#include "apply/batch_file.h"

#include <iosfwd>

namespace qorcfg {

/// Applies the selected batch files, each exactly once and in order: UCI lines to their packages,
/// NVRAM-side files through their program. Runs of several processes follow one another. What goes
/// wrong is told on `err`, one line each, with the file and, where it is about one, the line. True
/// when all went well. A package whose file cannot be written keeps its batch files, in order, for
/// the next run; the others go on.
bool apply_batches(const BatchSelection &selection, std::ostream &err);

/// Prints on `out` what `apply_batches` would change, and changes nothing.
bool preview_batches(const BatchSelection &selection, std::ostream &out, std::ostream &err);

} // namespace qorcfg
