#pragma once

#include "platform/fd.h"
#include "wireless/uci_access.h"

#include <string>

namespace qorcfg {

/// The live UCI package "wireless" as one full update sees it. Belongs to one thread.
class WirelessPackage {
public:
    /// Opens a context and loads the package. Returns 0; or 1, with the reason on standard error,
    /// when the daemon cannot go on.
    int open_wifi_ctx();

    /// Makes the section `name` of UCI type `type` and saves it, so that tools which look at the
    /// package know it before the job's batch is applied. A section of that name that is there
    /// already, also one that another run or program has made since, is left as the only one.
    /// Returns 0 on success, 1 when the section could not be made; a name that UCI cannot hold is
    /// not tried. Runs and programs that change the package at once do not disturb each other.
    int add_wifi_section(const char *type, const std::string &name);

private:
    bool load();
    Fd load_and_hold();
    bool has_section(const std::string &name) const;

    UciContext wifi_ctx_;
    uci_package *package_ = nullptr; ///< owned by the context
};

} // namespace qorcfg
