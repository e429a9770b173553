#pragma once

#include <cstddef>
#include <cstdint>

// What the daemon and the senders of its messages agree on.
namespace qorcfg {

inline constexpr const char *control_socket = "/tmp/cache/qorcfg/server.socket";

/// Changes that the daemon keeps between two commits; more in one commit overwrite the oldest.
inline constexpr std::size_t announcement_limit = 64;

/// The action that commits; any other announces a change.
inline constexpr std::int32_t commit_action = 3;

} // namespace qorcfg
