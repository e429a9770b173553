#pragma once

#include <array>
#include <string_view>

namespace qorcfg {

enum class Band { ghz_2_4, ghz_5 };

/// One of the logical radios that the wireless code knows, with the store keys of its settings.
struct Radio {
    const char *name;
    const char *store_prefix; ///< what the names of its store keys begin with
    Band band;
    const char *channel_key;
    const char *hwmode_key;
    const char *hwmode_default; ///< stands in for an empty mode
    const char *htmode_key;
    const char *htmode_default;
    const char *tpscale_key; ///< the 5 GHz radios share one
    const char *bf_key;
    const char *implicit_bf_key;
    const char *mu_mimo_key;
};

inline constexpr std::array<Radio, 3> radios{{
    {"2g", "wl", Band::ghz_2_4, "wl_hidden_channel", "wl_hwmode", "11ng", "wl_htmode", "HT40",
     "wl_tpscale", "wlg_bf", "wlg_implicit_bf", "wlg_mu_mimo"},
    {"5g1", "wla", Band::ghz_5, "wla_hidden_channel", "wla_hwmode", "11ac", "wla_htmode", "HT80",
     "wla_tpscale", "wla_bf", "wla_implicit_bf", "wla_mu_mimo"},
    {"5g2", "wla_2nd", Band::ghz_5, "wla_2nd_hidden_channel", "wla_2nd_hwmode", "11ac",
     "wla_2nd_htmode", "HT80", "wla_tpscale", "wla_2nd_bf", "wla_2nd_implicit_bf",
     "wla_2nd_mu_mimo"},
}};

inline constexpr const Radio &radio_2g = radios[0];
inline constexpr const Radio &radio_5g1 = radios[1];
inline constexpr const Radio &radio_5g2 = radios[2];

/// The radio of that name; null for none.
constexpr const Radio *find_radio(std::string_view name)
{
    for (const Radio &radio : radios) {
        if (name == radio.name) {
            return &radio;
        }
    }
    return nullptr;
}

/// What a virtual interface is for.
enum class Role {
    main,          ///< fronthaul, main network
    guest,         ///< fronthaul, guest network
    backhaul_ap,   ///< access point for satellites
    backhaul_sta,  ///< uplink of a satellite
    bridge_station ///< uplink of a device in bridge mode
};

/// One of the virtual interfaces, with the store keys of its settings; null where it has none.
struct Interface {
    const char *name; ///< its role name: UCI section, and key of its option object
    Band band;
    Role role;
    const char *ssid_key = nullptr;
    const char *sectype_key = nullptr;
    const char *broadcast_key = nullptr;
    const char *radio_switch_key = nullptr;
    const char *guest_switch_key = nullptr;
    const char *guest_access_key = nullptr; ///< whether guests see each other and the network
    const char *wps_switch_key = nullptr;
    const char *wps_status_key = nullptr;
    const char *rts_key = nullptr;
    const char *frag_key = nullptr;
    const char *wmm_key = nullptr;
    const char *preamble_key = nullptr;

    constexpr bool is_backhaul() const
    {
        return role == Role::backhaul_ap || role == Role::backhaul_sta;
    }
};

inline constexpr std::array<Interface, 10> interfaces{{
    {.name = "2gfh_main",
     .band = Band::ghz_2_4,
     .role = Role::main,
     .ssid_key = "wl_ssid",
     .sectype_key = "wl_sectype",
     .broadcast_key = "endis_ssid_broadcast",
     .radio_switch_key = "endis_wl_radio",
     .wps_switch_key = "endis_wl_wps",
     .wps_status_key = "wps_status",
     .rts_key = "wl_rts",
     .frag_key = "wl_frag",
     .wmm_key = "endis_wl_wmm",
     .preamble_key = "wl_plcphdr"},
    {.name = "2gfh_guest",
     .band = Band::ghz_2_4,
     .role = Role::guest,
     .ssid_key = "wlg1_ssid",
     .sectype_key = "wlg1_sectype",
     .broadcast_key = "wlg1_endis_guestSSIDbro",
     .radio_switch_key = "endis_wl_radio",
     .guest_switch_key = "wlg1_endis_guestNet",
     .guest_access_key = "wlg1_endis_allow_see_and_access",
     .frag_key = "wl_frag",
     .wmm_key = "endis_wl_wmm",
     .preamble_key = "wl_plcphdr"},
    {.name = "5gfh_main",
     .band = Band::ghz_5,
     .role = Role::main,
     .ssid_key = "wla_ssid",
     .sectype_key = "wla_sectype",
     .broadcast_key = "wla_endis_ssid_broadcast",
     .radio_switch_key = "endis_wla_radio",
     .wps_switch_key = "endis_wla_wps",
     .wps_status_key = "wla_wps_status",
     .rts_key = "wla_rts",
     .frag_key = "wla_frag",
     .wmm_key = "endis_wla_wmm",
     .preamble_key = "wla_plcphdr"},
    {.name = "5gfh_guest",
     .band = Band::ghz_5,
     .role = Role::guest,
     .ssid_key = "wla1_ssid",
     .sectype_key = "wla1_sectype",
     .broadcast_key = "wla1_endis_guestSSIDbro",
     .radio_switch_key = "endis_wla_radio",
     .guest_switch_key = "wla1_endis_guestNet",
     .guest_access_key = "wla1_endis_allow_see_and_access",
     .frag_key = "wla_frag",
     .wmm_key = "endis_wla_wmm",
     .preamble_key = "wla_plcphdr"},
    {.name = "2gbh_ap",
     .band = Band::ghz_2_4,
     .role = Role::backhaul_ap,
     .ssid_key = "wlg_ap_bh_ssid",
     .sectype_key = "wlg_ap_bh_sectype"},
    {.name = "2gbh_sta",
     .band = Band::ghz_2_4,
     .role = Role::backhaul_sta,
     .ssid_key = "wlg_sta_ssid",
     .sectype_key = "wlg_sta_sectype"},
    {.name = "5gbh_ap",
     .band = Band::ghz_5,
     .role = Role::backhaul_ap,
     .ssid_key = "wla_2nd_ap_bh_ssid",
     .sectype_key = "wla_2nd_ap_bh_sectype"},
    {.name = "5gbh_sta",
     .band = Band::ghz_5,
     .role = Role::backhaul_sta,
     .ssid_key = "wla_2nd_sta_ssid",
     .sectype_key = "wla_2nd_sta_sectype"},
    {.name = "2gfh_sta", .band = Band::ghz_2_4, .role = Role::bridge_station},
    {.name = "5gfh_sta", .band = Band::ghz_5, .role = Role::bridge_station},
}};

/// The interface of that role and band.
constexpr const Interface &interface_of(Band band, Role role)
{
    std::size_t index = 0;
    while (interfaces[index].band != band || interfaces[index].role != role) {
        ++index;
    }
    return interfaces[index];
}

} // namespace qorcfg
