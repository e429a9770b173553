#pragma once

#include "engine/document.h"

#include <string_view>

namespace qorcfg {

/// Writes a document {package: {name: value or {option: value}}} as "set" lines for a backend that
/// is configured by settings files, and makes it the last document of `name`. With `trigger` 1
/// every value goes to the start-up update file (`job` is then not used); otherwise the changed
/// ones go to the update file of `job`, which exists afterwards even without a line. Nothing is
/// ever deleted, and the first incremental write of a document only remembers it. When the update
/// file cannot be opened or written whole, nothing is changed and the next call carries the same
/// lines. `doc` stays the caller's. Safe from several workers at once.
void commit_nvram_document(const Document &doc, std::string_view name, int trigger, int job);

} // namespace qorcfg
