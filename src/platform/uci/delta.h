#pragma once

#include "platform/uci/nodes.h"

#include <string>
#include <string_view>

namespace qorcfg::uci {

/// One line of a change file.
std::string change_line(std::string_view package, const uci_delta &change);

/// Applies the lines of a change file that are for `package`, without logging them. Lines that make
/// no sense, or whose section is gone, are passed over. `keep` notes them in saved_delta. Gives how
/// many were applied.
int replay(Package &package, std::string_view text, bool keep);

/// What is being undone: everything, one section or one option of the package.
struct Undo {
    std::string package;
    const std::string *section = nullptr;
    const std::string *option = nullptr;
};

/// The change file without the lines that `undo` names.
std::string without(std::string_view text, const Undo &undo);

} // namespace qorcfg::uci
