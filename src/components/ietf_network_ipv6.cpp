#include "components/components.h"

#include "core/base/predicates.h"
#include "engine/systeminfo.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace qorcfg {

namespace {

// Some of these names are not those that the builders read: a change of a key that is read but not
// listed does not rebuild the section.
constexpr std::array network_ipv6_wan_configs{
    "ap_mode",
    "ipv6_type",
    "wan_ipv6_cone_fitering",
    "ipv6_auto_dns_asign",
    "ipv6_auto_dns",
    "ipv6_6to4_relay_type",
    "ipv6_6to4_relay",
    "ipv6_6to4_dns_assign",
    "ipv6_6to4_dns",
    "ipv6_fixed_wan_ip",
    "ipv6_fixed_wan_prefix_len",
    "ipv6_fixed_gw_ip",
    "ipv6_fixed_dns",
    "ipv6_dhcp_userClass",
    "ipv6_dhcp_domainName",
    "ipv6_dhcp_dns_assign",
    "ipv6_dhcp_dns",
    "ipv6_autoConfig_userClass",
    "ipv6_autoConfig_domainName",
    "ipv6_autoConfig_dns_assign",
    "ipv6_autoConfig_dns",
    "Ipv6rdPrefix",
    "Ipv6rdPlen",
    "Ipv6Relay",
    "Ipv6rdv4Mask",
    "ipv6_6rd_dns_assign",
    "ipv6_6rd_dns",
    "ipv6_pppoe_username",
    "ipv6_pppoe_passwd",
    "ipv6_pppoe_servername",
    "ipv6_sameinfo",
    "ipv6_pppoe_dns_assign",
    "ipv6_pppoe_dns",
    "ipv6_ripng",
    "ipv6.ndproxy.enable",
    "ipv6.dslite.fixed_aftr_enable",
    "ipv6.dslite.fixed_aftr_ip_addr",
    "wan_orange_username",
};

constexpr std::array ripng_option{Option{"ripng_enable", "ipv6_ripng"}};

const std::string &wan_interface()
{
    return systeminfo[wan_net_if].value;
}

void add_protocol(Section &wan, const char *protocol, const char *ipv6_type)
{
    wan.add("proto", protocol).add("ifname", wan_interface()).add("ipv6_type", ipv6_type);
}

void add_dhcp(Section &wan)
{
    constexpr std::array options{
        Option{"userclass", "ipv6_dhcp_userClass"},
        Option{"domain_name", "ipv6_dhcp_domainName"},
    };
    add_protocol(wan, "dhcpv6", "dhcpv6");
    wan.add(options).add(ripng_option);
}

void add_auto_config(Section &wan)
{
    constexpr std::array options{
        Option{"userclass", "ipv6_autoConfig_userClass"},
        Option{"domain_name", "ipv6_autoConfig_domainName"},
    };
    add_protocol(wan, "dhcpv6", "autoconfig");
    wan.add(options).add(ripng_option);
}

void add_bridge(Section &wan)
{
    add_protocol(wan, "pasthru", "pasthru");
}

void add_6to4(Section &wan)
{
    if (config_value("ipv6_6to4_relay_type") == "1") {
        wan.add("usr_peeraddr", cut<31>(config_value("ipv6_6to4_relay")));
    }
    add_protocol(wan, "6to4", "6to4");
    wan.add(ripng_option);
}

void add_6rd(Section &wan)
{
    constexpr std::array options{
        Option{"ip6prefix", "Ipv6rdPrefix", cut<127>},
        Option{"ip6prefixlen", "Ipv6rdPlen", cut<3>},
        Option{"peeraddr", "Ipv6rdRelay", cut<31>},
        Option{"ip4prefixlen", "Ipv6rdv4Mask", cut<3>},
    };
    wan.add(options);
    add_protocol(wan, "6rd", "6rd");
    wan.add(ripng_option);
}

void add_fixed(Section &wan)
{
    wan.add("ip6addr", cut<127>(config_value("ipv6_fixed_wan_ip")) + "/" +
                           cut<3>(config_value("ipv6_fixed_wan_prefix_len")))
        .add("ip6gw", cut<127>(config_value("ipv6_fixed_gw_ip")));
    add_protocol(wan, "static", "static");
    wan.add("ipv6", "1").add(ripng_option);
}

void add_auto_detect(Section &wan)
{
    add_protocol(wan, "autodetect", "autodetect");
    wan.add(ripng_option);
}

void add_pppoe(Section &wan)
{
    constexpr std::array credentials{
        Option{"username", "ipv6_pppoe_username", cut<127>},
        Option{"password", "ipv6_pppoe_passwd", cut<127>},
        Option{"service", "ipv6_pppoe_servername", cut<63>},
    };
    // With IPv4's account there is no session of IPv6's own to dial.
    if (config_value("ipv6_sameinfo") == "1") {
        wan.add("proto", "qoripv6none");
    } else {
        wan.add("ipv6", "auto").add("unit", "2").add("proto", "pppoe").add("demand", "0");
        wan.add(credentials);
    }
    wan.add("ifname", wan_interface()).add("ipv6_type", "pppoe").add(ripng_option);
}

void add_orange_france(Section &wan)
{
    constexpr std::array account{
        Option{"orange_france_username", "wan_orange_username", cut<127>},
    };
    wan.add("ifname", "@wan")
        .add("proto", "dhcpv6")
        .add("ipv6_type", "autoconfig")
        .add("orange_france_enable", "1")
        .add("userclass", "FSVDSL_livebox.Internet.softathome.Livebox4")
        .add(account);
}

/// The types that carry IPv4 over IPv6 begin alike; `switch_option` names the one that is on.
void add_ipv4_over_ipv6(Section &wan, const char *switch_option)
{
    constexpr std::array options{Option{"nd_enable", "ipv6.ndproxy.enable"}};
    wan.add("ifname", wan_interface())
        .add("proto", "dhcpv6")
        .add("ipv6_type", "autoconfig")
        .add(switch_option, "1")
        .add(options);
}

void add_dslite(Section &wan)
{
    constexpr std::array options{
        Option{"fixed_aftr_enable", "ipv6.dslite.fixed_aftr_enable"},
        Option{"fixed_aftr_ip_addr", "ipv6.dslite.fixed_aftr_ip_addr"},
    };
    add_ipv4_over_ipv6(wan, "ds_enable");
    wan.add(options);
}

void add_v6plus(Section &wan)
{
    add_ipv4_over_ipv6(wan, "mape_enable");
}

void add_nothing(Section & /*wan*/) {}

/// One value of "ipv6_type": its own options, and which of the common ones follow.
struct Ipv6Type {
    const char *name;
    void (*add_options)(Section &wan);
    bool cone_filtering;
    bool dns;
};

constexpr std::array<Ipv6Type, 11> types{{
    {"dhcp", add_dhcp, true, true},
    {"autoConfig", add_auto_config, true, true},
    {"bridge", add_bridge, false, false},
    {"6to4", add_6to4, true, true},
    {"6rd", add_6rd, true, true},
    {"fixed", add_fixed, true, true},
    {"autoDetect", add_auto_detect, true, true},
    {"pppoe", add_pppoe, true, true},
    {"orange_france", add_orange_france, true, false},
    {"dslite", add_dslite, false, false},
    {"v6plus", add_v6plus, false, false},
}};

constexpr Ipv6Type other_type{"", add_nothing, true, true};

const Ipv6Type &find_type(std::string_view name)
{
    const auto *type = std::find_if(types.begin(), types.end(),
                                    [&](const Ipv6Type &each) { return name == each.name; });
    return type == types.end() ? other_type : *type;
}

void add_cone_filtering(Section &wan)
{
    const bool open = config_value("wan_ipv6_cone_fitering") == "1";
    wan.add("ipv6_cone_filtering", open ? "open" : "secured");
}

void add_dns(Section &wan, const std::string &type)
{
    const std::string stem = "ipv6_" + (type == "autoDetect" ? "auto" : type) + "_dns";
    const bool from_peer = type != "fixed" && cut<1>(config_value(stem + "_assign")) == "0";
    wan.add("peerdns", from_peer ? "1" : "0");
    if (from_peer) {
        return;
    }
    std::string servers = cut<127>(config_value(stem + "1"));
    const std::string second = cut<127>(config_value(stem + "2"));
    if (!second.empty()) {
        // Without a first server the list begins with the blank.
        servers += " " + second;
    }
    wan.add("dns", servers);
}

Document wan_document()
{
    Document doc;
    doc.container("interface", named_sections);
    const std::string name = cut<31>(config_value("ipv6_type"));
    if (is_ap_mode() > 0 || name == "disabled") {
        return doc;
    }
    const Ipv6Type &type = find_type(name);
    Section wan = doc.section("interface", systeminfo[wanv6_net_section].value);
    type.add_options(wan);
    if (type.cone_filtering) {
        add_cone_filtering(wan);
    }
    if (type.dns) {
        add_dns(wan, name);
    }
    return doc;
}

int update(int job)
{
    QORCFG_LOG(" update network_ipv6");
    const Document doc = wan_document();
    QORCFG_LOG("ipv6 json output %s", json_compact_text(doc.get()).c_str());
    // The batch file and the snapshot have a name of their own, whatever the section's is.
    return commit(doc, "network", "wan6", job);
}

void init()
{
    log_init("network_ipv6");
    subscribe_all(network_ipv6_wan_configs, update);
}

void register_()
{
    log_register("network_ipv6");
}

} // namespace

const Operations ietf_network_ipv6{init, nullptr, register_};

} // namespace qorcfg
