#pragma once

#include "apply/apply_report.h"
#include "apply/batch_file.h"

namespace qorcfg {

/// What has become of a batch file.
enum class BatchEnd {
    settled, ///< applied, or put aside as failed: later files may follow
    waits    ///< nothing was changed, and the next run tries again: later files wait behind it
};

/// Applies one UCI batch file to its package, exactly once, wherever an earlier run was cut off:
/// claimed.NAME starts over, and so does ready.NAME beside a prepared package; ready.NAME alone is
/// what is left of a finished one. Faults are reported.
BatchEnd apply_uci_batch(BatchFile file, ApplyReport &report);

} // namespace qorcfg
