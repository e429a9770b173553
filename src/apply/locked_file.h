#pragma once

#include "platform/fd.h"

#include <string>

namespace qorcfg {

/// Opens `path` and takes a flock(2) lock (LOCK_SH or LOCK_EX) on the file that lies there once the
/// lock is held: programs replace such files by rename, and a lock on the one that was is none. An
/// empty Fd and errno on failure, ENOENT for a missing file.
Fd lock_current_file(const std::string &path, int flags, int operation);

} // namespace qorcfg
