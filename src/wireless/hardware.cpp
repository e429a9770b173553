#include "wireless/hardware.h"

#include "engine/document.h"
#include "platform/file.h"
#include "platform/path_root.h"
#include "wireless/hardware_names.h"

#include <algorithm>
#include <array>
#include <fcntl.h>

namespace qorcfg {

namespace {

constexpr const char *description_file = "/etc/ath/athinfo.json";
constexpr std::size_t most_interfaces = 15;

struct RadioKey {
    const char *key;
    const Radio &radio;
};

constexpr std::array<RadioKey, 3> radio_keys{{
    {"g_device", radio_2g},
    {"a_device", radio_5g1},
    {"a2_device", radio_5g2},
}};

struct RadioWord {
    const char *word;
    const Radio &radio;
    const char *band_word; ///< the 5 GHz radios share one, and so their interfaces' names
};

constexpr std::array<RadioWord, 3> radio_words{{
    {"2.4G", radio_2g, "2g"},
    {"5G", radio_5g1, "5g"},
    {"5G_2nd", radio_5g2, "5g"},
}};

struct RoleWord {
    const char *word;
    const char *role_word;
};

constexpr std::array<RoleWord, 4> role_words{{
    {"primary", "fh_main"},
    {"guest", "fh_guest"},
    {"backhaul-ap_raw", "bh_ap"},
    {"backhaul-sta_raw", "bh_sta"},
}};

/// The row of a table of words; null for an unknown word.
template <typename Table> auto find_word(const Table &table, std::string_view word)
{
    const auto row = std::find_if(table.begin(), table.end(),
                                  [&](const auto &each) { return word == each.word; });
    return row == table.end() ? nullptr : &*row;
}

std::string field(json_object *object, const char *key)
{
    return cut<15>(json_value_text(json_get_member(object, key)));
}

void read_text(json_object *description, const char *key, std::string &text)
{
    if (json_get_member(description, key) != nullptr) {
        text = field(description, key);
    }
}

void read_radios(json_object *description, Hardware &hardware)
{
    for (const RadioKey &row : radio_keys) {
        if (json_get_member(description, row.key) != nullptr) {
            hardware.radio_map_table.push_back(
                {row.radio.name, field(description, row.key), row.radio.store_prefix});
        }
    }
}

void read_interfaces(json_object *list, Hardware &hardware)
{
    const std::size_t count = is_json_array(list) ? json_size(list) : 0;
    for (std::size_t i = 0; i < count && hardware.iface_map_table.size() < most_interfaces; ++i) {
        json_object *element = json_element(list, i);
        const auto text = [&](const char *key) {
            return json_value_text(json_get_member(element, key));
        };
        const RadioWord *radio = find_word(radio_words, text("radio"));
        const RoleWord *role = find_word(role_words, text("vap_type"));
        if (radio != nullptr && role != nullptr) {
            hardware.iface_map_table.push_back({std::string(radio->band_word) + role->role_word,
                                                radio->radio.name, field(element, "config_prefix"),
                                                field(element, "ifname")});
        }
    }
}

/// The first row of a table of that name; null when there is none.
template <typename Row> const Row *find_row(const std::vector<Row> &table, std::string_view name)
{
    const auto row = std::find_if(table.begin(), table.end(),
                                  [&](const Row &each) { return each.name == name; });
    return row == table.end() ? nullptr : &*row;
}

} // namespace

const RadioRow *Hardware::radio(std::string_view name) const
{
    return find_row(radio_map_table, name);
}

const InterfaceRow *Hardware::interface(std::string_view name) const
{
    return find_row(iface_map_table, name);
}

std::string Hardware::device_of(std::string_view radio_name, const char *otherwise) const
{
    const RadioRow *row = radio(radio_name);
    return row == nullptr ? otherwise : row->device;
}

std::string Hardware::radio_of(std::string_view interface_name) const
{
    const InterfaceRow *row = interface(interface_name);
    return row == nullptr ? "" : row->radio;
}

bool Hardware::carries(std::string_view radio_name, std::string_view word) const
{
    return std::any_of(
        iface_map_table.begin(), iface_map_table.end(), [&](const InterfaceRow &row) {
            return row.radio == radio_name && row.name.find(word) != std::string::npos;
        });
}

int load_athinfo(Hardware &hardware)
{
    const std::string path = rooted(description_file);
    if (!open_file(path, O_RDONLY)) {
        return 0;
    }
    const Json description = read_json_file(path, info_file_bound);
    hardware.guest_vlan = json_value_text(json_get_member(description.get(), "guest_vlan")) == "1";
    hardware.radio_map_table.clear();
    hardware.iface_map_table.clear();
    read_radios(description.get(), hardware);
    read_text(description.get(), "atf_enable", hardware.atf_enable);
    read_text(description.get(), "thermal_analytics", hardware.thermal_analytics);
    read_interfaces(json_get_member(description.get(), "athinfo"), hardware);
    return 0;
}

} // namespace qorcfg
