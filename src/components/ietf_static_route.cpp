#include "components/components.h"

#include "components/numbered_keys.h"
#include "components/text.h"
#include "engine/systeminfo.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <arpa/inet.h>
#include <array>
#include <cstdint>
#include <string>

namespace qorcfg {

namespace {

// "static_router" stands for the numbered keys, under which the routes are kept.
constexpr std::array keys{"ap_mode", "static_router", "lan_ipaddr", "lan_netmask", "wan_proto"};

/// The address in network order; all ones for a text that is no dotted quad.
std::uint32_t address_of(const std::string &text)
{
    in_addr address{};
    return ::inet_pton(AF_INET, text.c_str(), &address) == 1 ? address.s_addr : INADDR_NONE;
}

/// The section of the interface behind which the gateway lies.
const std::string &interface_of(const std::string &gateway_address)
{
    const std::uint32_t other_bits =
        address_of(gateway_address) ^ address_of(config_value("lan_ipaddr"));
    if ((other_bits & address_of(config_value("lan_netmask"))) == 0) {
        return systeminfo[lan_net_section].value;
    }
    const std::string protocol = config_value("wan_proto");
    const bool plain = protocol == "dhcp" || protocol == "static";
    return systeminfo[plain ? wan_net_section : ppp_net_section].value;
}

/// Adds one route unless it is switched off. False when the text lacks a field.
bool add_route(Document &doc, const std::string &value)
{
    const auto fields = first_fields<7>(split_at_single_blanks(cut<255>(value)));
    if (!fields) {
        return false;
    }
    const auto &[name, is_private, active, target, netmask, gateway, metric] = *fields;
    if (cut<15>(active) == "0") {
        return true;
    }
    const std::string gateway_address = cut<31>(gateway);
    doc.append("route", numbered_sections)
        .add("name", cut<63>(name))
        .add("private", cut<15>(is_private))
        .add("target", cut<31>(target))
        .add("netmask", cut<31>(netmask))
        .add("gateway", gateway_address)
        .add("interface", interface_of(gateway_address))
        .add("metric", cut<15>(metric));
    return true;
}

int update(int job)
{
    // The line names another component; people who read the console know it by this text.
    QORCFG_LOG(" update igmpproxy");
    Document doc;
    if (doc.container("route", numbered_sections) == nullptr) {
        return 1;
    }
    for_each_numbered_key("static_router", 1,
                          [&](int, const std::string &value) { return add_route(doc, value); });
    return commit(doc, "network", "static_route", job);
}

void init()
{
    log_init("static route");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("static route");
}

} // namespace

const Operations ietf_static_route{init, nullptr, register_};

} // namespace qorcfg
