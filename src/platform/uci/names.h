#pragma once

#include <string>
#include <string_view>

namespace qorcfg::uci {

/// Section and option names: letters, digits and "_", at least one.
bool is_name(std::string_view text);
/// Name in a "package" line: as above, and "-".
bool is_package_name(std::string_view text);
/// Section types, and packages in a path: printable ASCII without blank, at least one.
bool is_printable_word(std::string_view text);
/// Values: any byte but control characters, of which TAB, LF and CR pass.
bool is_value(std::string_view text);

/// Name of the `number`-th section made in a package when it has no name of its own.
std::string generated_name(unsigned number, std::string_view type);

} // namespace qorcfg::uci
