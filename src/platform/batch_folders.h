#pragma once

namespace qorcfg {

// Where batch files, and the documents that they were made from, lie.
inline constexpr const char *uci_folder = "/tmp/cache/qorcfg/ucicfg.d";
inline constexpr const char *nvram_folder = "/tmp/cache/qorcfg/nvramcfg.d";

} // namespace qorcfg
