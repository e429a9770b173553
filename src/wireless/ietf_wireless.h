#pragma once

#include "core/base/component.h"
#include "wireless/wireless_update.h"

namespace qorcfg {

/// Wi-Fi settings for the driver stack that takes UCI packages.
extern const Operations ietf_wireless;

/// Its model of the hardware and its backend, for tests.
WirelessModel &ietf_wireless_model();
extern const WirelessBackend ietf_wireless_backend;

/// Write the options of a radio's and an interface's section, in order.
void add_ietf_radio_options(WirelessRun &run, const Radio &radio);
void add_ietf_interface_options(WirelessRun &run, const Interface &interface);

} // namespace qorcfg
