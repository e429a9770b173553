#pragma once

namespace qorcfg {

/// Files of facts about this device, for `read_info_value`.
inline constexpr const char *interface_info = "/tmp/cache/systeminfo/ethinfo.info";
inline constexpr const char *board_info = "/tmp/cache/systeminfo/boarddata.info";

} // namespace qorcfg
