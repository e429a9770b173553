#pragma once

#include "wireless/country_tables.h"
#include "wireless/wireless_settings.h"

#include <span>
#include <string>

namespace qorcfg {

/// What a backend writes otherwise than the others in the section of a radio.
struct RadioForm {
    std::span<const CountryRow> countries;
    std::string (*mac)(const WirelessRun &run, const Radio &radio);
    /// Channels with a word of their own; any other is written as it is.
    std::span<const MappedValue> channel_words;
    const char *power_option;
    std::span<const MappedValue> power_values;
};

/// Writes the options of a radio, in order.
void add_radio_options(const WirelessRun &run, WifiSection &section, const Radio &radio,
                       const RadioForm &form);

} // namespace qorcfg
