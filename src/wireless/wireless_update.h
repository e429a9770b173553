#pragma once

#include "wireless/wireless_run.h"

namespace qorcfg {

/// How one wireless component fills the sections of the full update. Which sections there are, and
/// in which order, is the same for all.
struct WirelessBackend {
    /// Name of a radio's or interface's section in the document and in the live package.
    std::string (*radio_section)(const WirelessRun &run, const Radio &radio);
    std::string (*interface_section)(const Interface &interface);
    /// Whether this unit offers a backhaul, and whether it uses one.
    bool (*has_backhaul_aps)(const WirelessRun &run);
    bool (*has_backhaul_stations)(const WirelessRun &run);
    /// Writes the options of a section with `set_wifi_option`, in order.
    void (*add_radio_options)(WirelessRun &run, const Radio &radio);
    void (*add_interface_options)(WirelessRun &run, const Interface &interface);
};

/// Builds the whole "wireless" document from the store, makes its sections in the live package, and
/// hands it to `commit`. Without the live package nothing can be told to the driver: the daemon
/// then ends at once with status 1, whatever other workers do. Returns 1 when the document was
/// committed (`commit` gave 0), else 0. Safe from several workers at once.
int update_wireless_document(WirelessModel &model, const WirelessBackend &backend,
                             int (*commit)(const Document &document, int job), int job);

} // namespace qorcfg
