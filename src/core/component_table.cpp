#include "core/component_table.h"

#include "components/components.h"
#include "platform/file.h"
#include "wireless/ietf_wireless.h"
#include "wireless/nvram_wireless.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

namespace qorcfg {

namespace {

constexpr std::size_t list_bound = std::size_t{1} << 20;
constexpr std::size_t line_limit = 254;
constexpr std::size_t name_limit = 126;

} // namespace

const std::array<ComponentRow, 30> components{{
    {"ietf_igmpproxy", &ietf_igmpproxy},
    {"ietf_qoracl", &ietf_qoracl},
    {"ietf_qoracl_guest_sche", &ietf_qoracl_guest_sche},
    {"ietf_ntp", &ietf_ntp},
    {"ietf_email", &ietf_email},
    {"ietf_network_ipv6", &ietf_network_ipv6},
    {"ietf_password", &ietf_password},
    {"ietf_openvpn", &ietf_openvpn},
    {"ietf_traffic_meter", &ietf_traffic_meter},
    {"ietf_attached_devices", &ietf_attached_devices},
    {"ietf_ddns", &ietf_ddns},
    {"ietf_devname", &ietf_devname},
    {"ietf_dhcp", &ietf_dhcp},
    {"ietf_firewall", &ietf_firewall},
    {"ietf_lan", &ietf_lan},
    {"ietf_opmode", &ietf_opmode},
    {"ietf_schedule", &ietf_schedule},
    {"ietf_static_route", &ietf_static_route},
    {"ietf_wan", &ietf_wan},
    {"ietf_rip", &ietf_rip},
    {"ietf_syslog", &ietf_syslog},
    {"ietf_upnpd", &ietf_upnpd},
    {"ietf_parental", &ietf_parental},
    {"ietf_wireless", &ietf_wireless},
    {"ietf_vlan", &ietf_vlan},
    {"ietf_outdoor_led", &ietf_outdoor_led},
    {"ietf_debug", &ietf_debug},
    {"nvram_wireless", &nvram_wireless},
    {"ietf_lighttpd", &ietf_lighttpd},
    {"ietf_rae", &ietf_rae},
}};

const ComponentRow *find_component(std::string_view name)
{
    const auto row = std::find_if(components.begin(), components.end(), [&](const auto &each) {
        return each.ops != nullptr && name == each.name;
    });
    return row == components.end() ? nullptr : &*row;
}

void enable_component(const char *name)
{
    if (name == nullptr) {
        return;
    }
    if (const ComponentRow *row = find_component(name)) {
        registry().begin_component(row->name);
        for (const auto routine : {row->ops->init, row->ops->soap_init}) {
            if (routine != nullptr) {
                routine();
            }
        }
    }
    QORCFG_LOG("Enable component %s !!!!", name);
}

std::string enabled_name(std::string_view line)
{
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos || line.substr(sign + 1, 1) != "1") {
        return {};
    }
    // A line that begins with "=" has its name behind it.
    line.remove_prefix(line.find_first_not_of('='));
    return std::string(line.substr(0, std::min(line.find('='), name_limit)));
}

bool for_each_listed_component(const std::string &path,
                               const std::function<void(const char *name)> &visit)
{
    const std::optional<std::string> content = read_file(path, list_bound);
    if (!content) {
        return false;
    }
    std::string_view rest = *content;
    while (!rest.empty()) {
        const std::size_t newline = rest.find('\n');
        const std::size_t length = newline == std::string_view::npos ? rest.size() : newline + 1;
        std::string_view line = rest.substr(0, std::min(length, line_limit));
        rest.remove_prefix(line.size());
        line = line.substr(0, std::min(line.find('\0'), line.find('\n')));
        if (const std::string name = enabled_name(line); !name.empty()) {
            visit(name.c_str());
        }
    }
    return true;
}

void enable_listed_components(const std::string &path)
{
    if (!for_each_listed_component(path, enable_component)) {
        QORCFG_LOG("cannot read component list %s: %s", path.c_str(), std::strerror(errno));
    }
}

} // namespace qorcfg
