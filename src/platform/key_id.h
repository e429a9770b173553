#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qorcfg {

/// Number of a store key on the control socket: a hash of its bytes, never negative, 0 for null and
/// for "". The daemon and every program that announces changes must agree on it. Two keys can share
/// a number; they are then one key to the daemon.
std::int32_t config_key_id(const char *key);

/// The names that are announced when `key` changes: the key, and the name that stands for a whole
/// list of keys: the key without the digits at its end ("reservation3" -> "reservation"), or
/// "led_time_schedule" for "led_time_schedule_<mac>_<n>". A key of digits alone stands for no list.
std::vector<std::string> announced_names(std::string_view key);

} // namespace qorcfg
