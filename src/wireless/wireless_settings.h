#pragma once

#include "wireless/hardware_names.h"
#include "wireless/wireless_run.h"

#include <span>
#include <string>
#include <string_view>

namespace qorcfg {

/// Mode of a radio from the store, or its default.
std::string hwmode_of(const Radio &radio);
std::string htmode_of(const Radio &radio);

/// One row of a table that turns the text of a store key into an option's.
struct MappedValue {
    const char *from;
    const char *to;
};

/// What the table makes of a value; "", which writes no option, for one that it does not name.
constexpr const char *mapped(std::span<const MappedValue> table, std::string_view value)
{
    for (const MappedValue &row : table) {
        if (value == row.from) {
            return row.to;
        }
    }
    return "";
}

/// One value of a security-type key: the backend's word for it, and the ending of the key that
/// holds the passphrase (null for none).
struct SecurityType {
    const char *value;
    const char *word;
    const char *passphrase_ending;
};

/// The options in which a backend writes security type and passphrase, and the types it knows.
struct SecurityForm {
    const char *type_option;
    const char *passphrase_option;
    std::span<const SecurityType> types;
};

/// Writes security type and passphrase of an interface. The passphrase's key is named like the
/// security-type key, with "sectype" replaced. An unknown type, and an interface without the key,
/// writes neither.
void add_security(WifiSection &section, const Interface &interface, const SecurityForm &form);

/// Whether the WPS options of an interface are left out: always for guests, and for a main
/// fronthaul whose WPS switch is "0".
bool is_without_wps(const Interface &interface);

} // namespace qorcfg
