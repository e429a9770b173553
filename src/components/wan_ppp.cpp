#include "components/wan_builders.h"

#include "components/device_files.h"
#include "platform/config_value.h"
#include "platform/qor_platform.h"

#include <array>

namespace qorcfg {

namespace {

constexpr MacKeys pppoe_mac{"wan_pppoe_mac_assign", "wan_pppoe_this_mac"};
// The choice is the DHCP profile's: the web interface has one for both.
constexpr MacKeys orange_mac{"wan_orange_dhcp_mac_assign", "wan_orange_pppoe_this_mac"};

constexpr DialKeys pppoe_dial{"wan_pppoe_demand", "wan_pppoe_idletime"};
constexpr DialKeys orange_dial{"wan_orange_pppoe_demand", "wan_orange_pppoe_idletime"};

constexpr std::array pppoe_account{
    Option{"username", "wan_pppoe_username"},
    Option{"password", "wan_pppoe_passwd"},
    Option{"service", "wan_pppoe_service"},
};

constexpr std::array orange_account{
    Option{"username", "wan_orange_username"},
    Option{"password", "wan_orange_pppoe_passwd"},
};

/// Keys of a tunnel protocol. PPTP and L2TP differ in nothing else.
struct Tunnel {
    const char *proto;
    const char *address_choice;
    std::array<Option, 2> address;
    const char *gateway;
    std::array<Option, 3> account;
    const char *connection_id; ///< null for a protocol without
    DialKeys dial;
    const char *dns_choice;
    MacKeys mac;
    const char *mtu;
};

constexpr Tunnel pptp{
    "pptp",
    "wan_pptp_wan_assign",
    {{{"ipaddr", "wan_pptp_local_ip"}, {"netmask", "wan_pptp_eth_mask"}}},
    "pptp_gw_static_route",
    {{{"username", "wan_pptp_username"},
      {"password", "wan_pptp_password"},
      {"server", "wan_pptp_server_ip"}}},
    "wan_pptp_connection_id",
    {"wan_pptp_demand", "wan_pptp_idle_time"},
    "wan_pptp_dns_assign",
    {"wan_pptp_mac_assign", "wan_pptp_this_mac"},
    "wan_pptp_mtu",
};

constexpr Tunnel l2tp{
    "l2tp",
    "wan_l2tp_wan_assign",
    {{{"ipaddr", "wan_l2tp_local_ip"}, {"netmask", "wan_l2tp_eth_mask"}}},
    "l2tp_gw_static_route",
    {{{"username", "wan_l2tp_username"},
      {"password", "wan_l2tp_password"},
      {"server", "wan_l2tp_server_ip"}}},
    nullptr,
    {"wan_l2tp_demand", "wan_l2tp_idle_time"},
    "wan_l2tp_dns_assign",
    {"wan_l2tp_mac_assign", "wan_l2tp_this_mac"},
    "wan_l2tp_mtu",
};

constexpr std::array intranet_address{
    Option{"ipaddr", "wan_pppoe_intranet_ip"},
    Option{"netmask", "wan_pppoe_intranet_mask"},
};

/// The address that the WAN port itself has beside the PPP session.
void add_port_address(Section &bridge, const char *choice, std::span<const Option> address)
{
    if (config_match(choice, "0") != 0) {
        bridge.add_even_empty("proto", "dhcp").add_even_empty("force_link", "1");
    } else {
        bridge.add_even_empty("proto", "static").add_even_empty(address);
    }
}

void build_tunnel(Document &doc, const Tunnel &tunnel)
{
    const std::string mac = wan_mac(tunnel.mac);
    const std::string gateway = config_value(tunnel.gateway);
    Section bridge = begin_wan(doc, mac);
    add_port_address(bridge, tunnel.address_choice, tunnel.address);
    bridge.add_even_empty("gateway", gateway)
        .add_even_empty("mtu", "1500")
        .add_even_empty("macaddr", mac);

    Section session = begin_ppp(doc, ppp_net_section, tunnel.proto);
    session.add_even_empty(tunnel.account);
    if (tunnel.connection_id != nullptr) {
        session.add_even_empty("connid", config_value(tunnel.connection_id));
    }
    session.add_even_empty("gateway", gateway);
    add_dial(session, tunnel.dial);
    add_disconnect_time(session);
    add_dns(session, tunnel.dns_choice);
    session.add_even_empty("mtu", config_value(tunnel.mtu));
}

} // namespace

void build_pppoe(Document &doc)
{
    const std::string mac = wan_mac(pppoe_mac);
    const std::string mtu = config_value("wan_pppoe_mtu");
    Section bridge = begin_wan(doc, mac);
    // ISPs of this region run an intranet beside the session.
    if (cut<7>(read_info_value(board_info, "board_region")) == "RU") {
        add_port_address(bridge, "wan_pppoe_intranet_wan_assign", intranet_address);
    }
    bridge.add_even_empty("mtu", mtu).add_even_empty("macaddr", mac);

    Section session = begin_ppp(doc, ppp_net_section, "pppoe");
    add_ipv6_over_ppp(session);
    session.add_even_empty(pppoe_account);
    add_fixed_address(session, "wan_pppoe_wan_assign", "wan_pppoe_ip");
    add_dial(session, pppoe_dial);
    add_disconnect_time(session);
    add_dns(session, "wan_pppoe_dns_assign");
    session.add_even_empty("mtu", mtu);
}

void build_orange_pppoe(Document &doc)
{
    const std::string mac = wan_mac(orange_mac);
    const std::string mtu = config_value("wan_pppoe_mtu");
    begin_wan(doc, mac).add_even_empty("mtu", mtu).add_even_empty("macaddr", mac);

    Section session = begin_ppp(doc, ppp_net_section, "pppoe");
    add_ipv6_over_ppp(session);
    session.add_even_empty(orange_account);
    add_dial(session, orange_dial);
    session.add_even_empty("peerdns", "1").add_even_empty("mtu", mtu);

    if (config_match("enable_orange", "1") != 0) {
        doc.section("interface", "iptv")
            .add_even_empty("ifname", get_iptv_eth_ports())
            .add_even_empty("type", "bridge")
            .add_even_empty("force_link", "1")
            .add_even_empty("iptv_enable", "1")
            .add_even_empty("proto", "dhcp");
    }
}

void build_pptp(Document &doc)
{
    build_tunnel(doc, pptp);
}

void build_l2tp(Document &doc)
{
    build_tunnel(doc, l2tp);
}

} // namespace qorcfg
