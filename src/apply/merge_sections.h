#pragma once

#include "apply/uci_package.h"

namespace qorcfg {

/// Leaves each section name once: later sections of a name give their type and options to the first
/// and go. Whoever makes a section under a generated name and renames it may meet a name that is
/// taken, and a file with both could not be read again if their types differ.
bool merge_equal_names(UciPackage &package);

} // namespace qorcfg
