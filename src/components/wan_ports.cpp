#include "components/wan_builders.h"

#include "components/text.h"
#include "components/vlan_settings.h"
#include "platform/config_value.h"
#include "platform/qor_platform.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::size_t wan_ifname_limit = 63;
constexpr std::size_t iptv_ports_limit = 31;

/// An ISP whose IPTV runs in fixed VLANs of the WAN port.
struct IptvRule {
    const char *key; ///< switches the profile on
    int id;          ///< VLAN by which its entry is recognised
    int base_id;     ///< further VLAN in front of it, 0 for none
};

// The first that holds decides.
constexpr std::array iptv_rules{
    IptvRule{"enable_orange", 840, 838},
    IptvRule{"voda_spain_iptv", 105, 0},
    IptvRule{"movistar_spain_iptv", 2, 0},
    IptvRule{"orange_spain_iptv", 838, 0},
};

const std::string &wan_port()
{
    return systeminfo[wan_eth_ifs].value;
}

/// The port or sub-interface of the first Internet entry. Whether that entry is switched on does
/// not matter: the Internet service cannot be switched off.
std::string tagged_wan_port()
{
    for (const VlanTag &tag : vlan_tags(1, 3)) {
        if (tag.is("Internet")) {
            return tag.id == 0 ? wan_port() : vlan_interface(wan_port(), tag.id);
        }
    }
    return wan_port();
}

std::string bridged_wan_ports()
{
    std::string ports = wan_port();
    if (iptv_vlan_id() != 0) {
        return ports;
    }
    for (const std::string &port : lan_ports_in(number_of(config_value("iptv_mask")))) {
        ports.append(" ").append(port);
    }
    return ports;
}

std::string wan_ports()
{
    switch (get_vlan_mode()) {
    case VlanMode::tagged:
        return tagged_wan_port();
    case VlanMode::port_bridging:
        return bridged_wan_ports();
    case VlanMode::off:
        break;
    }
    return wan_port();
}

std::string rule_ports(const IptvRule &rule)
{
    const std::string port = vlan_interface(wan_port(), rule.id);
    return rule.base_id == 0 ? port : vlan_interface(wan_port(), rule.base_id) + " " + port;
}

} // namespace

std::string wan_ifname()
{
    return cut<wan_ifname_limit>(wan_ports());
}

std::string get_iptv_eth_ports()
{
    std::string ports;
    if (get_vlan_mode() != VlanMode::tagged) {
        return ports;
    }
    // The first entry is the Internet service's.
    for (const VlanTag &tag : vlan_tags(2, 3)) {
        if (!tag.enabled || tag.is("Internet")) {
            continue;
        }
        for (const IptvRule &rule : iptv_rules) {
            if (rule.id == tag.id && config_match(rule.key, "1") != 0) {
                ports = bounded_print("get_iptv_eth_ports", iptv_ports_limit, rule_ports(rule));
                break;
            }
        }
    }
    return ports;
}

} // namespace qorcfg
