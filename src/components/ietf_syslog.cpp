#include "components/components.h"

#include "core/base/globals.h"
#include "engine/uci_commit.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::array keys{
    "log_allow_sites",
    "log_block_sites_services",
    "log_conn_web_interface",
    "log_router_operation",
    "log_dos_attacks_port_scans",
    "log_port_firwarding_trigering",
    "log_wire_access",
    "log_vpn_head",
    "log_internet_conn_reset",
    "log_wire_signal_sched",
    "log_mobile_conn",
    "log_quillshare",
    "log_vantage",
};

constexpr std::array options{
    Option{"log_allow_sites", "log_allow_sites"},
    Option{"log_block_sites_services", "log_block_sites_services"},
    Option{"log_conn_web_interface", "log_conn_web_interface"},
    Option{"log_router_operation", "log_router_operation"},
    Option{"log_dos_attacks_port_scans", "log_dos_attacks_port_scans"},
    Option{"log_port_firwarding_trigering", "log_port_firwarding_trigering"},
    Option{"log_wireless_access", "log_wire_access"},
    Option{"log_vpn_service", "log_vpn_head"},
    Option{"log_internet_conn_reset", "log_internet_conn_reset"},
    Option{"log_wireless_signal_sched", "log_wire_signal_sched"},
    Option{"log_mobile", "log_mobile_conn"},
    Option{"log_quillshare", "log_quillshare"},
    Option{"log_vantage", "log_vantage"},
};

int update(int job)
{
    QORCFG_LOG(" update package syslog");
    if (is_base == 0) {
        return 1;
    }
    Document doc;
    doc.section("logprofile", "log_server").add(options);
    return commit(doc, "syslog", "log_server", job);
}

void init()
{
    log_init("syslog");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("syslog");
}

} // namespace

const Operations ietf_syslog{init, nullptr, register_};

} // namespace qorcfg
