#include "components/components.h"

#include "core/base/predicates.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr std::array openvpn_configs{
    "ap_mode",           "vpn_enable",        "vpn_serv_type",   "vpn_serv_port",
    "tun_vpn_serv_type", "tun_vpn_serv_port", "vpn_access_mode",
};

constexpr std::array tap_options{
    Option{"proto", "vpn_serv_type", cut<4>},
    Option{"port", "vpn_serv_port", cut<5>},
    Option{"access_mode", "vpn_access_mode", cut<4>},
};

constexpr std::array tun_options{
    Option{"proto", "tun_vpn_serv_type", cut<4>},
    Option{"port", "tun_vpn_serv_port", cut<5>},
    Option{"access_mode", "vpn_access_mode", cut<4>},
};

int update(int job)
{
    QORCFG_LOG(" update openvpn");
    // An access point has no WAN side to serve.
    const std::string enabled = is_ap_mode() != 0 ? "0" : cut<1>(config_value("vpn_enable"));
    Document doc;
    doc.section("openvpn", "tap_server").add("enabled", enabled).add(tap_options);
    doc.section("openvpn", "tun_server").add("enabled", enabled).add(tun_options);
    QORCFG_LOG("openvpn json output %s", json_compact_text(doc.get()).c_str());
    return commit(doc, "openvpn", "openvpn", job);
}

void init()
{
    log_init("openvpn");
    subscribe_all_by_name("ietf_openvpn", openvpn_configs, update);
}

void register_()
{
    log_register("openvpn");
}

} // namespace

const Operations ietf_openvpn{init, nullptr, register_};

} // namespace qorcfg
