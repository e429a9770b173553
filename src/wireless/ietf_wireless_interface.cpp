#include "wireless/ietf_wireless.h"

#include "core/base/globals.h"
#include "platform/config_value.h"
#include "wireless/wireless_settings.h"

#include <array>
#include <string>
#include <string_view>

namespace qorcfg {

namespace {

constexpr std::array backhaul_ap_options{
    FixedOption{"mode", "ap"},
    FixedOption{"wds", "1"},
    FixedOption{"athnewind", "1"},
    FixedOption{"vap_ind", "0"},
    FixedOption{"backhaul", "1"},
    FixedOption{"backhaul_ap", "1"},
    FixedOption{"wsplcd_unmanaged", "1"},
    FixedOption{"repacd_security_unmanaged", "1"},
};

constexpr std::array backhaul_sta_options{
    FixedOption{"mode", "sta"},
    FixedOption{"wds", "1"},
    FixedOption{"athnewind", "1"},
    FixedOption{"vap_ind", "0"},
    FixedOption{"backhaul", "1"},
    FixedOption{"wsplcd_unmanaged", "1"},
    FixedOption{"repacd_security_unmanaged", "1"},
};

constexpr std::array main_guest_vlan_wps_options{
    FixedOption{"wps_pbc", "1"},           FixedOption{"wps_pbc_enable", "1"},
    FixedOption{"wps_pbc_noclone", "1"},   FixedOption{"wps_pbc_start_time", "0"},
    FixedOption{"wps_pbc_duration", "60"},
};

constexpr std::array backhaul_guest_vlan_wps_options{
    FixedOption{"wps_pbc", "1"},
    FixedOption{"wps_pbc_enable", "1"},
    FixedOption{"wps_pbc_noclone", "0"},
    FixedOption{"wps_pbc_start_time", "61"},
    FixedOption{"wps_pbc_duration", "120"},
};

// The address that guests must not reach is the delivered one, whatever the LAN address is now.
constexpr std::array isolated_guest_options{
    FixedOption{"isolate", "1"},
    FixedOption{"lan_restricted", "1"},
    FixedOption{"lan_ipaddr", "192.168.1.1"},
};

constexpr std::array<SecurityType, 3> security_types{{
    {"1", "none", nullptr},
    {"4", "psk2+ccmp", "wpa2_psk"},
    {"5", "mixed-psk+tkip+ccmp", "wpas_psk"},
}};

constexpr SecurityForm security_form{"encryption", "key", security_types};

constexpr std::array<MappedValue, 3> short_preamble_values{{
    {"0", "1"},
    {"1", "0"},
    {"2", "1"},
}};

const char *network_of(const WirelessRun &run, const Interface &interface)
{
    if (run.guest_vlan() && interface.role == Role::guest) {
        return "guest";
    }
    return run.guest_vlan() && interface.is_backhaul() ? "backhaul" : run.scalars().BRIDGE_SUFFIX;
}

void add_role_options(const WirelessRun &run, WifiSection &section, const Interface &interface)
{
    switch (interface.role) {
    case Role::main:
        section.add("mode", "ap");
        if (run.guest_vlan()) {
            section.add("repacd_security_unmanaged", "1");
        }
        break;
    case Role::guest:
        section.add("mode", "ap");
        if (run.guest_vlan()) {
            section.add("athnewind", "0");
        } else {
            section.add("wsplcd_unmanaged", "1");
        }
        section.add("repacd_security_unmanaged", "1");
        break;
    case Role::backhaul_ap:
        section.add(backhaul_ap_options);
        break;
    case Role::backhaul_sta:
        section.add(backhaul_sta_options);
        break;
    case Role::bridge_station:
        break;
    }
}

void add_wps_options(const WirelessRun &run, WifiSection &section, const Interface &interface)
{
    if (is_without_wps(interface)) {
        return;
    }
    const bool is_main = interface.role == Role::main;
    if (is_main) {
        section.add("ap_setup_locked", "0");
    }
    const bool is_unconfigured =
        interface.wps_status_key != nullptr && config_value(interface.wps_status_key) == "1";
    section.add("wps_state", is_unconfigured ? "1" : "2")
        .add("wps_config", run.scalars().WPS_CONFIG)
        .add("wps_pbc", "1");
    if (is_main) {
        section.add("wps_device_name", cut<19>(config_value("Device_name")) + "(Wireless AP)");
    }
    if (run.guest_vlan() && is_main) {
        section.add(main_guest_vlan_wps_options);
    } else if (run.guest_vlan() && interface.is_backhaul()) {
        section.add(backhaul_guest_vlan_wps_options);
    }
}

/// Whether the interface is built, but switched off.
bool is_disabled(const Interface &interface)
{
    switch (interface.role) {
    case Role::main:
    case Role::guest:
        return config_value(interface.radio_switch_key) == "0" ||
               config_value("wl_hw_btn_state") == "off" ||
               (interface.role == Role::guest && config_value(interface.guest_switch_key) == "2");
    case Role::backhaul_ap:
        return config_value("repacd_Daisy_Chain_Enable") == "0" && is_base == 0;
    case Role::backhaul_sta:
    case Role::bridge_station:
        break;
    }
    return false;
}

void add_beamforming_options(WifiSection &section, const Interface &interface, const Radio *radio)
{
    const char *single_user = "0";
    const char *multi_user = "0";
    if (interface.is_backhaul()) {
        section.add("implicitbf", "0");
        single_user = multi_user = "1";
    } else if (radio != nullptr && config_value(radio->bf_key) == "1") {
        single_user = "1";
        multi_user = config_value(radio->mu_mimo_key) == "1" ? "1" : "0";
    }
    section.add("vhtsubfee", single_user)
        .add("vhtsubfer", single_user)
        .add("vhtmubfee", multi_user)
        .add("vhtmubfer", multi_user);
}

/// The options that concern the radio link: channel width, air time, and what stations are told.
void add_radio_link_options(const WirelessRun &run, WifiSection &section,
                            const Interface &interface, const Radio *radio)
{
    const bool is_main = interface.role == Role::main;
    section.add("doth", "1");
    if (radio == &radio_2g && config_value("bridge_mode") != "1") {
        section.add_key("disablecoext", "wl_disablecoext");
    } else {
        section.add("disablecoext", "1");
    }
    const std::string htmode = radio == nullptr ? "" : htmode_of(*radio);
    if (htmode == "HT80_80" || htmode == "HT160") {
        section.add("assocwar160", "1");
    }
    if (is_main || interface.role == Role::backhaul_ap ||
        (run.guest_vlan() && interface.role == Role::guest)) {
        section.add("rrm", "1");
    }
    if (is_main) {
        section.add("mcastenhance", "2");
    }
    section.add_key("rts", interface.rts_key)
        .add_key("frag", interface.frag_key)
        .add_key("wmm", interface.wmm_key);
    if (interface.preamble_key != nullptr) {
        section.add("short_preamble",
                    mapped(short_preamble_values, config_value(interface.preamble_key)));
    }
}

bool is_hidden(const Interface &interface)
{
    return interface.broadcast_key != nullptr && config_value(interface.broadcast_key) == "0";
}

bool isolates_guests(const WirelessRun &run, const Interface &interface)
{
    return !run.guest_vlan() && interface.guest_access_key != nullptr &&
           config_value(interface.guest_access_key) == "0";
}

/// Everything up to the security of the network.
void add_network_options(const WirelessRun &run, WifiSection &section, const Interface &interface)
{
    section.add("device", run.hardware().device_of(run.hardware().radio_of(interface.name)));
    if (!run.guest_vlan()) {
        section.add("bridge", run.scalars().BRIDGE_NAME);
    }
    section.add("network", network_of(run, interface));
    add_role_options(run, section, interface);
    if (interface.band == Band::ghz_2_4) {
        section.add_key("vht_11ng", "wl_vht_11ng").add_key("11ngvhtintop", "wl_vht_11ng");
    }
    add_wps_options(run, section, interface);
    section.add_key("ssid", interface.ssid_key);
    add_security(section, interface, security_form);
    section.add("hidden", is_hidden(interface) ? "1" : "0");
}

} // namespace

void add_ietf_interface_options(WirelessRun &run, const Interface &interface)
{
    const Radio *radio = run.radio_of(interface);
    WifiSection section(run, interface.name);
    add_network_options(run, section, interface);
    add_radio_link_options(run, section, interface, radio);
    if (isolates_guests(run, interface)) {
        section.add(isolated_guest_options);
    }
    section.add("bintval", "200").add("bintval", "100").add("dtim_period", "4");
    if (const InterfaceRow *row = run.hardware().interface(interface.name)) {
        section.add("ifname", row->ifname);
    }
    if (interface.role == Role::main) {
        section.add("wps_pin", run.board(board_wps_pin));
    }
    if (is_disabled(interface)) {
        section.add("vap_disable", "1");
    }
    add_beamforming_options(section, interface, radio);
    if (interface.is_backhaul()) {
        section.add_key("vie_flag", "vie_flag");
        if (run.guest_vlan()) {
            section.add("rept_spl", "1");
        }
    }
    if (interface.role == Role::backhaul_sta && run.board(board_mesh_role) == "CAP") {
        section.add("disabled", "1");
    }
}

} // namespace qorcfg
