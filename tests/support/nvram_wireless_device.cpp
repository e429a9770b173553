#include "support/nvram_wireless_device.h"

#include "engine/new_json_util.h"
#include "platform/key_id.h"
#include "wireless/nvram_wireless.h"
#include "wireless/uci_access.h"

#include <filesystem>
#include <uci.h>

namespace qorcfg::test {

namespace {

constexpr const char *description_begin = R"({
  "g_device": "wifi0", "a_device": "wifi1", "a2_device": "wifi2",
  "atf_enable": "1", "thermal_analytics": "0", "guest_vlan": ")";

constexpr const char *description_end = R"(", "athinfo": [
  {"radio": "2.4G", "vap_type": "primary", "ifname": "ath0", "config_prefix": "wlg"},
  {"radio": "2.4G", "vap_type": "guest", "ifname": "ath02", "config_prefix": "wlg1"},
  {"radio": "2.4G", "vap_type": "backhaul-ap_raw", "ifname": "ath01", "config_prefix": "wlg_bh"},
  {"radio": "2.4G", "vap_type": "backhaul-sta_raw", "ifname": "ath03", "config_prefix": "wlg_sta"},
  {"radio": "5G", "vap_type": "primary", "ifname": "ath1", "config_prefix": "wla"},
  {"radio": "5G", "vap_type": "guest", "ifname": "ath12", "config_prefix": "wla1"},
  {"radio": "5G_2nd", "vap_type": "backhaul-ap_raw", "ifname": "ath2", "config_prefix": "wla_bh"},
  {"radio": "5G_2nd", "vap_type": "backhaul-sta_raw", "ifname": "ath21", "config_prefix": "sta"}]})";

} // namespace

NvramWirelessDevice::NvramWirelessDevice()
{
    std::filesystem::create_directories(path("/tmp/cache/wireless"));
    write("/tmp/etc/config/wireless", "");
    be("Base");
    set_role("");
    set_driver("1");
    describe("0");
}

void NvramWirelessDevice::be(const std::string &kova_type) const
{
    write("/tmp/etc/config/systeminfo", "config systeminfo 'sysinfo'\n\toption kova_type '" +
                                            kova_type +
                                            "'\n\nconfig systeminfo 'boarddata'\n"
                                            "\toption board_wpspin '12345670'\n");
}

void NvramWirelessDevice::set_role(const std::string &role) const
{
    write("/tmp/etc/config/repacd", "config repacd 'repacd'\n\toption Role '" + role + "'\n");
}

void NvramWirelessDevice::set_driver(const std::string &enable) const
{
    write("/tmp/etc/config/qcacfg80211",
          "config qcacfg80211 'config'\n\toption enable '" + enable + "'\n");
}

void NvramWirelessDevice::describe(const std::string &guest_vlan) const
{
    write("/etc/ath/athinfo.json", description_begin + guest_vlan + description_end);
}

void NvramWirelessDevice::translate()
{
    start_up(nvram_wireless);
    document_ =
        parse_json(read("/tmp/cache/qorcfg/nvramcfg.d/nvram-wireless.json"), JsonSyntax::strict);
}

namespace {

std::vector<std::string> member_names(json_object *object)
{
    std::vector<std::string> names;
    for_each_member(object, [&](const char *name, json_object *) { names.emplace_back(name); });
    return names;
}

} // namespace

std::vector<std::string> NvramWirelessDevice::types() const
{
    return member_names(document_.get());
}

std::vector<std::string> NvramWirelessDevice::sections(const char *type) const
{
    return member_names(json_get_member(document_.get(), type));
}

json_object *NvramWirelessDevice::find(const std::string &section) const
{
    json_object *found = nullptr;
    for_each_member(document_.get(), [&](const char *, json_object *container) {
        if (json_object *options = json_get_member(container, section.c_str())) {
            found = options;
        }
    });
    return found;
}

std::vector<std::string> NvramWirelessDevice::options(const std::string &section) const
{
    std::vector<std::string> options;
    for_each_member(find(section), [&](const char *name, json_object *value) {
        options.push_back(std::string(name) + "=" + json_value_text(value));
    });
    return options;
}

std::string NvramWirelessDevice::option(const std::string &section, const std::string &name) const
{
    json_object *value = json_get_member(find(section), name.c_str());
    return value == nullptr ? "(none)" : json_value_text(value);
}

const std::vector<UpdateCallback> &NvramWirelessDevice::callbacks_of(const char *key)
{
    return registry().find(config_key_id(key))->normal;
}

std::vector<std::string> NvramWirelessDevice::live_sections()
{
    std::vector<std::string> sections;
    const UciContext context = open_uci_context();
    uci_package *package = nullptr;
    if (uci_load(context.get(), "wireless", &package) != UCI_OK) {
        return sections;
    }
    const uci_element *element = nullptr;
    uci_foreach_element(&package->sections, element)
    {
        sections.push_back(std::string(element->name) + "=" + uci_to_section(element)->type);
    }
    return sections;
}

} // namespace qorcfg::test
