#pragma once

#include "engine/json.h"
#include "support/device_root.h"
#include "wireless/ietf_wireless.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace qorcfg::test {

/// A virtual interface in the hardware description.
struct Vap {
    const char *radio;
    const char *type;
    const char *ifname;
};

/// A device root with a hardware description, board facts, and a live "wireless" package without
/// sections. It begins with three radios, the six interfaces of a base unit, and no guest VLAN.
class WirelessDevice : public DeviceRoot {
public:
    WirelessDevice()
    {
        describe("0", {"wifi0", "wifi1", "wifi2"}, base_interfaces());
        write("/tmp/etc/config/wireless", "");
        write("/tmp/etc/config/systeminfo", "config systeminfo 'boarddata'\n"
                                            "\toption board_wpspin '12345670'\n"
                                            "\toption wl2g_mac '00:00:5E:00:53:12'\n"
                                            "\toption wl5g_mac '00:00:5E:00:53:13'\n"
                                            "\toption wl2nd5g_mac '00:00:5E:00:53:14'\n");
        write("/tmp/etc/config/repacd", "config repacd 'repacd'\n\toption Role 'NonCAP'\n");
        write("/tmp/etc/config/qcacfg80211", "config qcacfg80211 'config'\n\toption enable '1'\n");
    }

    static std::vector<Vap> base_interfaces()
    {
        return {{"2.4G", "primary", "ath0"},
                {"2.4G", "guest", "ath02"},
                {"5G", "primary", "ath1"},
                {"5G", "guest", "ath12"},
                {"2.4G", "backhaul-ap_raw", "ath01"},
                {"5G_2nd", "backhaul-ap_raw", "ath2"}};
    }

    /// Writes the description: up to three radio devices, and interfaces.
    void describe(const std::string &guest_vlan, const std::vector<std::string> &radios,
                  const std::vector<Vap> &interfaces) const
    {
        const std::vector<std::string> keys{"g_device", "a_device", "a2_device"};
        std::string text = R"({"guest_vlan": ")" + guest_vlan + '"';
        for (std::size_t i = 0; i < radios.size(); ++i) {
            text += R"(, ")" + keys.at(i) + R"(": ")" + radios[i] + '"';
        }
        text += R"(, "thermal_analytics": "1", "athinfo": [)";
        for (std::size_t i = 0; i < interfaces.size(); ++i) {
            text += std::string(i == 0 ? "" : ", ") + R"({"radio": ")" + interfaces[i].radio +
                    R"(", "vap_type": ")" + interfaces[i].type + R"(", "ifname": ")" +
                    interfaces[i].ifname + R"(", "config_prefix": "p"})";
        }
        write(description, text + "]}");
    }
    void with_guest_vlan() const { describe("1", {"wifi0", "wifi1", "wifi2"}, base_interfaces()); }

    /// Sets the keys and runs the component as the start-up pass does.
    void update(std::initializer_list<std::pair<const char *, std::string>> settings = {}) const
    {
        set(settings);
        start_up(ietf_wireless);
    }

    /// The names in the last document: its sections of a type, or a section's options.
    std::vector<std::string> sections(const char *type) const { return names(json_path({type})); }
    std::vector<std::string> options(const char *type, const char *name) const
    {
        return names(json_path({type, name}));
    }
    /// An option of the last document; "(none)" when it has none.
    std::string option(const char *type, const char *name, const char *option) const
    {
        const std::string text = json_path({type, name, option});
        return text.empty() ? "(none)" : text.substr(1, text.size() - 2);
    }
    std::string radio(const char *name, const char *option_name) const
    {
        return option("wifi-device", name, option_name);
    }
    std::string interface(const char *name, const char *option_name) const
    {
        return option("wifi-iface", name, option_name);
    }
    /// Several options of an interface: "ssid=Home key=secret", in their order in the document.
    std::string interface(const char *name, const std::vector<std::string> &wanted) const
    {
        std::string text;
        for (const std::string &each : options("wifi-iface", name)) {
            if (std::find(wanted.begin(), wanted.end(), each) != wanted.end()) {
                text += (text.empty() ? "" : " ") + each + "=" + interface(name, each.c_str());
            }
        }
        return text;
    }

    static constexpr const char *description = "/etc/ath/athinfo.json";

private:
    /// Compact text of a part of the document; "" when it is not there.
    std::string json_path(std::initializer_list<const char *> path) const
    {
        const Json root = parse_json(document("wireless", "all"), JsonSyntax::strict);
        json_object *value = root.get();
        for (const char *member : path) {
            json_object *next = nullptr;
            if (!is_json_object(value) || json_object_object_get_ex(value, member, &next) == 0) {
                return "";
            }
            value = next;
        }
        return json_object_to_json_string_ext(value, JSON_C_TO_STRING_PLAIN |
                                                         JSON_C_TO_STRING_NOSLASHESCAPE);
    }
    static std::vector<std::string> names(const std::string &object)
    {
        std::vector<std::string> names;
        const Json parsed = parse_json(object, JsonSyntax::strict);
        for_each_member(parsed.get(),
                        [&](const char *name, json_object *) { names.emplace_back(name); });
        return names;
    }
};

} // namespace qorcfg::test
