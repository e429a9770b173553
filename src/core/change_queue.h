#pragma once

#include "core/control_message.h"
#include "core/pending_table.h"
#include "platform/control_protocol.h"

namespace qorcfg {

/// Gathers announced changes and starts a job for them at each commit. Belongs to the main thread.
class ChangeQueue {
public:
    /// Takes one message: announces a change, or commits what was announced since the last commit.
    /// A commit of nothing does nothing; one whose worker cannot be started loses its changes.
    void handle(const ControlMessage &message);

private:
    void commit();

    PendingTable pending_;
};

} // namespace qorcfg
