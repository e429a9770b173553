#pragma once

#include "platform/control_protocol.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace qorcfg {

/// One announced change: the id of the key and the action that its sender gave.
struct PendingChange {
    std::int32_t key_id;
    std::int32_t action;
};

inline constexpr std::size_t pending_limit = announcement_limit;

/// Changes that were announced since the last commit: a ring of 64. Further ones overwrite the
/// oldest slots, so a job carries 64 changes at most.
class PendingTable {
public:
    void add(PendingChange change);
    void clear();
    /// Valid slots, from 0 on.
    std::size_t count() const { return count_; }
    const std::array<PendingChange, pending_limit> &slots() const { return slots_; }

private:
    std::array<PendingChange, pending_limit> slots_{};
    std::size_t write_index_ = 0;
    std::size_t count_ = 0;
};

} // namespace qorcfg
