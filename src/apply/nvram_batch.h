#pragma once

#include "apply/apply_report.h"
#include "apply/batch_file.h"
#include "apply/uci_batch.h"

namespace qorcfg {

/// The program that takes NVRAM-side update files, with the file as its only argument.
inline constexpr const char *nvram_script = "/etc/qorcfg.d/nvram.sh";

/// Hands one update file to the program and removes it once that has ended well. A file whose
/// handling was cut off is handed over again: the program must bear that, as one does where the
/// last setting of a path wins.
BatchEnd hand_over_nvram_batch(BatchFile file, ApplyReport &report);

} // namespace qorcfg
