#include "components/components.h"

#include "components/device_files.h"
#include "components/text.h"
#include "components/vlan_settings.h"
#include "core/base/globals.h"
#include "core/base/predicates.h"
#include "engine/systeminfo.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"
#include "platform/path_root.h"
#include "platform/qor_platform.h"

#include <algorithm>
#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr const char *guest_info = "/tmp/cache/systeminfo/dgc_data.info";
constexpr const char *wireless_info = "/tmp/cache/systeminfo/athinfo.json";

constexpr std::size_t port_list_limit = 63;
constexpr std::size_t bridge_limit = 127;

constexpr std::array address_keys{
    "ap_mode",       "ap_ether_ip_assign", "ap_ipaddr",  "ap_netmask",  "ap_gateway",
    "ap_ether_dns1", "ap_ether_dns2",      "lan_ipaddr", "lan_netmask",
};

constexpr std::array network_ipv6_lan_configs{
    "ipv6_type",
    "ipv6_dhcps_enable",
    "ipv6_dhcps_interface_id_enable",
    "ipv6_dhcps_interface_id",
    "ipv6_fixed_lan_ip",
    "ipv6_fixed_lan_prefix_len",
};

constexpr std::array vlan_keys{
    "enable_vlan", "vlan_type", "iptv_mask", "vlan_tag_", "iptv_vlan_enable", "iptv_vlan",
};

constexpr std::array access_point_options{
    Option{"ipaddr", "ap_ipaddr", cut<31>},
    Option{"netmask", "ap_netmask", cut<31>},
    Option{"gateway", "ap_gateway", cut<31>},
};

constexpr std::array router_options{
    Option{"ipaddr", "lan_ipaddr"},
    Option{"netmask", "lan_netmask"},
};

/// A list of names, each with a blank behind it, as far as the list's space reaches, without the
/// last blank.
std::string trimmed_list(std::string names)
{
    names = cut<port_list_limit>(names);
    if (!names.empty() && names.back() == ' ') {
        names.pop_back();
    }
    return names;
}

/// Interfaces of the access points that satellites connect to.
std::string backhaul_interfaces()
{
    const Json description = read_json_file(rooted(wireless_info), info_file_bound);
    json_object *access_points = json_get_member(description.get(), "athinfo");
    std::string names;
    for (std::size_t i = 0; is_json_array(access_points) && i < json_size(access_points); ++i) {
        json_object *access_point = json_element(access_points, i);
        if (json_value_text(json_get_member(access_point, "vap_type")) == "backhaul-ap") {
            names += json_value_text(json_get_member(access_point, "ifname")) + " ";
        }
    }
    return trimmed_list(std::move(names));
}

/// The ports that VLANs take out of the LAN, as a mask.
int iptv_port_mask(VlanMode mode)
{
    if (mode == VlanMode::port_bridging) {
        // With a VLAN of its own, IPTV shares the ports with the LAN.
        return iptv_vlan_id() != 0 ? 0 : number_of(config_value("iptv_mask"));
    }
    int mask = 0;
    for (const VlanTag &tag : vlan_tags(1, 5)) {
        if (tag.enabled && !tag.is("Internet") && !tag.is("Intranet")) {
            mask |= tag.port_mask;
        }
    }
    return mask;
}

std::string lan_port_list()
{
    const std::string &lan_port = systeminfo[lan_eth_ifs].value;
    if (is_base == 0 || is_factory_mode() != 0 || is_ap_mode() != 0) {
        // Without routing the WAN port is one more port of the LAN.
        return cut<port_list_limit>(lan_port + " " + systeminfo[wan_eth_ifs].value);
    }
    const VlanMode mode = get_vlan_mode();
    if (mode == VlanMode::off) {
        return cut<port_list_limit>(lan_port);
    }
    std::string ports;
    for (const std::string &port : lan_ports_in(~iptv_port_mask(mode))) {
        ports += port + " ";
    }
    return trimmed_list(std::move(ports));
}

void add_satellite(Section &lan, const std::string &ports)
{
    lan.add("proto", "dhcp").add("ifname", ports).add("type", "bridge").add_int("force_link", 1);
}

void add_router(Section &lan, const std::string &ifname)
{
    lan.add("proto", "static").add("ifname", ifname).add("type", "bridge").add_int("force_link", 1);
}

