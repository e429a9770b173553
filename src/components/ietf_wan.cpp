#include "components/components.h"

#include "components/vlan_settings.h"
#include "components/wan_builders.h"
#include "core/base/globals.h"
#include "core/base/predicates.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <algorithm>
#include <array>
#include <string>

namespace qorcfg {

namespace {

// Some of these are read by no builder, and some keys that builders read are missing: a change of
// only those waits for the next change of one of these.
constexpr std::array keys{
    "wan_proto",
    "ap_mode",
    "factory_mode",
    "wan_domain",
    "Device_name",
    "wan_ether_wan_assign",
    "wan_ipaddr",
    "wan_netmask",
    "wan_gateway",
    "wan_ether_dns_assign",
    "wan_ether_dns",
    "wan_ether_mac_assign",
    "wan_remote_mac",
    "wan_ether_this_mac",
    "wan_dhcp_mtu",
    "dhcp_vendorid",
    "dhcp_clientid",
    "wan_endis_dod",
    "bas_auto_conn_flag",
    "bas_conn_time_num",
    "wan_test_status",
    "wan_pppoe_username",
    "wan_pppoe_passwd",
    "wan_pppoe_demand",
    "wan_pppoe_idletime",
    "wan_pppoe_service",
    "wan_pppoe_ip",
    "wan_pppoe_eth_mask",
    "wan_pppoe_intranet_ip",
    "wan_pppoe_mask",
    "wan_pppoe_wan_assign",
    "wan_pppoe_dns_assign",
    "wan_pppoe_mac_assign",
    "wan_pppoe_this_mac",
    "wan_pppoe_mtu",
    "wan_pptp_username",
    "wan_pptp_password",
    "wan_pptp_demand",
    "wan_pptp_idle_time",
    "wan_pptp_wan_assign",
    "wan_pptp_local_ip",
    "wan_pptp_eth_mask",
    "wan_pptp_server_ip",
    "pptp_gw_static_route",
    "wan_pptp_connection_id",
    "wan_pptp_dns_assign",
    "wan_pptp_mac_assign",
    "wan_pptp_this_mac",
    "wan_pptp_mtu",
    "wan_l2tp_username",
    "wan_l2tp_password",
    "wan_l2tp_demand",
    "wan_l2tp_idle_time",
    "wan_l2tp_wan_assign",
    "wan_l2tp_local_ip",
    "wan_l2tp_eth_mask",
    "wan_l2tp_server_ip",
    "l2tp_gw_static_route",
    "wan_l2tp_connection_id",
    "wan_l2tp_dns_assign",
    "wan_l2tp_mac_assign",
    "wan_l2tp_this_mac",
    "wan_l2tp_mtu",
    "wan_mulpppoe1_username",
    "wan_mulpppoe1_passwd",
    "wan_mulpppoe1_service",
    "wan_mulpppoe1_ip",
    "wan_mulpppoe1_dns_assign",
    "wan_mulpppoe_demand",
    "wan_mulpppoe1_idletime",
    "wan_mulppp_mtu",
    "wan_enable_session",
    "wan_mulpppoe2_session",
    "wan_mulpppoe2_username",
    "wan_mulpppoe2_passwd",
    "wan_mulpppoe2_service",
    "wan_mulpppoe2_wan_assign",
    "wan_mulpppoe2_ip",
    "wan_mulpppoe2_dns_assign",
    "wan_ether2_dns",
    "wan_mulpppoe2_mtu",
    "wan_orange_username",
    "enable_orange",
    "wan_orange_dhcp_mac_assign",
    "wan_orange_dhcp_this_mac",
    "wan_orange_pppoe_passwd",
    "wan_orange_pppoe_demand",
    "wan_orange_pppoe_idletime",
    "wan_orange_pppoe_mac_assign",
    "wan_orange_pppoe_this_mac",
    "ipv6_sameinfo",
    "ipv6_type",
    "enable_vlan",
    "iptv_vlan_enable",
    "iptv_vlan",
};
constexpr std::array type_keys{"vlan_type"};
constexpr std::array tag_keys{"vlan_tag_"};
constexpr std::array bridging_keys{"iptv_mask"};

/// A value of "wan_proto". ISP profiles differ from the plain types in their VLAN settings only.
struct ConnectionType {
    const char *proto;
    void (*build)(Document &doc);
};

constexpr std::array connection_types{
    ConnectionType{"orange_dhcp", build_orange_dhcp},
    ConnectionType{"orange_pppoe", build_orange_pppoe},
    ConnectionType{"static", build_static},
    ConnectionType{"dhcp", build_dhcp},
    ConnectionType{"unifi_malaysia_dhcp", build_dhcp},
    ConnectionType{"singtel_singa_dhcp", build_dhcp},
    ConnectionType{"maxis_malaysia_dhcp", build_dhcp},
    ConnectionType{"pppoe", build_pppoe},
    ConnectionType{"movistar_spain_pppoe", build_pppoe},
    ConnectionType{"vodafone_spain_pppoe", build_pppoe},
    ConnectionType{"pptp", build_pptp},
    ConnectionType{"l2tp", build_l2tp},
    ConnectionType{"mulpppoe", build_multi_pppoe},
};

void build(Document &doc)
{
    if (is_factory_mode() != 0 || is_base == 0) {
        return;
    }
    if (is_ap_mode() != 0) {
        build_access_point(doc);
        return;
    }
    const std::string proto = config_value("wan_proto");
    const auto type = std::find_if(connection_types.begin(), connection_types.end(),
                                   [&](const ConnectionType &each) { return each.proto == proto; });
    if (type != connection_types.end()) {
        type->build(doc);
    }
}

int update(int job)
{
    QORCFG_LOG(" update wan");
    Document doc;
    build(doc);
    doc.drop_incomplete_parts();
    return commit(doc, "network", systeminfo[wan_net_section].value, job);
}

int update_when_vlan_enabled(int job)
{
    return is_vlan_enabled() ? update(job) : 0;
}

int update_when_tagged(int job)
{
    return vlan_type_is("1") ? update(job) : 0;
}

int update_when_bridging(int job)
{
    return vlan_type_is("0") ? update(job) : 0;
}

void init()
{
    log_init("wan");
    subscribe_all(keys, update);
    subscribe_all(type_keys, update_when_vlan_enabled);
    subscribe_all(tag_keys, update_when_tagged);
    subscribe_all(bridging_keys, update_when_bridging);
}

void register_()
{
    log_register("wan");
}

} // namespace

const Operations ietf_wan{init, nullptr, register_};

} // namespace qorcfg
