#include "wireless/nvram_wireless.h"

#include "platform/config_value.h"
#include "wireless/interface_options.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr std::array<SecurityType, 4> security_types{{
    {"1", "None", nullptr},
    {"4", "WPA2-PSK", "wpa2_psk"},
    {"5", "WPA-AUTO-PSK", "wpas_psk"},
    {"7", "WPA3-Personal", "wpa3_psk"},
}};
constexpr SecurityForm security_form{"secu_type", "passphrase", security_types};

constexpr std::array<MappedValue, 3> preamble_values{{{"0", "auto"}, {"1", "0"}, {"2", "1"}}};
constexpr std::array<MappedValue, 2> coexistence_values{{{"1", "0"}, {"0", "1"}}};

bool is_access_point(const Interface &interface)
{
    return interface.role == Role::main || interface.role == Role::guest ||
           interface.role == Role::backhaul_ap;
}

bool is_2g(const Interface &interface)
{
    return interface.band == Band::ghz_2_4;
}

/// The band's main fronthaul: some of its keys serve the other access points too.
const Interface &main_of(const Interface &interface)
{
    return interface_of(interface.band, Role::main);
}

/// Writes a switch that follows from other settings. Nothing is ever removed from the settings
/// files, so one that is off again must be told, whatever the section's own key says.
void add_switch(WifiSection &section, const char *option, bool on)
{
    if (on) {
        section.add_fixed(option, "1");
    } else {
        section.add(option, "0");
    }
}

void add_wps_options(const WirelessRun &run, WifiSection &section, const Interface &interface)
{
    if (is_without_wps(interface)) {
        return;
    }
    const bool has_settings = is_access_point(interface);
    if (has_settings) {
        section.add_own("ap_setup_locked");
    }
    section.add_fixed("wps_state", wps_state_of(interface));
    if (has_settings) {
        section.add_own("wps_config").add_own("wps_pbc");
    } else {
        section.add_fixed("wps_config", run.scalars().WPS_CONFIG).add_fixed("wps_pbc", "1");
    }
    if (interface.role == Role::main) {
        section.add("wps_device_name", wps_device_name());
    }
    if (has_settings) {
        section.add_key_or_own("wps_pbc_enable", interface.wps_switch_key);
    } else if (run.guest_vlan() && interface.is_backhaul()) {
        section.add_fixed("wps_pbc_enable", "1");
    }
    add_push_button_times(run, section, interface);
}

/// What the interface is called and who may join.
void add_network_options(const WirelessRun &run, WifiSection &section, const Interface &interface)
{
    add_place_options(run, section, interface);
    add_wps_options(run, section, interface);
    section.add_key("ssid", interface.ssid_key);
    add_security(section, interface, security_form);
    section.add("hidden", has_broadcast_value(interface, "1") ? "1" : "0");
}

/// The radio link: channel width, air time, and what stations are told.
void add_radio_link_options(const WirelessRun &run, WifiSection &section,
                            const Interface &interface)
{
    const Interface &main = main_of(interface);
    const bool is_ap = is_access_point(interface);
    section.add_fixed("doth", "1");
    if (is_ap) {
        const char *key = is_2g(interface) ? "wl_disablecoext" : "wla_disablecoext";
        section.add("obss_coex", mapped(coexistence_values, config_value(key)));
    }
    if (const Radio *radio = run.radio_of(interface)) {
        add_switch(section, "assocwar160", has_wide_channels(radio));
    }
    if (offers_measurements(run, interface)) {
        section.add_fixed("rrm", "1");
    }
    if (interface.role == Role::main) {
        section.add_fixed("mcastenhance", "2");
    }
    if (is_ap) {
        section.add_key("rts", main.rts_key).add_key("frag", main.frag_key);
    }
    section.add_key("wmm", interface.wmm_key);
    if (is_ap) {
        section.add("preamble", mapped(preamble_values, config_value(main.preamble_key)));
    }
}

/// Who may reach whom through an access point, and whether it is there at all.
void add_access_options(const WirelessRun &run, WifiSection &section, const Interface &interface)
{
    if (!is_access_point(interface)) {
        return;
    }
    section.add_key_or_own("isolate", interface.guest_access_key);
    if (interface.role == Role::guest && !run.guest_vlan()) {
        const bool isolated = isolates_guests(run, interface);
        add_switch(section, "lan_restricted", isolated);
        if (isolated) {
            section.add_fixed("lan_ipaddr", isolated_lan_address);
        }
    }
    const char *frame_protection_key = nullptr;
    if (interface.role == Role::main) {
        frame_protection_key = is_2g(interface) ? "wl_80211w" : "wla_80211w";
    } else if (interface.role == Role::backhaul_ap) {
        frame_protection_key = "BhAp2_80211w"; // both bands' backhaul is one network
    }
    section.add_key_or_own("80211w", frame_protection_key)
        .add_key_or_own("enable", interface.guest_switch_key);
}

void add_beamforming_options(WifiSection &section, const Interface &interface)
{
    constexpr std::array options{"vhtsubfee", "vhtsubfer", "vhtmubfee", "vhtmubfer"};
    if (is_access_point(interface)) {
        const Radio &radio = is_2g(interface) ? radio_2g : radio_5g1;
        section.add_key_or_own("implicitbf",
                               interface.role == Role::main ? radio.implicit_bf_key : nullptr);
        for (const char *option : options) {
            section.add_own(option);
        }
        return;
    }
    const bool is_backhaul = interface.role == Role::backhaul_sta;
    if (is_backhaul) {
        section.add_fixed("implicitbf", "0");
    }
    for (const char *option : options) {
        section.add_fixed(option, is_backhaul ? "1" : "0");
    }
}

} // namespace

std::string nvram_interface_section(const Interface &interface)
{
    const char *band = is_2g(interface) ? "2" : "5";
    switch (interface.role) {
    case Role::main:
        return std::string("FhAp") + band;
    case Role::guest:
        return std::string("Guest") + band;
    case Role::backhaul_ap:
        return std::string("BhAp") + band;
    case Role::backhaul_sta:
        return std::string("BhSta") + band;
    case Role::bridge_station:
        break;
    }
    return interface.name;
}

void add_nvram_interface_options(WirelessRun &run, const Interface &interface)
{
    WifiSection section(run, interface.name, nvram_interface_section(interface) + "_");
    add_network_options(run, section, interface);
    add_radio_link_options(run, section, interface);
    add_access_options(run, section, interface);
    section.add_fixed("bintval", "100").add_fixed("dtim_period", "4");
    if (is_access_point(interface)) {
        section.add_own("ifname");
    }
    if (interface.role == Role::main) {
        section.add_own("wps_pin");
    }
    if (interface.radio_switch_key != nullptr) {
        add_switch(section, "vap_disable", is_switched_off(interface));
    }
    add_beamforming_options(section, interface);
    add_backhaul_options(run, section, interface);
}

} // namespace qorcfg
