#include "components/components.h"

#include "core/base/predicates.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr std::array keys{
    "ap_mode", "ap_ipaddr", "ap_netmask", "ap_gateway", "ap_ether_dns1", "ap_ether_dns2",
};

constexpr std::array factory_options{
    Option{"ota", "ota"},
    Option{"cal", "cal"},
};

constexpr std::array static_options{
    Option{"ipaddr", "ap_ipaddr"},
    Option{"netmask", "ap_netmask"},
    Option{"gateway", "ap_gateway"},
};

/// The factory flags never change while the device runs, so they are written once.
void write_factory_flags()
{
    Document doc;
    doc.section("facotry", "factory")
        .add("mode", is_factory_mode() != 0 ? "enable" : "disable")
        .add("tt3", config_value("factory_tt3") == "1" ? "1" : "0")
        .add(factory_options);
    commit(doc, "opmode", "factory", 0);
}

/// Both servers of the access point, the second one's blank included when there is none.
std::string dns_servers()
{
    return cut<63>(config_value("ap_ether_dns1") + " " + config_value("ap_ether_dns2"));
}

int update(int job)
{
    QORCFG_LOG(" update opmode");
    Document doc;
    Section section = doc.section("operate", "operate");
    if (is_ap_mode() == 0) {
        section.add("mode", "normal");
    } else {
        section.add("mode", "apmode");
        if (config_value("ap_ether_ip_assign") == "0") {
            section.add(static_options).add("dns", dns_servers());
        }
    }
    return commit(doc, "opmode", "operate", job);
}

void init()
{
    log_init("opmode");
    write_factory_flags();
    subscribe_all(keys, update);
}

void register_()
{
    log_register("opmode");
}

} // namespace

const Operations ietf_opmode{init, nullptr, register_};

} // namespace qorcfg
