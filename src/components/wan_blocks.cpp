#include "components/wan_builders.h"

#include "components/device_files.h"
#include "platform/config_value.h"
#include "platform/qor_platform.h"

namespace qorcfg {

namespace {

constexpr std::size_t mac_limit = 31;
constexpr std::size_t server_limit = 15;

std::string server(const char *key)
{
    return cut<server_limit>(config_value(key));
}

/// The typed servers as one list. An empty one keeps its place.
std::string dns_list()
{
    std::string list = server("wan_ether_dns1") + " " + server("wan_ether_dns2");
    if (config_match("wan_proto", "static") != 0 || config_match("wan_proto", "dhcp") != 0) {
        list.append(" ").append(server("wan_ether_dns3"));
    }
    return list;
}

} // namespace

std::string factory_mac()
{
    return cut<mac_limit>(read_info_value(board_info, "wan_mac"));
}

std::string wan_mac(const MacKeys &keys)
{
    const std::string choice = config_value(keys.choice);
    if (choice == "0") {
        return factory_mac();
    }
    if (choice == "1") {
        return cut<mac_limit>(config_value("wan_remote_mac"));
    }
    return choice == "2" ? cut<mac_limit>(config_value(keys.own)) : "";
}

Section begin_wan(Document &doc, const std::string &mac)
{
    const std::string &port = systeminfo[wan_eth_ifs].value;
    doc.section("device", port).add_even_empty("name", port).add_even_empty("macaddr", mac);
    Section bridge = doc.section("interface", systeminfo[wan_net_section].value);
    bridge.add_even_empty("ifname", wan_ifname()).add_even_empty("type", "bridge");
    return bridge;
}

Section begin_ppp(Document &doc, SystemInfoRow name, const char *proto)
{
    Section session = doc.section("interface", systeminfo[name].value);
    session.add_even_empty("ifname", systeminfo[wan_net_if].value)
        .add_even_empty("proto", proto)
        .add_even_empty("force_link", "1");
    return session;
}

void add_dns(Section &section, const char *choice)
{
    if (config_match(choice, "1") != 0) {
        section.add_even_empty("peerdns", "0").add_even_empty("dns", dns_list());
    } else {
        section.add_even_empty("peerdns", "1");
    }
}

void add_fixed_address(Section &session, const char *choice, const char *address)
{
    if (config_match(choice, "1") != 0) {
        session.add_even_empty("ipaddr", config_value(address));
    }
}

void add_dial(Section &session, const DialKeys &keys)
{
    const std::string test = config_value("wan_test_status");
    if (test == "none") {
        session.add_even_empty("run_test", "0");
    } else if (test == "test") {
        session.add_even_empty("run_test", "1");
    }
    session.add_even_empty("connmode", config_value(keys.demand));
    add_demand(session, keys, test);
}

void add_demand(Section &session, const DialKeys &keys, const std::string &test)
{
    const std::string demand = config_value(keys.demand);
    if (demand == "1") {
        session.add_even_empty("demand", config_value(keys.idle_time));
    } else if (demand == "2" && test == "none") {
        session.add_even_empty("auto", "0");
    }
}

void add_disconnect_time(Section &session)
{
    if (config_match("bas_auto_conn_flag", "1") != 0) {
        session.add_even_empty("disconn_time", config_value("bas_conn_time_num"));
    }
}

void add_ipv6_over_ppp(Section &session)
{
    const bool same =
        config_match("ipv6_sameinfo", "1") != 0 && config_match("ipv6_type", "pppoe") != 0;
    session.add_even_empty("ipv6", same ? "auto" : "0");
}

} // namespace qorcfg
