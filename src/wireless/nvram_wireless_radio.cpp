#include "wireless/nvram_wireless.h"

#include "platform/config_value.h"
#include "wireless/radio_options.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr std::array<MappedValue, 1> channel_words{{{"0", "auto"}}};
constexpr std::array<MappedValue, 4> power_values{
    {{"100", "100"}, {"75", "75"}, {"50", "50"}, {"25", "25"}}};

std::string store_mac(const WirelessRun &run, const Radio &radio)
{
    return cut<32>(config_value(nvram_radio_section(run, radio) + "_mac"));
}

constexpr RadioForm radio_form{nvram_country_map_table, store_mac, channel_words, "tpc_mode",
                               power_values};

} // namespace

std::string nvram_radio_section(const WirelessRun & /*run*/, const Radio &radio)
{
    if (&radio == &radio_2g) {
        return "radio2g";
    }
    return &radio == &radio_5g1 ? "radio5gl" : "radio5gh";
}

void add_nvram_radio_options(WirelessRun &run, const Radio &radio)
{
    WifiSection section(run, run.hardware().device_of(radio.name),
                        nvram_radio_section(run, radio) + "_");
    add_radio_options(run, section, radio, radio_form);
}

} // namespace qorcfg
