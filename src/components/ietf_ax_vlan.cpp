#include "components/components.h"

#include "components/device_files.h"
#include "components/text.h"
#include "components/vlan_settings.h"
#include "core/base/globals.h"
#include "core/base/predicates.h"
#include "engine/systeminfo.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"
#include "platform/qor_platform.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr std::array update_keys{"ap_mode", "enable_vlan"};
constexpr std::array type_keys{"vlan_type"};
constexpr std::array bridging_keys{"iptv_mask", "iptv_vlan_enable", "iptv_vlan"};
constexpr std::array tag_keys{"vlan_tag_"};

constexpr int no_priority = -1;
constexpr std::size_t tagged_members_limit = 64;
constexpr std::size_t bridged_members_limit = 128;

/// What the board says once and for all; filled by init, before any worker exists.
struct Board {
    bool region_ru = false;
    std::string factory_wan_mac;
};
Board board;

/// VLANs whose services end on the device itself: each profile's IPTV bridge is part of the WAN.
struct IptvProfile {
    const char *key;
    int id;
};
constexpr std::array iptv_profiles{
    IptvProfile{"voda_spain_iptv", 105},
    IptvProfile{"movistar_spain_iptv", 2},
    IptvProfile{"orange_spain_iptv", 838},
};

constexpr int orange_internet_id = 838;
constexpr int orange_iptv_id = 840;

const std::string &wan_port()
{
    return systeminfo[wan_eth_ifs].value;
}

bool is_vlan_id(int id)
{
    return id >= 1 && id <= 4094;
}

/// Each of the eight priorities, mapped to `priority`.
std::string egress_map(int priority)
{
    const std::string to = std::to_string(priority);
    std::string map;
    for (char from = '0'; from < '8'; ++from) {
        map.append(1, from).append(":").append(to).append(" ");
    }
    map.pop_back();
    return map;
}

void device_vlan_sec_add(Document &doc, const std::string &port, int id, int priority)
{
    if (!is_vlan_id(id)) {
        return;
    }
    const std::string number = std::to_string(id);
    Section device = doc.section("device", port + "v" + number);
    device.add("name", vlan_interface(port, id))
        .add("type", "8021q")
        .add("ifname", port)
        .add("vid", number);
    if (priority >= 0) {
        device.add("egress_qos", egress_map(priority));
    }
}

void add_bridge(Document &doc, const std::string &name, const std::string &members, int id)
{
    if (is_vlan_id(id)) {
        doc.section("interface", name)
            .add("ifname", members)
            .add("type", "bridge")
            .add("macaddr", board.factory_wan_mac);
    }
}

std::string bridge_name(int id)
{
    return std::string("v").append(std::to_string(id));
}

bool is_iptv_of_profile(int id)
{
    for (const IptvProfile &profile : iptv_profiles) {
        if (profile.id == id && config_match(profile.key, "1") != 0) {
            return true;
        }
    }
    return false;
}

void add_service(Document &doc, const VlanTag &tag)
{
    if (tag.is("Internet")) {
        device_vlan_sec_add(doc, wan_port(), tag.id, tag.priority);
        return;
    }
    if (tag.is("Intranet") && board.region_ru) {
        add_bridge(doc, "intra", vlan_interface(wan_port(), tag.id), tag.id);
        device_vlan_sec_add(doc, wan_port(), tag.id, tag.priority);
        return;
    }
    if ((tag.id == orange_internet_id || tag.id == orange_iptv_id) &&
        config_match("enable_orange", "1") != 0) {
        // The IPTV entry stands for both: its bridge needs the Internet VLAN as well.
        if (tag.id == orange_iptv_id) {
            device_vlan_sec_add(doc, wan_port(), orange_internet_id, tag.priority);
            device_vlan_sec_add(doc, wan_port(), orange_iptv_id, tag.priority);
        }
        return;
    }
    if (!is_iptv_of_profile(tag.id)) {
        std::string members = vlan_interface(wan_port(), tag.id);
        for (const std::string &port : lan_ports_in(tag.port_mask)) {
            members.append(" ").append(port);
        }
        add_bridge(doc, bridge_name(tag.id), cut<tagged_members_limit>(members), tag.id);
    }
    device_vlan_sec_add(doc, wan_port(), tag.id, tag.priority);
}

void add_tagged_vlans(Document &doc)
{
    // Boards of this region keep a service in front of the list that the web interface shows.
    for (const VlanTag &tag : vlan_tags(board.region_ru ? 0 : 1, 5)) {
        if (tag.enabled) {
            add_service(doc, tag);
        }
    }
}

void add_bridged_ports(Document &doc)
{
    const int id = iptv_vlan_id();
    if (id <= 0) {
        return;
    }
    device_vlan_sec_add(doc, wan_port(), id, no_priority);
    std::string members = bounded_print("bridge_mode_cdb_to_json", bridged_members_limit,
                                        vlan_interface(wan_port(), id));
    for (const std::string &port : lan_ports_in(number_of(config_value("iptv_mask")))) {
        device_vlan_sec_add(doc, port, id, no_priority);
        members.append(" ").append(vlan_interface(port, id));
    }
    add_bridge(doc, bridge_name(id), cut<bridged_members_limit>(members), id);
}

void build(Document &doc)
{
    const VlanMode mode = get_vlan_mode();
    if (is_base == 0 || is_ap_mode() != 0 || mode == VlanMode::off) {
        return;
    }
    const bool tagged = mode == VlanMode::tagged;
    if (tagged) {
        add_tagged_vlans(doc);
    } else {
        add_bridged_ports(doc);
    }
    doc.section("network", "vlan").add_int("type", tagged ? 1 : 0);
}

int update(int job)
{
    Document doc;
    build(doc);
    return commit(doc, "network", "vlan", job);
}

int update_when_enabled(int job)
{
    return is_vlan_enabled() ? update(job) : 0;
}

int update_when_bridging(int job)
{
    return vlan_type_is("0") ? update(job) : 0;
}

int update_when_tagged(int job)
{
    return vlan_type_is("1") ? update(job) : 0;
}

void init()
{
    log_init("vlan");
    set_lan_ports(read_info_value(interface_info, "eth_ifs_maps"));
    board = {read_info_value(board_info, "board_region") == "RU",
             read_info_value(board_info, "wan_mac")};
    subscribe_all(update_keys, update);
    subscribe_all(type_keys, update_when_enabled);
    subscribe_all(bridging_keys, update_when_bridging);
    subscribe_all(tag_keys, update_when_tagged);
}

void register_()
{
    log_register("vlan");
}

} // namespace

// The register routine stands in the second slot, so that enabling prints its line too.
const Operations ietf_vlan{init, register_, nullptr};

} // namespace qorcfg
