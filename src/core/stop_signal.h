#pragma once

namespace qorcfg {

/// Arranges that the first SIGTERM or SIGINT asks for a clean end and the second one ends the
/// process at once. Returns a descriptor that becomes readable with the first, -1 and errno on
/// failure. Call once.
int watch_stop_signals();

/// Makes writing to a closed connection or above a file size limit an error instead of the daemon's
/// end.
void ignore_write_signals();

} // namespace qorcfg
