#pragma once

#include "platform/uci/nodes.h"

namespace qorcfg::uci {

/// Whether a change is logged in its package (where that has pending changes at all): those of
/// callers are, those that replay a log are not.
enum class Log { no, yes };

void log_change(Package &package, uci_command command, const char *section, const char *option,
                const char *value);

/// The changes behind the calls of uci.h, with their results. `ptr` has its package.
int set(uci_ptr &ptr, Log log);
int add_list(uci_ptr &ptr, Log log);
int del_list(uci_ptr &ptr, Log log);
int rename(uci_ptr &ptr, Log log);
int remove(uci_ptr &ptr, Log log);
int reorder(Section &section, int position, Log log);

} // namespace qorcfg::uci
