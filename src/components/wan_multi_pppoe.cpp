#include "components/wan_builders.h"

#include "platform/config_value.h"
#include "platform/qor_platform.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::size_t dns_list_limit = 63;

constexpr DialKeys dial{"wan_mulpppoe_demand", "wan_mulpppoe1_idletime"};

/// Keys of one of the two sessions.
struct Session {
    SystemInfoRow section;
    const char *name;
    std::array<Option, 3> account;
    const char *address_choice;
    const char *address;
    const char *dns1;
    const char *dns2;
};

constexpr Session first{
    ppp_net_section,
    "session1",
    {{{"username", "wan_mulpppoe1_username"},
      {"password", "wan_mulpppoe1_passwd"},
      {"service", "wan_mulpppoe1_service"}}},
    "wan_mulpppoe1_wan_assign",
    "wan_mulpppoe1_ip",
    "wan_ether_dns1",
    "wan_ether_dns2",
};

constexpr Session second{
    mppp_net_section,
    "session2",
    {{{"username", "wan_mulpppoe2_username"},
      {"password", "wan_mulpppoe2_password"},
      {"service", "wan_mulpppoe2_servicename"}}},
    "wan_mulpppoe2_wan_assign",
    "wan_mulpppoe2_ip",
    "wan_ether2_dns1",
    "wan_ether2_dns2",
};

Section begin(Document &doc, const Session &keys)
{
    Section session = begin_ppp(doc, keys.section, "mulpppoe");
    session.add_even_empty("session", keys.name);
    return session;
}

void add_account(Section &session, const Session &keys)
{
    session.add_even_empty(keys.account);
    add_fixed_address(session, keys.address_choice, keys.address);
}

void add_servers(Section &session, const Session &keys)
{
    session.add_even_empty(
        "dns", cut<dns_list_limit>(config_value(keys.dns1) + " " + config_value(keys.dns2)));
}

void add_run_test(Section &session, const std::string &test)
{
    if (test == "none" || test == "test_multi2") {
        session.add_even_empty("run_test", "0");
    } else if (test == "test" || test == "test_multi1") {
        session.add_even_empty("run_test", "1");
    }
}

/// Where the second session's servers are, as the user says.
const char *area()
{
    const std::string choice = config_value("wan_mulpppoe2_session");
    return choice == "0" ? "west" : choice == "1" ? "east" : "other";
}

Section add_first_session(Document &doc, const std::string &test, const std::string &mtu)
{
    Section session = begin(doc, first);
    add_account(session, first);
    add_run_test(session, test);
    session.add_even_empty("connmode", config_value(dial.demand));
    if (test == "test_multi2") {
        session.add_even_empty("auto", "0");
    }
    add_demand(session, dial, test);
    if (config_match("wan_mulpppoe1_dns_assign", "1") != 0) {
        session.add_even_empty("peerdns", "0");
        add_servers(session, first);
    } else {
        session.add_even_empty("peerdns", "1");
    }
    session.add_even_empty("mtu", mtu);
    return session;
}

void add_second_session(Document &doc, Section &first_session, const std::string &test)
{
    Section session = begin(doc, second);
    session.add_even_empty("area", area());
    add_account(session, second);
    if (test == "test_multi1") {
        session.add_even_empty("auto", "0");
    }
    if (config_match("wan_mulpppoe2_dns_assign", "1") != 0) {
        // The scripts take the first session's word for both.
        first_session.add_even_empty("peerdns", "0");
        add_servers(session, second);
    } else {
        session.add_even_empty("peerdns", "1");
    }
    session.add_even_empty("mtu", config_value("wan_mulpppoe2_mtu"));
}

} // namespace

void build_multi_pppoe(Document &doc)
{
    const std::string mac = factory_mac();
    const std::string mtu = config_value("wan_mulppp_mtu");
    const std::string test = config_value("wan_test_status");
    begin_wan(doc, mac).add_even_empty("mtu", mtu).add_even_empty("macaddr", mac);
    Section first_session = add_first_session(doc, test, mtu);
    if (config_match("wan_enable_session2", "0") == 0) {
        add_second_session(doc, first_session, test);
    }
}

} // namespace qorcfg
