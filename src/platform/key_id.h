#pragma once

#include <cstdint>

namespace qorcfg {

/// Number of a store key on the control socket: a hash of its bytes, never negative, 0 for null and
/// for "". The daemon and every program that announces changes must agree on it. Two keys can share
/// a number; they are then one key to the daemon.
std::int32_t config_key_id(const char *key);

} // namespace qorcfg
