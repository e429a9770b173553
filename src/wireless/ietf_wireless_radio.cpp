#include "wireless/ietf_wireless.h"

#include "wireless/radio_options.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

// Per cent of the full power, as the driver's steps of 3 dB.
constexpr std::array<MappedValue, 4> tpscale_values{{
    {"100", "0"},
    {"75", "1"},
    {"50", "2"},
    {"25", "3"},
}};

std::string board_mac(const WirelessRun &run, const Radio &radio)
{
    if (&radio == &radio_2g) {
        return run.board(board_mac_2g);
    }
    return run.board(&radio == &radio_5g1 ? board_mac_5g1 : board_mac_5g2);
}

constexpr RadioForm radio_form{country_map_table, board_mac, {}, "tpscale", tpscale_values};

} // namespace

void add_ietf_radio_options(WirelessRun &run, const Radio &radio)
{
    WifiSection section(run, run.hardware().device_of(radio.name));
    add_radio_options(run, section, radio, radio_form);
}

} // namespace qorcfg
