#include "components/vlan_settings.h"

#include "components/numbered_keys.h"
#include "components/text.h"
#include "engine/document.h"
#include "platform/qor_platform.h"

#include <strings.h>

namespace qorcfg {

namespace {

constexpr std::size_t lan_port_limit = 8;
constexpr std::size_t lan_port_name_limit = 7;

std::vector<std::string> the_lan_ports;

VlanTag parse_tag(std::vector<std::string> fields)
{
    constexpr std::size_t tag_fields = 5;
    fields.resize(tag_fields);
    return {number_of(fields[0]) != 0, fields[1], number_of(fields[2]), number_of(fields[3]),
            number_of(fields[4])};
}

} // namespace

VlanMode get_vlan_mode()
{
    if (!is_vlan_enabled()) {
        return VlanMode::off;
    }
    return vlan_type_is("1") ? VlanMode::tagged : VlanMode::port_bridging;
}

bool is_vlan_enabled()
{
    return config_match("enable_vlan", "1") != 0;
}

bool vlan_type_is(const char *type)
{
    return is_vlan_enabled() && config_match("vlan_type", type) != 0;
}

bool VlanTag::is(const char *name) const
{
    return ::strcasecmp(service.c_str(), name) == 0;
}

std::vector<VlanTag> vlan_tags(int first, std::size_t fields)
{
    std::vector<VlanTag> tags;
    for_each_numbered_key("vlan_tag_", first, [&](int, const std::string &setting) {
        std::vector<std::string> found = split_at_blanks(setting);
        if (found.size() >= fields) {
            tags.push_back(parse_tag(std::move(found)));
        }
    });
    return tags;
}

int iptv_vlan_id()
{
    return config_match("iptv_vlan_enable", "1") != 0 ? number_of(config_value("iptv_vlan")) : 0;
}

std::string vlan_interface(const std::string &port, int id)
{
    return port + "-v" + std::to_string(id);
}

const std::vector<std::string> &lan_ports()
{
    return the_lan_ports;
}

void set_lan_ports(const std::string &maps)
{
    the_lan_ports.clear();
    for (const std::string &token : split_at_blanks(maps)) {
        const std::size_t colon = token.find(':');
        if (token.rfind("LAN", 0) != 0 || colon == std::string::npos) {
            continue;
        }
        if (the_lan_ports.size() == lan_port_limit) {
            return;
        }
        const std::string port = token.substr(colon + 1);
        the_lan_ports.push_back(cut<lan_port_name_limit>(port.substr(0, port.find(':'))));
    }
}

std::vector<std::string> lan_ports_in(int mask)
{
    std::vector<std::string> ports;
    for (std::size_t i = 0; i < the_lan_ports.size(); ++i) {
        if (((static_cast<unsigned>(mask) >> i) & 1U) != 0) {
            ports.push_back(the_lan_ports[i]);
        }
    }
    return ports;
}

std::string bounded_print(const char *routine, std::size_t limit, const std::string &text)
{
    std::string printed(limit + 1, '\0');
    const int length = qor_sprintf_s(routine, printed.data(), printed.size(), "%s", text.c_str());
    printed.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return printed;
}

} // namespace qorcfg
