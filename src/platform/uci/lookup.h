#pragma once

#include "platform/uci/nodes.h"

namespace qorcfg::uci {

/// Cuts "package.section.option=value" in place. UCI_ERR_PARSE or UCI_ERR_INVAL with `ptr` zeroed
/// when a part is not well formed.
int parse_path(uci_ptr &ptr, char *text);

/// Finds section and option of `ptr` in its package and sets the COMPLETE flag when all was found.
/// UCI_ERR_INVAL for "@type[n]" where that is not `extended`.
int find_in_package(uci_ptr &ptr, bool extended);

/// What a change needs: `ptr` looked up where that has not been done, and its names filled in from
/// its pointers. UCI_ERR_NOTFOUND when `complete` and something is missing.
int expand(uci_context *ctx, uci_ptr &ptr, bool complete);

inline Package &package_of(const uci_ptr &ptr)
{
    return static_cast<Package &>(*ptr.p);
}

} // namespace qorcfg::uci
