#include "components/wan_builders.h"

#include "platform/config_value.h"
#include "platform/qor_platform.h"

#include <array>

namespace qorcfg {

namespace {

constexpr MacKeys ethernet_mac{"wan_ether_mac_assign", "wan_ether_this_mac"};
constexpr MacKeys orange_mac{"wan_orange_dhcp_mac_assign", "wan_orange_dhcp_this_mac"};

constexpr std::array address_options{
    Option{"ipaddr", "wan_ipaddr"},
    Option{"netmask", "wan_netmask"},
    Option{"gateway", "wan_gateway"},
};

constexpr std::array name_options{
    Option{"domain", "wan_domain"},
    Option{"hostname", "Device_name"},
};

// Identifications that some ISPs ask for. Sent empty they would be refused.
constexpr std::array identity_options{
    Option{"dhcp_option60", "dhcp_vendorid", cut<127>},
    Option{"dhcp_option61", "dhcp_clientid", cut<127>},
};

void add_dhcp(Section &section)
{
    section.add_even_empty("proto", "dhcp").add_even_empty("force_link", "1");
}

/// Static addressing shares this key with DHCP: the web interface has one field for both.
void add_mtu(Section &section)
{
    section.add_even_empty("mtu", config_value("wan_dhcp_mtu"));
}

} // namespace

void build_access_point(Document &doc)
{
    doc.section("interface", systeminfo[wan_net_section].value)
        .add_even_empty("ifname", wan_ifname());
}

void build_static(Document &doc)
{
    const std::string mac = wan_mac(ethernet_mac);
    Section bridge = begin_wan(doc, mac);
    bridge.add_even_empty("proto", "static")
        .add_even_empty(address_options)
        .add_even_empty(name_options);
    add_dns(bridge, "wan_ether_dns_assign");
    add_mtu(bridge);
    bridge.add_even_empty("macaddr", mac);
}

void build_dhcp(Document &doc)
{
    const std::string mac = wan_mac(ethernet_mac);
    Section bridge = begin_wan(doc, mac);
    add_dhcp(bridge);
    bridge.add_even_empty(name_options);
    add_dns(bridge, "wan_ether_dns_assign");
    add_mtu(bridge);
    bridge.add(identity_options).add_even_empty("macaddr", mac);
}

void build_orange_dhcp(Document &doc)
{
    const std::string mac = wan_mac(orange_mac);
    Section bridge = begin_wan(doc, mac);
    add_dhcp(bridge);
    bridge.add_even_empty("peerdns", "1");
    add_mtu(bridge);
    bridge.add_even_empty("speisp", "orange_france_dhcp")
        .add_even_empty("orange_enable", "1")
        .add_even_empty("username", config_value("wan_orange_username"))
        .add_even_empty("macaddr", mac);
    if (config_match("enable_orange", "1") != 0) {
        Section iptv = doc.section("interface", "iptv");
        iptv.add_even_empty("ifname", get_iptv_eth_ports()).add_even_empty("type", "bridge");
        add_dhcp(iptv);
        iptv.add_even_empty("peerdns", "1")
            .add_even_empty("orange_enable", "1")
            .add_even_empty("iptv_enable", "1");
    }
}

} // namespace qorcfg
