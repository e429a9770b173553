#pragma once

#include "platform/uci/nodes.h"

#include <string>
#include <string_view>

namespace qorcfg::uci {

/// Text in single quotes, as configuration and change files have it.
void append_quoted(std::string &out, std::string_view text);

struct ExportForm {
    bool header = false;          // begins with the package line
    bool generated_names = false; // anonymous sections under their generated names
};

/// The package as configuration text.
std::string export_text(const Package &package, ExportForm form);

} // namespace qorcfg::uci
