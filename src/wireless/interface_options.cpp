#include "wireless/interface_options.h"

#include "platform/config_value.h"

#include <array>

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

constexpr std::array main_push_button_times{
    FixedOption{"wps_pbc_noclone", "1"},
    FixedOption{"wps_pbc_start_time", "0"},
    FixedOption{"wps_pbc_duration", "60"},
};

constexpr std::array backhaul_push_button_times{
    FixedOption{"wps_pbc_noclone", "0"},
    FixedOption{"wps_pbc_start_time", "61"},
    FixedOption{"wps_pbc_duration", "120"},
};

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
        section.add_fixed("mode", "ap");
        if (run.guest_vlan()) {
            section.add_fixed("repacd_security_unmanaged", "1");
        }
        break;
    case Role::guest:
        section.add_fixed("mode", "ap");
        if (run.guest_vlan()) {
            section.add_fixed("athnewind", "0");
        } else {
            section.add_fixed("wsplcd_unmanaged", "1");
        }
        section.add_fixed("repacd_security_unmanaged", "1");
        break;
    case Role::backhaul_ap:
        section.add_fixed(backhaul_ap_options);
        break;
    case Role::backhaul_sta:
        section.add_fixed(backhaul_sta_options);
        break;
    case Role::bridge_station:
        break;
    }
}

} // namespace

void add_place_options(const WirelessRun &run, WifiSection &section, const Interface &interface)
{
    section.add("device", run.hardware().device_of(run.hardware().radio_of(interface.name)));
    if (!run.guest_vlan()) {
        section.add_fixed("bridge", run.scalars().BRIDGE_NAME);
    }
    section.add_fixed("network", network_of(run, interface));
    add_role_options(run, section, interface);
    if (interface.band == Band::ghz_2_4) {
        section.add_key("vht_11ng", "wl_vht_11ng").add_key("11ngvhtintop", "wl_vht_11ng");
    }
}

void add_push_button_times(const WirelessRun &run, WifiSection &section, const Interface &interface)
{
    if (run.guest_vlan() && interface.role == Role::main) {
        section.add_fixed(main_push_button_times);
    } else if (run.guest_vlan() && interface.is_backhaul()) {
        section.add_fixed(backhaul_push_button_times);
    }
}

void add_backhaul_options(const WirelessRun &run, WifiSection &section, const Interface &interface)
{
    if (!interface.is_backhaul()) {
        return;
    }
    section.add_key("vie_flag", "vie_flag");
    if (run.guest_vlan()) {
        section.add_fixed("rept_spl", "1");
    }
    if (interface.role == Role::backhaul_sta && run.board(board_mesh_role) == "CAP") {
        section.add_fixed("disabled", "1");
    }
}

const char *wps_state_of(const Interface &interface)
{
    return interface.wps_status_key != nullptr && config_value(interface.wps_status_key) == "1"
               ? "1"
               : "2";
}

std::string wps_device_name()
{
    return cut<19>(config_value("Device_name")) + "(Wireless AP)";
}

bool has_broadcast_value(const Interface &interface, std::string_view value)
{
    return interface.broadcast_key != nullptr && config_value(interface.broadcast_key) == value;
}

bool has_wide_channels(const Radio *radio)
{
    const std::string htmode = radio == nullptr ? "" : htmode_of(*radio);
    return htmode == "HT80_80" || htmode == "HT160";
}

bool offers_measurements(const WirelessRun &run, const Interface &interface)
{
    return interface.role == Role::main || interface.role == Role::backhaul_ap ||
           (run.guest_vlan() && interface.role == Role::guest);
}

bool is_switched_off(const Interface &interface)
{
    return interface.radio_switch_key != nullptr &&
           (config_value(interface.radio_switch_key) == "0" ||
            config_value("wl_hw_btn_state") == "off" ||
            (interface.role == Role::guest && config_value(interface.guest_switch_key) == "2"));
}

bool isolates_guests(const WirelessRun &run, const Interface &interface)
{
    return !run.guest_vlan() && interface.guest_access_key != nullptr &&
           config_value(interface.guest_access_key) == "0";
}

} // namespace qorcfg
