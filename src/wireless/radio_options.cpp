#include "wireless/radio_options.h"

#include "platform/config_value.h"

namespace qorcfg {

namespace {

const char *noise_floor(const WirelessScalars &scalars, const Radio &radio)
{
    if (&radio == &radio_2g) {
        return scalars.g_nf_baseline;
    }
    return &radio == &radio_5g1 ? scalars.a_nf_baseline : scalars.a2_nf_baseline;
}

/// State of the radio button; the second 5 GHz radio follows the first.
void add_button_state(const WirelessScalars &scalars, WifiSection &section, const Radio &radio)
{
    if (&radio == &radio_5g2) {
        return;
    }
    if (config_value("bridge_mode") == "1") {
        section.add_fixed("hw_btn_state", "on");
    } else if (scalars.wlg_exist && scalars.wla_exist) {
        section.add_key("hw_btn_state", "wl_hw_btn_state");
    } else {
        const bool is_on =
            radio.band == Band::ghz_2_4 ? scalars.wlg_if_onoff : scalars.wla_if_onoff;
        section.add("hw_btn_state", is_on ? "on" : "off");
    }
}

std::string channel_of(const Radio &radio, std::span<const MappedValue> words)
{
    std::string channel = config_value(radio.channel_key);
    const char *word = mapped(words, channel);
    return *word == '\0' ? channel : word;
}

void add_guest_vlan_options(const WirelessRun &run, WifiSection &section, const Radio &radio)
{
    if (!run.hardware().carries(radio.name, "fh_main")) {
        section.add_fixed("wsplcd_unmanaged", "1");
    }
    if (run.hardware().carries(radio.name, "bh_ap")) {
        section.add_fixed("ul_hyst", "3");
    }
    section.add_fixed("no_vlan", "1");
}

} // namespace

void add_radio_options(const WirelessRun &run, WifiSection &section, const Radio &radio,
                       const RadioForm &form)
{
    const WirelessScalars &scalars = run.scalars();
    section.add("type", run.board(board_driver_type) == "1" ? "qcawificfg80211" : "qcawifi")
        .add_fixed("band_type", radio.band == Band::ghz_2_4 ? "2.4G" : "5G")
        // One region for the whole device, whatever the 5 GHz radios' own key says.
        .add("country", country_code(form.countries, config_value("wl_country")))
        .add_fixed("ODM", "qor");
    if (!run.guest_vlan()) {
        section.add_fixed("sys_bridge", scalars.BRIDGE_NAME);
    }
    section.add_fixed("repacd_auto_create_vaps", "0")
        .add_fixed("nf_baseline", noise_floor(scalars, radio));
    if (&radio == &radio_2g && config_value("bridge_mode") == "0") {
        section.add_fixed("obss_rssi_th", scalars.wlg_obss_rssi_th)
            .add_fixed("obss_rx_rssi_th", scalars.wlg_obss_rx_rssi_th);
    }
    add_button_state(scalars, section, radio);
    section.add("macaddr", form.mac(run, radio))
        .add("hwmode", hwmode_of(radio))
        .add("htmode", htmode_of(radio))
        .add("channel", channel_of(radio, form.channel_words))
        .add(form.power_option, mapped(form.power_values, config_value(radio.tpscale_key)))
        .add_key("bf", radio.bf_key)
        .add_key("implicitbf", radio.implicit_bf_key)
        .add_key("mu_mimo", radio.mu_mimo_key);
    if (run.guest_vlan()) {
        add_guest_vlan_options(run, section, radio);
    }
}

} // namespace qorcfg
