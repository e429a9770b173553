#include "engine/systeminfo.h"

#include "engine/new_json_util.h"
#include "platform/path_root.h"

#include <cstdio>
#include <string_view>

namespace qorcfg {

namespace {

constexpr const char *interface_file = "/tmp/cache/systeminfo/ethinfo.info";
constexpr const char *role_file = "/tmp/cache/systeminfo/sysinfo.info";
constexpr std::size_t row_value_limit = 126;

} // namespace

std::array<SystemInfo, system_info_rows> systeminfo{{
    {interface_file, "wan_eth_ifs", "eth0"},
    {interface_file, "lan_eth_ifs", "eth1"},
    {interface_file, "wan_net_if", "br-wan"},
    {interface_file, "lan_net_if", "br-lan"},
    {interface_file, "ppp_net_if", "ppp0"},
    {interface_file, "mppp_net_if", "ppp1"},
    {interface_file, "pppv6_net_if", "ppp2"},
    {interface_file, "wan_net_section", "wan"},
    {interface_file, "lan_net_section", "lan"},
    {interface_file, "ppp_net_section", "wan1p"},
    {interface_file, "mppp_net_section", "wan2p"},
    {interface_file, "wanv6_net_section", "wan16"},
}};

void init_all_systeminfo()
{
    for (SystemInfo &row : systeminfo) {
        row.value = read_info_value(row.file, row.key).substr(0, row_value_limit);
        std::fprintf(stderr, "%ss:%d  init_all_systeminfo %s\n", "qorcfg", __LINE__,
                     row.value.c_str());
    }
}

int read_is_base()
{
    const Json document = read_json_file(rooted(role_file), info_file_bound);
    json_object *role = json_get_member(document.get(), "kova_type");
    return json_object_is_type(role, json_type_string) != 0 && json_value_text(role) == "Base" ? 1
                                                                                               : 0;
}

} // namespace qorcfg
