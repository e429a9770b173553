#include "platform/reference/notifier.h"

#include "platform/fd.h"
#include "platform/file.h"
#include "platform/path_root.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

namespace qorcfg {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

SendResult failed(const std::string &what, const std::string &path, int error)
{
    return {error, what + " " + path + ": " + std::strerror(error)};
}

/// A time limit of the socket shows as EAGAIN.
int error_of_socket()
{
    return errno == EAGAIN || errno == EWOULDBLOCK ? ETIMEDOUT : errno;
}

bool set_limit(int fd, milliseconds limit)
{
    timeval time{};
    time.tv_sec = static_cast<decltype(time.tv_sec)>(limit.count() / 1000);
    time.tv_usec = static_cast<decltype(time.tv_usec)>(limit.count() % 1000 * 1000);
    return ::setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time) == 0;
}

int connect_to(int fd, const sockaddr_un &address)
{
    int status = 0;
    do {
        status = ::connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address);
    } while (status != 0 && errno == EINTR);
    return status == 0 ? 0 : error_of_socket();
}

int send_whole(int fd, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t sent = ::send(fd, text.data(), text.size(), MSG_NOSIGNAL);
        if (sent >= 0) {
            text.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno != EINTR) {
            return error_of_socket();
        }
    }
    return 0;
}

/// 0 once the peer has closed, else an errno; ECONNRESET when it closed without reading.
int wait_for_close(int fd, Clock::time_point deadline)
{
    if (::shutdown(fd, SHUT_WR) != 0 && errno != ENOTCONN) {
        return errno;
    }
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
        pollfd ready{fd, POLLIN, 0};
        const int count = ::poll(&ready, 1, static_cast<int>(std::max<long long>(left.count(), 0)));
        if (count == 0) {
            return ETIMEDOUT;
        }
        char ignored[64];
        const ssize_t got = count < 0 ? -1 : ::read(fd, ignored, sizeof ignored);
        if (got == 0) {
            return 0;
        }
        if (got < 0 && errno != EINTR) {
            return errno;
        }
    }
}

} // namespace

std::vector<AnnouncementGroup> plan_announcements(const std::vector<MarkedKey> &keys)
{
    std::vector<AnnouncementGroup> groups;
    std::map<std::int32_t, std::size_t> group_of; // of each number announced so far
    for (const MarkedKey &key : keys) {
        std::vector<std::int32_t> fresh;
        std::size_t last = 0;
        for (const std::string &name : announced_names(key.key)) {
            const std::int32_t id = config_key_id(name.c_str());
            if (const auto known = group_of.find(id); known != group_of.end()) {
                last = std::max(last, known->second);
            } else if (std::find(fresh.begin(), fresh.end(), id) == fresh.end()) {
                fresh.push_back(id);
            }
        }
        if (!fresh.empty()) {
            if (groups.empty() ||
                groups.back().announcements.size() + fresh.size() > announcement_limit) {
                groups.emplace_back();
            }
            last = groups.size() - 1;
        }
        for (const std::int32_t id : fresh) {
            groups[last].announcements.push_back({static_cast<int>(key.change), id});
            group_of.emplace(id, last);
        }
        groups[last].completed.push_back(key);
    }
    return groups;
}

bool SendResult::no_daemon() const
{
    return error == ENOENT || error == ECONNREFUSED;
}

SendResult send_message(int action, std::int32_t id, const SendOptions &options)
{
    const std::string path = rooted(control_socket);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return {ENAMETOOLONG, "socket path longer than " +
                                  std::to_string(sizeof address.sun_path - 1) + " bytes: " + path};
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const Fd fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!fd || !set_limit(fd.get(), options.limit)) {
        return failed("cannot make a socket for", path, errno);
    }
    if (const int error = connect_to(fd.get(), address); error != 0) {
        if (error == ENOENT) {
            return {error, "no daemon has run: there is no socket " + path};
        }
        if (error == ECONNREFUSED) {
            return {error, "no daemon listens on " + path};
        }
        return failed("cannot connect to", path, error);
    }
    const std::string message = std::to_string(action) + ":" + std::to_string(id);
    if (const int error = send_whole(fd.get(), message); error != 0) {
        return failed("cannot send to", path, error);
    }
    if (options.wait_for_close) {
        if (const int error = wait_for_close(fd.get(), Clock::now() + options.limit); error != 0) {
            return failed("the daemon did not take the message on", path, error);
        }
    }
    return {};
}

} // namespace qorcfg
