#include "components/components.h"
#include "components/device_files.h"
#include "components/numbered_keys.h"
#include "components/text.h"

#include "core/base/globals.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr const char *package = "firewall";
constexpr const char *worldwide = "WW";

/// Where the board was made to be sold; filled by init, before any worker exists.
std::string board_region;

constexpr std::array region_keys{"GUI_Region"};

constexpr std::array basic_keys{
    "wan_endis_spi",    "wan_endis_rspToPing", "wan_endis_sipalg",
    "wan_nat_fitering", "remote_endis",        "remote_access",
    "remote_iplist",    "remote_port",         "ipv6_allow_ping_internal_hosts",
    "wan_endis_dmz",    "dmz_ipaddr",          "wan_enable_ipsec",
    "wan_enable_pptp",  "wan_enable_l2tp",
};

// The lists are subscribed by the stem of their numbered keys.
constexpr std::array forwarding_keys{"forwarding"};
constexpr std::array triggering_keys{"disable_port_trigger", "porttrigger_timeout", "triggering"};
constexpr std::array services_keys{"blockserv_ctrl", "enable_multipppoe_serv", "block_services"};
constexpr std::array sites_keys{
    "block_skeyword",  "block_KeyWord_DomainList", "block_endis_Trusted_IP",
    "block_trustedip", "enable_multipppoe",
};
constexpr std::array session_policy_keys{"mulpppoe_setting"};

/// The store says whether the gateway helps SIP along, the service whether it keeps out of the way.
std::string inverted(const std::string &value)
{
    return value == "1" ? "0" : "1";
}

std::string open_or_secured(const std::string &value)
{
    return value == "1" ? "open" : "secured";
}

constexpr std::array protection_options{
    Option{"dos_protection", "wan_endis_spi"},
    Option{"resp_wan_ping_req", "wan_endis_rspToPing"},
    Option{"sipalg", "wan_endis_sipalg", inverted},
    Option{"filtering", "wan_nat_fitering", open_or_secured},
    Option{"remote_management", "remote_endis"},
};

constexpr std::array access_options{
    Option{"remote_port", "remote_port"},
    Option{"ipv6_allow_ping_internal", "ipv6_allow_ping_internal_hosts"},
};

constexpr std::array dmz_options{
    Option{"status", "wan_endis_dmz"},
    Option{"ipaddr", "dmz_ipaddr"},
};

constexpr std::array vpn_options{
    Option{"ipsec_pass", "wan_enable_ipsec"},
    Option{"pptp_pass", "wan_enable_pptp"},
    Option{"l2tp_pass", "wan_enable_l2tp"},
};

constexpr std::array triggering_options{
    Option{"disabled", "disable_port_trigger"},
    Option{"timeout", "porttrigger_timeout"},
};

constexpr std::array sites_options{
    Option{"keyword_list", "block_KeyWord_DomainList"},
    Option{"allow_trusted_ip", "block_endis_Trusted_IP"},
    Option{"trusted_ip", "block_trustedip"},
    Option{"enable_session2", "enable_multipppoe"},
};

/// Hands a document over and answers what its release answers: 1. Sections for which memory was
/// short are missing from it; they must not hold back the rest.
int hand_over(const Document &doc, const char *snapshot, int job)
{
    constexpr int released = 1;
    if (doc.get() == nullptr) {
        return -1;
    }
    commit_uci_section(doc, package, snapshot, qorcfg_change_is_trigger, job);
    return released;
}

/// Calls `visit(fields, number)` for each rule of a numbered list that has `Count` fields or more;
/// a shorter one is skipped and its number used up.
template <std::size_t Count, typename Visit> void for_each_rule(const char *stem, Visit visit)
{
    for_each_numbered_key(stem, 1, [&](int number, const std::string &rule) {
        if (const auto fields = first_fields<Count>(split_at_blanks(rule))) {
            visit(*fields, number);
        }
    });
}

/// The name of rule `number` where sections are counted from 0.
std::string rule_section(const char *stem, int number)
{
    return stem + std::to_string(number - 1);
}

/// Adds a port range; rules may name its ends in either order.
void add_port_range(Section &section, const char *start, const char *end, const std::string &one,
                    const std::string &other)
{
    const bool swapped = number_of(one) > number_of(other);
    section.add(start, swapped ? other : one).add(end, swapped ? one : other);
}

/// VPN pass-through is for two markets; a board sold everywhere goes by the language chosen.
bool has_vpn_passthrough()
{
    if (board_region.empty() || board_region == worldwide) {
        const std::string region = config_value("GUI_Region");
        return region == "Chinese" || region == "Russian";
    }
    return board_region == "PR" || board_region == "RU";
}

int update_basic(int job)
{
    const bool from_anywhere = config_value("remote_access") == "2";
    Document doc;
    doc.section("firewall", "basic_configuration")
        .add(protection_options)
        .add("remote_ipaddress", from_anywhere ? "any" : config_value("remote_iplist"))
        .add(access_options);
    doc.section("host", "dmzhost").add(dmz_options);
    if (has_vpn_passthrough()) {
        doc.section("vpn_passthrough", "vpn_passthrough").add(vpn_options);
    }
    return hand_over(doc, "basic", job);
}

