#pragma once

#include "engine/document.h"

#include <string_view>

namespace qorcfg {

/// Turns the last document of (package, section) into `doc`: writes the UCI batch lines that this
/// takes and makes `doc` the last document. `section` names the files, not a UCI section. With
/// `trigger` 1 the target configuration file is made to exist and the whole configuration goes to
/// the start-up batch file (`job` is then not used); otherwise the difference goes to the batch
/// file of `job`, which exists afterwards even without a line. When the batch file cannot be opened
/// or written whole, nothing is changed and the next call carries the same difference. `doc` stays
/// the caller's. Safe from several workers at once.
void commit_uci_section(const Document &doc, std::string_view package, std::string_view section,
                        int trigger, int job);

/// The same, with differences taken option by option: only changed options of a named section
/// travel.
void commit_uci_options(const Document &doc, std::string_view package, std::string_view section,
                        int trigger, int job);

/// `commit_uci_section` in the current phase, as update callbacks end: 0, or -1 without writing
/// when the document is not complete.
int commit(const Document &doc, std::string_view package, std::string_view section, int job);

} // namespace qorcfg
