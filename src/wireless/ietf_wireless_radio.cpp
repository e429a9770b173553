#include "wireless/ietf_wireless.h"

#include "platform/config_value.h"
#include "wireless/country_tables.h"
#include "wireless/wireless_settings.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

/// What each radio takes from the model.
struct RadioFacts {
    const Radio &radio;
    BoardItem mac;
    const char *WirelessScalars::*nf_baseline;
};

constexpr std::array<RadioFacts, 3> radio_facts{{
    {radio_2g, board_mac_2g, &WirelessScalars::g_nf_baseline},
    {radio_5g1, board_mac_5g1, &WirelessScalars::a_nf_baseline},
    {radio_5g2, board_mac_5g2, &WirelessScalars::a2_nf_baseline},
}};

constexpr const RadioFacts &facts_of(const Radio &radio)
{
    std::size_t index = 0;
    while (&radio_facts[index].radio != &radio) {
        ++index;
    }
    return radio_facts[index];
}

// Per cent of the full power, as the driver's steps of 3 dB.
constexpr std::array<MappedValue, 4> tpscale_values{{
    {"100", "0"},
    {"75", "1"},
    {"50", "2"},
    {"25", "3"},
}};

/// State of the radio button; the second 5 GHz radio follows the first.
std::string button_state(const WirelessScalars &scalars, const Radio &radio)
{
    if (config_value("bridge_mode") == "1") {
        return "on";
    }
    if (scalars.wlg_exist && scalars.wla_exist) {
        return config_value("wl_hw_btn_state");
    }
    const bool is_on = radio.band == Band::ghz_2_4 ? scalars.wlg_if_onoff : scalars.wla_if_onoff;
    return is_on ? "on" : "off";
}

} // namespace

void add_ietf_radio_options(WirelessRun &run, const Radio &radio)
{
    const WirelessScalars &scalars = run.scalars();
    const RadioFacts &facts = facts_of(radio);
    WifiSection section(run, run.hardware().device_of(radio.name));
    section.add("type", run.board(board_driver_type) == "1" ? "qcawificfg80211" : "qcawifi")
        .add("band_type", radio.band == Band::ghz_2_4 ? "2.4G" : "5G")
        // One region for the whole device, whatever the 5 GHz radios' own key says.
        .add("country", country_code(country_map_table, config_value("wl_country")))
        .add("ODM", "qor");
    if (!run.guest_vlan()) {
        section.add("sys_bridge", scalars.BRIDGE_NAME);
    }
    section.add("repacd_auto_create_vaps", "0").add("nf_baseline", scalars.*facts.nf_baseline);
    if (&radio == &radio_2g && config_value("bridge_mode") == "0") {
        section.add("obss_rssi_th", scalars.wlg_obss_rssi_th)
            .add("obss_rx_rssi_th", scalars.wlg_obss_rx_rssi_th);
    }
    if (&radio != &radio_5g2) {
        section.add("hw_btn_state", button_state(scalars, radio));
    }
    section.add("macaddr", run.board(facts.mac))
        .add("hwmode", hwmode_of(radio))
        .add("htmode", htmode_of(radio))
        .add_key("channel", radio.channel_key)
        .add("tpscale", mapped(tpscale_values, config_value(radio.tpscale_key)))
        .add_key("bf", radio.bf_key)
        .add_key("implicitbf", radio.implicit_bf_key)
        .add_key("mu_mimo", radio.mu_mimo_key);
    if (!run.guest_vlan()) {
        return;
    }
    if (!run.hardware().carries(radio.name, "fh_main")) {
        section.add("wsplcd_unmanaged", "1");
    }
    if (run.hardware().carries(radio.name, "bh_ap")) {
        section.add("ul_hyst", "3");
    }
    section.add("no_vlan", "1");
}

} // namespace qorcfg
