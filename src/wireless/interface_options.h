#pragma once

#include "wireless/wireless_settings.h"

#include <string>

namespace qorcfg {

// Blocks of an interface's section that are the same for every backend, and the conditions of its
// options.

/// Writes where the interface belongs and what it does: from "device" to the options of its role.
void add_place_options(const WirelessRun &run, WifiSection &section, const Interface &interface);

/// Writes, with guest VLAN, when main fronthaul and backhaul take part in a push-button session.
void add_push_button_times(const WirelessRun &run, WifiSection &section,
                           const Interface &interface);

/// Writes what only backhaul interfaces have, behind everything else.
void add_backhaul_options(const WirelessRun &run, WifiSection &section, const Interface &interface);

/// "1" for a main fronthaul that registrars may still configure, else "2".
const char *wps_state_of(const Interface &interface);
/// The name by which registrars know the device.
std::string wps_device_name();

/// Whether the interface's name is kept from beacons: when its broadcast key has that value.
bool has_broadcast_value(const Interface &interface, std::string_view value);
/// Whether the radio uses channels of 160 MHz; false without a radio.
bool has_wide_channels(const Radio *radio);
/// Whether the interface offers radio measurements.
bool offers_measurements(const WirelessRun &run, const Interface &interface);
/// Whether a fronthaul is built, but switched off: by its radio's switch, by the button, or, for
/// guests, by their own switch.
bool is_switched_off(const Interface &interface);
/// Whether guests are kept away from each other and from the LAN by this interface itself.
bool isolates_guests(const WirelessRun &run, const Interface &interface);

/// The LAN address that isolated guests must not reach: the delivered one, whatever it is now.
inline constexpr const char *isolated_lan_address = "192.168.1.1";

} // namespace qorcfg
