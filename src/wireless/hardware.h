#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qorcfg {

/// A radio that the device has. Texts keep 15 bytes.
struct RadioRow {
    std::string name;   ///< "2g", "5g1" or "5g2"
    std::string device; ///< of the driver
    std::string prefix; ///< of its store keys
};

/// A virtual interface that the device has. Texts keep 15 bytes.
struct InterfaceRow {
    std::string name;  ///< role name
    std::string radio; ///< logical radio that carries it
    std::string config_prefix;
    std::string ifname; ///< of the kernel
};

/// What the hardware description file tells of the device's radios and interfaces.
struct Hardware {
    bool guest_vlan = false; ///< guests and backhaul have networks of their own, without bridges
    std::string atf_enable;
    std::string thermal_analytics;
    std::vector<RadioRow> radio_map_table;     ///< 3 rows at most
    std::vector<InterfaceRow> iface_map_table; ///< 15 rows at most

    /// The first row of that name; null when there is none.
    const RadioRow *radio(std::string_view name) const;
    const InterfaceRow *interface(std::string_view name) const;
    /// Driver device of a radio; `otherwise` when the device has no such radio.
    std::string device_of(std::string_view radio, const char *otherwise = "") const;
    /// Logical radio that carries an interface; "" when the device has no such interface. Both
    /// 5 GHz radios may carry interfaces of one name: the first in the file wins.
    std::string radio_of(std::string_view interface) const;
    /// Whether the radio carries an interface whose name contains `word`.
    bool carries(std::string_view radio, std::string_view word) const;
};

/// Refills `hardware` from "/etc/ath/athinfo.json". Without that file everything stays as it is; a
/// file that is no JSON empties the tables and turns the guest VLAN off. The two texts are replaced
/// only by texts that the file has. Returns 0.
int load_athinfo(Hardware &hardware);

} // namespace qorcfg
