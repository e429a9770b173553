#include "wireless/ietf_wireless.h"

#include "core/base/globals.h"
#include "platform/config_value.h"
#include "wireless/interface_options.h"

#include <array>
#include <string>
#include <string_view>

namespace qorcfg {

namespace {

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

void add_wps_options(const WirelessRun &run, WifiSection &section, const Interface &interface)
{
    if (is_without_wps(interface)) {
        return;
    }
    const bool is_main = interface.role == Role::main;
    if (is_main) {
        section.add("ap_setup_locked", "0");
    }
    section.add("wps_state", wps_state_of(interface))
        .add("wps_config", run.scalars().WPS_CONFIG)
        .add("wps_pbc", "1");
    if (is_main) {
        section.add("wps_device_name", wps_device_name());
    }
    if (run.guest_vlan() && (is_main || interface.is_backhaul())) {
        section.add("wps_pbc_enable", "1");
    }
    add_push_button_times(run, section, interface);
}

/// Whether the interface is built, but switched off. Satellites keep their backhaul access points,
/// switched off where the chain ends with them.
bool is_disabled(const Interface &interface)
{
    if (interface.role == Role::backhaul_ap) {
        return config_value("repacd_Daisy_Chain_Enable") == "0" && is_base == 0;
    }
    return is_switched_off(interface);
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
    section.add("doth", "1");
    if (radio == &radio_2g && config_value("bridge_mode") != "1") {
        section.add_key("disablecoext", "wl_disablecoext");
    } else {
        section.add("disablecoext", "1");
    }
    if (has_wide_channels(radio)) {
        section.add("assocwar160", "1");
    }
    if (offers_measurements(run, interface)) {
        section.add("rrm", "1");
    }
    if (interface.role == Role::main) {
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

/// Everything up to the security of the network.
void add_network_options(const WirelessRun &run, WifiSection &section, const Interface &interface)
{
    add_place_options(run, section, interface);
    add_wps_options(run, section, interface);
    section.add_key("ssid", interface.ssid_key);
    add_security(section, interface, security_form);
    section.add("hidden", has_broadcast_value(interface, "0") ? "1" : "0");
}

} // namespace

void add_ietf_interface_options(WirelessRun &run, const Interface &interface)
{
    const Radio *radio = run.radio_of(interface);
    WifiSection section(run, interface.name);
    add_network_options(run, section, interface);
    add_radio_link_options(run, section, interface, radio);
    if (isolates_guests(run, interface)) {
        section.add("isolate", "1")
            .add("lan_restricted", "1")
            .add("lan_ipaddr", isolated_lan_address);
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
    add_backhaul_options(run, section, interface);
}

} // namespace qorcfg
