#pragma once

#include "core/control_message.h"
#include "platform/fd.h"

#include <functional>
#include <vector>

namespace qorcfg {

/// The control socket: takes messages from local clients and answers nothing.
///
/// All connections are waited on together, so a client that connects and falls silent holds up
/// nobody. Whenever a connection has something, one read of at most 128 bytes is taken as one
/// message; connections are served in the order in which they were accepted.
class ControlServer {
public:
    static constexpr std::size_t connection_limit = 32; ///< further clients wait in the backlog
    static constexpr int backlog = 20;

    /// The step at which opening failed; each has a log line of its own.
    enum class Opened { yes, no_socket, not_bound, not_listening };

    /// Binds the socket for the owner of the process only, in place of any file at its path. errno
    /// tells the reason of a failure.
    Opened open();

    /// Hands each message to `handle` until `stop_fd` becomes readable.
    void serve(int stop_fd, const std::function<void(const ControlMessage &)> &handle);

private:
    void accept_client();
    bool serve_client(const Fd &client, const std::function<void(const ControlMessage &)> &handle);

    Fd listener_;
    std::vector<Fd> clients_;
};

} // namespace qorcfg