void add_access_point(Section &lan, const std::string &ifname)
{
    lan.add("ifname", ifname).add("type", "bridge").add("force_link", "1");
    if (config_match("ap_ether_ip_assign", "0") == 0) {
        lan.add("proto", "dhcp").add("peerdns", "1");
        return;
    }
    lan.add("proto", "static")
        .add("peerdns", "0")
        .add(access_point_options)
        .add("dns", cut<63>(config_value("ap_ether_dns1") + " " + config_value("ap_ether_dns2")));
}

void add_role(Section &lan)
{
    const std::string ports = lan_port_list();
    if (is_base == 0) {
        add_satellite(lan, ports);
        return;
    }
    const std::string backhaul = backhaul_interfaces();
    const std::string ifname = ports.empty() ? backhaul : cut<bridge_limit>(ports + " " + backhaul);
    if (is_factory_mode() == 0 && is_ap_mode() != 0) {
        add_access_point(lan, ifname);
    } else {
        add_router(lan, ifname);
    }
}

/// An interface identifier from the LAN's MAC address, in groups of four digits.
std::string interface_id()
{
    constexpr std::size_t vendor_digits = 6;
    constexpr std::size_t group_digits = 4;
    std::string digits = read_info_value(board_info, "lan_mac");
    digits.erase(std::remove(digits.begin(), digits.end(), ':'), digits.end());
    std::string long_id = digits.substr(0, vendor_digits).append("fffe");
    long_id.append(digits, std::min(vendor_digits, digits.size()));
    // The flip is on the character, not on the digit's value: 8 gives a colon. Addresses in use
    // rest on it.
    long_id[1] = static_cast<char>(long_id[1] ^ 2);
    std::string groups;
    for (std::size_t i = 0; i < long_id.size(); ++i) {
        if (i > 0 && i % group_digits == 0) {
            groups.push_back(':');
        }
        groups.push_back(long_id[i]);
    }
    return groups;
}

void add_ipv6(Section &lan)
{
    const std::string type = cut<31>(config_value("ipv6_type"));
    if (type == "disabled" || type == "bridge" || is_ap_mode() == 1) {
        return;
    }
    if (type == "fixed") {
        lan.add("ip6addr", cut<127>(config_value("ipv6_fixed_lan_ip")) + "/" +
                               cut<3>(config_value("ipv6_fixed_lan_prefix_len")));
    } else if (number_of(config_value("ipv6_dhcps_interface_id_enable")) == 1) {
        lan.add("ip6ifaceid", "::" + config_value("ipv6_dhcps_interface_id"));
    } else {
        lan.add("ip6ifaceid", "::" + interface_id());
    }
    lan.add("ipv6", "1").add("ip6assign", "64");
    const std::string dhcps = config_value("ipv6_dhcps_enable");
    if (!dhcps.empty()) {
        // These types need the server whatever the user chose.
        lan.add("ipv6_dhcps_enable", type == "dslite" || type == "v6plus" ? "1" : dhcps);
    }
}

void build(Document &doc)
{
    Section lan = doc.section("interface", "lan");
    add_role(lan);
    lan.add("ieee1905managed", "1").add("ageing_time", "30");
    if (cut<3>(read_info_value(guest_info, "dgc_func_have_guest_vlan")) == "1") {
        // Bridges with guest VLANs forget addresses after a time of their own, today the same.
        lan.add("ageing_time", "30");
    }
    if (config_match("ap_mode", "0") != 0) {
        lan.add(router_options);
    }
    add_ipv6(lan);
}

int update(int job)
{
    QORCFG_LOG(" update network lan");
    Document doc;
    build(doc);
    doc.drop_incomplete_parts();
    if (!doc.complete()) {
        return -1;
    }
    commit_uci_options(doc, "network", "lan", qorcfg_change_is_trigger, job);
    return 0;
}

void init()
{
    log_init("lan");
    subscribe_all(address_keys, update);
    subscribe_all(network_ipv6_lan_configs, update);
    subscribe_all(vlan_keys, update);
}

void register_()
{
    log_register("lan");
}

} // namespace

const Operations ietf_lan{init, nullptr, register_};

} // namespace qorcfg
