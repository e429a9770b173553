#pragma once

#include "wireless/hardware.h"

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <span>
#include <string>

namespace qorcfg {

/// Facts of the board that live in UCI.
enum BoardItem : std::size_t {
    board_wps_pin,
    board_mac_2g,
    board_mac_5g1,
    board_mac_5g2,
    board_mesh_role,
    board_driver_type, ///< "1" for cfg80211
    board_unit_type,
    board_items
};

/// Where a fact of the board is read: a UCI path, and the size of its field, of which one byte is
/// not for text.
struct BoardRead {
    BoardItem item;
    const char *path;
    std::size_t size;
};

/// What outlives a full update: what the description file and the board told last. A file or a
/// value that is missing later leaves what was known before.
struct WirelessFacts {
    Hardware hardware;
    std::array<std::string, board_items> board;
};

/// Settings that no file and no store key changes.
struct WirelessScalars {
    const char *g_nf_baseline = "-102";
    const char *a_nf_baseline = "-104";
    const char *a2_nf_baseline = "-104";
    const char *wlg_obss_rssi_th = "25";
    const char *wlg_obss_rx_rssi_th = "20";
    bool wlg_exist = true; ///< a 2.4 GHz, a 5 GHz radio is present
    bool wla_exist = true;
    bool wlg_if_onoff = true; ///< whether the band is on, while the other one is absent
    bool wla_if_onoff = true;
    const char *WPS_CONFIG = "virtual_push_button physical_push_button";
    const char *BRIDGE_NAME = "br-lan";
    const char *BRIDGE_SUFFIX = "lan";
};

/// The wireless hardware as one component knows it. Each wireless component has an instance of its
/// own; they share nothing. Safe from several workers at once: what it hands out never changes, and
/// lives as long as somebody uses it.
class WirelessModel {
public:
    /// `board` are the facts to read, in order; it outlives the model.
    explicit WirelessModel(std::span<const BoardRead> board, WirelessScalars scalars = {});

    /// Reads the board's facts and then the hardware description, as each full update does first.
    /// Returns what is known now.
    std::shared_ptr<const WirelessFacts> refresh();
    const WirelessScalars &scalars() const { return scalars_; }

private:
    const std::span<const BoardRead> board_;
    const WirelessScalars scalars_;
    std::mutex mutex_;
    std::shared_ptr<const WirelessFacts> facts_;
    unsigned root_generation_; ///< path root that the facts were read below
};

} // namespace qorcfg
