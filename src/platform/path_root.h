#pragma once

#include <string>
#include <string_view>

namespace qorcfg {

/// The folder in front of every built-in path: the value of the environment variable QORCFG_ROOT at
/// the first call, empty on a device. Never ends in "/". Safe from any thread.
std::string path_root();

/// Replaces the path root for this process. For tests and for `qorctl --root`; call it before any
/// other thread uses a path.
void set_path_root(std::string_view root);

/// Grows with every call of `set_path_root`: whoever keeps something open below the root sees from
/// it, without a lock, that the root is another now.
unsigned path_root_generation();

/// The built-in absolute path `path` ("/tmp/cache/...") below the path root.
std::string rooted(std::string_view path);

} // namespace qorcfg
