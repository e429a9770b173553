#pragma once

#include "core/base/component.h"
#include "wireless/wireless_update.h"

#include <string>

namespace qorcfg {

/// Wi-Fi settings for the stack that is configured by settings files.
extern const Operations nvram_wireless;

/// Names of the section of a radio and of an interface.
std::string nvram_radio_section(const WirelessRun &run, const Radio &radio);
std::string nvram_interface_section(const Interface &interface);

/// Write the options of a radio's and an interface's section, in order.
void add_nvram_radio_options(WirelessRun &run, const Radio &radio);
void add_nvram_interface_options(WirelessRun &run, const Interface &interface);

} // namespace qorcfg
