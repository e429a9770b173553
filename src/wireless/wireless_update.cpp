#include "wireless/wireless_update.h"

#include "platform/config_value.h"

#include <array>
#include <cstdio>
#include <unistd.h>

namespace qorcfg {

namespace {

/// Without running destructors, which other workers still need.
[[noreturn]] void end_daemon()
{
    std::fflush(nullptr);
    ::_exit(1);
}

constexpr std::array guest_vlan_options{
    FixedOption{"wps_pbc_extender_enhance", "1"},
    FixedOption{"wps_pbc_overwrite_ap_settings_all", "1"},
    FixedOption{"wps_pbc_overwrite_sta_settings_all", "1"},
};

void build_qcawifi(WirelessRun &run)
{
    run.add_wifi_section("qcawifi", "qcawifi");
    WifiSection section(run, "qcawifi");
    // The store's word counts, even an empty one; what the description says does not.
    section.add("atf_enable", cut<15>(config_value("atf_enable")))
        .add("thermal_analytics", run.hardware().thermal_analytics);
    if (run.guest_vlan()) {
        section.add_fixed(guest_vlan_options);
    }
    run.nest_qcawifi();
}

void build_radio(WirelessRun &run, const WirelessBackend &backend, const Radio &radio)
{
    if (run.hardware().radio(radio.name) == nullptr) {
        return;
    }
    const std::string name = backend.radio_section(run, radio);
    run.add_wifi_section("wifi-device", name);
    backend.add_radio_options(run, radio);
    run.nest(radio, name);
}

void build_interface(WirelessRun &run, const WirelessBackend &backend, Band band, Role role)
{
    const Interface &interface = interface_of(band, role);
    const std::string name = backend.interface_section(interface);
    run.add_wifi_section("wifi-iface", name);
    backend.add_interface_options(run, interface);
    run.nest(interface, name);
}

void build_access_points(WirelessRun &run, const WirelessBackend &backend)
{
    for (const RadioRow &row : run.hardware().radio_map_table) {
        build_radio(run, backend, *find_radio(row.name));
    }
    for (const Band band : {Band::ghz_2_4, Band::ghz_5}) {
        build_interface(run, backend, band, Role::main);
        if (config_value(interface_of(band, Role::guest).guest_switch_key) != "0") {
            build_interface(run, backend, band, Role::guest);
        }
    }
    for (const Band band : {Band::ghz_2_4, Band::ghz_5}) {
        if (backend.has_backhaul_aps(run)) {
            build_interface(run, backend, band, Role::backhaul_ap);
        }
    }
    for (const Band band : {Band::ghz_2_4, Band::ghz_5}) {
        if (backend.has_backhaul_stations(run)) {
            build_interface(run, backend, band, Role::backhaul_sta);
        }
    }
}

/// A device in bridge mode is a station on one band and nothing else.
void build_bridge(WirelessRun &run, const WirelessBackend &backend)
{
    const std::string chosen = config_value("bridge_band_choose");
    if (chosen == "2.4g") {
        build_radio(run, backend, radio_2g);
        build_interface(run, backend, Band::ghz_2_4, Role::bridge_station);
    } else if (chosen == "5g") {
        build_radio(run, backend, radio_5g1);
        build_interface(run, backend, Band::ghz_5, Role::bridge_station);
    }
}

} // namespace

int update_wireless_document(WirelessModel &model, const WirelessBackend &backend,
                             int (*commit)(const Document &document, int job), int job)
{
    WirelessRun run(model);
    if (run.open_wifi_ctx() != 0) {
        end_daemon();
    }
    build_qcawifi(run);
    if (config_value("bridge_mode") == "1") {
        build_bridge(run, backend);
    } else {
        build_access_points(run, backend);
    }
    return commit(run.document(), job) == 0 ? 1 : 0;
}

} // namespace qorcfg
