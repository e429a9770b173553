#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace qorcfg {

/// Rows of `systeminfo` by position.
enum SystemInfoRow : std::size_t {
    wan_eth_ifs,
    lan_eth_ifs,
    wan_net_if,
    lan_net_if,
    ppp_net_if,
    mppp_net_if,
    pppv6_net_if,
    wan_net_section,
    lan_net_section,
    ppp_net_section,
    mppp_net_section,
    wanv6_net_section,
    system_info_rows
};

/// Where the name of an interface or UCI section is read, and the name itself: compiled default
/// until start-up reads the device's. At most 126 bytes; may be empty.
struct SystemInfo {
    const char *file;
    const char *key;
    std::string value;
};

/// Interface and section names of this device. Filled at start-up, before any worker exists; only
/// read afterwards.
extern std::array<SystemInfo, system_info_rows> systeminfo;

/// Reads every row of `systeminfo` from its file and prints each on standard error. A file that
/// cannot be read or lacks the key leaves an empty name.
void init_all_systeminfo();

/// 1 when the device-role file names this device the base unit, exactly "Base", else 0.
int read_is_base();

} // namespace qorcfg
