#pragma once

#include <atomic>

namespace qorcfg {

/// 1 when the device is the base unit, else 0. Set once at start-up, before any worker exists.
extern int is_base;

/// 1 during the start-up pass, when whole configurations are written; 0 while serving, when
/// differences are. Set by the main thread before any worker exists.
extern int qorcfg_change_is_trigger;

/// Number of the latest apply job: 1 to 4097, then 1 again; 0 before the first.
extern std::atomic<int> pth_count;

} // namespace qorcfg
