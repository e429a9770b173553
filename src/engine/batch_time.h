#pragma once

#include <ctime>

namespace qorcfg {

/// A modification time for the next batch file, later than that of every earlier one, those of
/// earlier runs included: batch files of one job are applied in the order of these times, whatever
/// the device's clock does in between. Safe from any thread.
timespec next_batch_time();

} // namespace qorcfg
