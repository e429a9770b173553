#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace qorcfg {

/// How the device uses VLANs, as the numbers that scripts and documents know.
enum class VlanMode {
    off = 0,
    port_bridging = 1, ///< LAN ports are bridged to the WAN port for IPTV
    tagged = 2         ///< the ISP's services travel in 802.1Q VLANs of their own
};

/// The mode that "enable_vlan" and "vlan_type" choose.
VlanMode get_vlan_mode();

/// Whether VLANs are switched on; and on with exactly this "vlan_type". Components ask before they
/// follow a change of a key that only one of the modes uses.
bool is_vlan_enabled();
bool vlan_type_is(const char *type);

/// A service of the ISP that travels in a VLAN: one "vlan_tag_N" setting. Numbers are 0 and the
/// name is empty where the setting has no field for them.
struct VlanTag {
    bool enabled = false;
    std::string service;
    int id = 0; ///< as the user typed it: may lie outside 1 to 4094
    int priority = 0;
    int port_mask = 0; ///< bit i gives LAN port i to the service

    /// Whether the service has this name, in upper or lower case.
    bool is(const char *name) const;
};

/// The tags that have at least `fields` fields, from "vlan_tag_<first>" up to the first empty one.
std::vector<VlanTag> vlan_tags(int first, std::size_t fields);

/// The VLAN of port bridging, "iptv_vlan", or 0 while it is switched off or no number.
int iptv_vlan_id();

/// Name of the sub-interface that carries VLAN `id` on `port`: "eth0-v10".
std::string vlan_interface(const std::string &port, int id);

/// The LAN ports of this device, in the order in which masks number them; at most 8 names of at
/// most 7 bytes. Empty until the component `ietf_vlan` was enabled.
const std::vector<std::string> &lan_ports();

/// Makes the ports that `maps` ("WAN:eth0 LAN1:eth1 ...") names the LAN ports. Only for the init of
/// `ietf_vlan`, before any worker exists, and for tests.
void set_lan_ports(const std::string &maps);

/// The LAN ports that `mask` holds.
std::vector<std::string> lan_ports_in(int mask);

/// `text` as far as the maker's bounded print keeps it: `limit` bytes. A longer text makes it print
/// its diagnostic in the name of `routine`.
std::string bounded_print(const char *routine, std::size_t limit, const std::string &text);

} // namespace qorcfg