// Forwarding and triggering write opposite flags into one section: the last to run stands.

int update_forwarding(int job)
{
    Document doc;
    doc.section("portmap", "portmap").add("port_forwarding", "1").add("port_triggering", "0");
    for_each_rule<7>("forwarding", [&](const auto &fields, int number) {
        const auto &[service, protocol, ext_one, ext_other, int_one, int_other, address] = fields;
        Section rule = doc.section("port_forward", rule_section("port_forward_", number));
        rule.add("service_name", service).add("protocol", protocol).add("ipaddr", address);
        add_port_range(rule, "ext_port_start", "ext_port_end", ext_one, ext_other);
        add_port_range(rule, "int_port_start", "int_port_end", int_one, int_other);
    });
    return hand_over(doc, "forwarding", job);
}

int update_triggering(int job)
{
    Document doc;
    doc.section("portmap", "portmap")
        .add("port_forwarding", "0")
        .add("port_triggering", "1")
        .add(triggering_options);
    for_each_rule<9>("triggering", [&](const auto &fields, int number) {
        const auto &[service, unused, user, protocol, trigger_port, int_protocol, int_start,
                     int_end, enable] = fields;
        doc.section("port_trigger", rule_section("port_trigger_", number))
            .add("service_name", service)
            .add("enable", enable)
            .add("protocol", protocol)
            .add("user", user)
            .add("trigger_port", trigger_port)
            .add("int_protocol", int_protocol)
            .add("int_port_start", int_start)
            .add("int_port_end", int_end);
    });
    return hand_over(doc, "triggering", job);
}

/// When something is blocked, by the text that stands for it.
const char *schedule_of(std::string_view choice)
{
    return choice == "0" ? "never" : choice == "1" ? "block_sched" : "always";
}

/// Adds whom a service is blocked for: one address, a range of them, or everybody.
void add_blocked_addresses(Section &section, const std::string &choice, const std::string &address)
{
    const int number = number_of(choice);
    if (number == 0 || number == 1) {
        section.add("ipaddr_type", number == 0 ? "one" : "range").add("ipaddr", address);
    } else {
        section.add("ipaddr_type", "all");
    }
}

int update_services(int job)
{
    Document doc;
    doc.section("block_service", "block_service")
        .add("schedule", schedule_of(config_value("blockserv_ctrl")))
        .add("enable_session2", config_value("enable_multipppoe_serv"));
    for_each_rule<7>("block_services", [&](const auto &fields, int number) {
        const auto &[name, protocol, port_start, port_end, defined, choice, address] = fields;
        Section rule = doc.section("block_serv", rule_section("block_serv_", number));
        rule.add("name", name)
            .add("define_name", defined)
            .add("protocol", protocol)
            .add("port_start", port_start)
            .add("port_end", port_end);
        add_blocked_addresses(rule, choice, address);
    });
    return hand_over(doc, "blockservc", job);
}

int update_sites(int job)
{
    Document doc;
    // Unlike the services' switch, this one counts by its first character.
    doc.section("block_site", "blocksites")
        .add("schedule", schedule_of(cut<1>(config_value("block_skeyword"))))
        .add(sites_options);
    return hand_over(doc, "blocksites", job);
}

int update_session_policy(int job)
{
    constexpr const char *type = "mulpppoe_policy";
    QORCFG_LOG("update multi pppoe policy setting");
    Document doc;
    if (doc.container(type, named_sections) == nullptr) {
        return hand_over(doc, type, job);
    }
    for_each_numbered_key("mulpppoe_setting", 1, [&](int number, const std::string &setting) {
        const auto fields = first_fields<7>(split_at_single_blanks(cut<127>(setting)));
        if (!fields) {
            return;
        }
        const auto &[kind, domain, ip_min, ip_max, port_min, port_max, protocol] = *fields;
        QORCFG_LOG("%s,%s,%s,%s,%s,%s,%s;", kind.c_str(), domain.c_str(), ip_min.c_str(),
                   ip_max.c_str(), port_min.c_str(), port_max.c_str(), protocol.c_str());
        Section policy = doc.section(type, type + std::to_string(number));
        if (kind == "0") {
            policy.add("rule_type", "domain").add("domain", domain);
        } else if (kind == "1") {
            policy.add("rule_type", "ip").add("ip_min", ip_min).add("ip_max", ip_max);
            policy.add("protocol", protocol);
        } else if (kind == "2") {
            policy.add("rule_type", "port").add("port_min", port_min).add("port_max", port_max);
            policy.add("protocol", protocol);
        }
    });
    return hand_over(doc, type, job);
}

void init()
{
    log_init("firewall");
    board_region = cut<63>(read_info_value(board_info, "board_region"));
    if (board_region == worldwide) {
        subscribe_all(region_keys, update_basic);
    }
    subscribe_all(basic_keys, update_basic);
    subscribe_all(forwarding_keys, update_forwarding);
    subscribe_all(triggering_keys, update_triggering);
    subscribe_all(services_keys, update_services);
    subscribe_all(sites_keys, update_sites);
    subscribe_all(session_policy_keys, update_session_policy);
}

void register_()
{
    log_register("firewall");
}

} // namespace

const Operations ietf_firewall{init, nullptr, register_};

} // namespace qorcfg
