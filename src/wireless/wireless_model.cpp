#include "wireless/wireless_model.h"

#include "platform/path_root.h"
#include "wireless/uci_access.h"

namespace qorcfg {

WirelessModel::WirelessModel(std::span<const BoardRead> board, WirelessScalars scalars)
    : board_(board), scalars_(scalars), facts_(std::make_shared<const WirelessFacts>()),
      root_generation_(path_root_generation())
{
}

std::shared_ptr<const WirelessFacts> WirelessModel::refresh()
{
    // One update reads at a time, so that none brings back what another has already replaced.
    const std::lock_guard lock(mutex_);
    auto facts = std::make_shared<WirelessFacts>();
    if (const unsigned root = path_root_generation(); root == root_generation_) {
        *facts = *facts_;
    } else {
        root_generation_ = root; // another device
    }
    for (const BoardRead &read : board_) {
        get_uci_option_value(read.path, &facts->board.at(read.item), read.size);
    }
    load_athinfo(facts->hardware);
    facts_ = facts;
    return facts;
}

} // namespace qorcfg
