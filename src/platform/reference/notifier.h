#pragma once

#include "platform/control_protocol.h"
#include "platform/key_id.h"
#include "platform/reference/store.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// How changes of store keys are told to the daemon on its control socket.
namespace qorcfg {

/// One announcement: what happened (a number of `KeyChange`) to the key with this `config_key_id`.
struct Announcement {
    int action;
    std::int32_t id;
};

/// What goes to the daemon as one commit. Once that is sent, every number of the `completed` keys
/// has been announced, by this group or an earlier one, and their marks can go.
struct AnnouncementGroup {
    std::vector<Announcement> announcements;
    std::vector<MarkedKey> completed;
};

/// Splits the announcements of the marked keys into groups of at most `announcement_limit`, in the
/// order of the keys. A number that several keys announce is announced once, with the action of the
/// first of them; the numbers of one key are not torn apart.
std::vector<AnnouncementGroup> plan_announcements(const std::vector<MarkedKey> &keys);

/// How sending a message ended: 0 and "", or an errno and a line that says what is wrong.
struct SendResult {
    int error = 0;
    std::string text;
    bool ok() const { return error == 0; }
    /// Nobody listens: there is no socket (ENOENT), or a daemon that is gone left it
    /// (ECONNREFUSED).
    bool no_daemon() const;
};

struct SendOptions {
    /// How long connecting, sending, and waiting for the end of the connection may take, each.
    std::chrono::milliseconds limit{30'000};
    /// Wait until the daemon has closed the connection, so that it has read the message.
    bool wait_for_close = false;
};

/// Sends one message to the daemon over a connection of its own: two messages on one stream could
/// arrive as one. Safe from several threads.
SendResult send_message(int action, std::int32_t id, const SendOptions &options = {});

} // namespace qorcfg
