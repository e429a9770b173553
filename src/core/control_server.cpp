#include "core/control_server.h"

#include "platform/control_protocol.h"
#include "platform/file_calls.h"
#include "platform/path_root.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace qorcfg {

namespace {

bool bind_to(int socket, const std::string &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return false;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size());
    file_calls::unlink(path.c_str());
    // Only root's own programs may announce changes.
    constexpr mode_t owner_only = 0177;
    const mode_t old_mask = ::umask(owner_only);
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    const bool bound = ::bind(socket, reinterpret_cast<const sockaddr *>(&address), length) == 0;
    const int saved_errno = errno;
    ::umask(old_mask);
    errno = saved_errno;
    return bound;
}

} // namespace

ControlServer::Opened ControlServer::open()
{
    listener_.reset(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!listener_) {
        return Opened::no_socket;
    }
    if (!bind_to(listener_.get(), rooted(control_socket))) {
        return Opened::not_bound;
    }
    return ::listen(listener_.get(), backlog) == 0 ? Opened::yes : Opened::not_listening;
}

void ControlServer::serve(int stop_fd, const std::function<void(const ControlMessage &)> &handle)
{
    for (;;) {
        // Clients before the listener: what a client sent before it connected again is met first.
        std::vector<pollfd> waits;
        waits.push_back({stop_fd, POLLIN, 0});
        for (const Fd &client : clients_) {
            waits.push_back({client.get(), POLLIN, 0});
        }
        if (clients_.size() < connection_limit) {
            waits.push_back({listener_.get(), POLLIN, 0});
        }
        const int ready = ::poll(waits.data(), waits.size(), -1);
        if (ready < 0) {
            continue;
        }
        if (waits[0].revents != 0) {
            return;
        }
        const std::size_t served = clients_.size();
        for (std::size_t i = 0; i < served; ++i) {
            if (waits[i + 1].revents != 0 && !serve_client(clients_[i], handle)) {
                clients_[i].reset();
            }
        }
        if (waits.size() > served + 1 && waits.back().revents != 0) {
            accept_client();
        }
        std::erase_if(clients_, [](const Fd &client) { return !client; });
    }
}

void ControlServer::accept_client()
{
    Fd client(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (client) {
        clients_.push_back(std::move(client));
    } else if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
        // The client stays in the backlog; trying at once again would only burn time.
        constexpr int pause_ms = 100;
        ::poll(nullptr, 0, pause_ms);
    }
}

bool ControlServer::serve_client(const Fd &client,
                                 const std::function<void(const ControlMessage &)> &handle)
{
    std::array<char, control_message_limit> buffer{};
    const ssize_t received = ::read(client.get(), buffer.data(), buffer.size());
    if (received > 0) {
        handle(parse_control_message({buffer.data(), static_cast<std::size_t>(received)}));
        return true;
    }
    return received < 0 && (errno == EINTR || errno == EAGAIN);
}

} // namespace qorcfg
