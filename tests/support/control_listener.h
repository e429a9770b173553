#pragma once

#include "platform/fd.h"
#include "platform/path_root.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <mutex>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <vector>

namespace qorcfg {

/// Stands in for the daemon on the control socket below the path root: takes one message from each
/// connection, in order, and remembers it.
class ControlListener {
public:
    enum class Answer {
        take,       ///< read the message and close the connection
        take_last,  ///< the same, and listen no more from before the connection is closed
        drop_unread ///< listen no more, and close the connection with the message unread
    };
    /// Decides what becomes of a message, in the thread of the listener.
    using Decide = std::function<Answer(const std::string &message)>;

    explicit ControlListener(Decide decide = [](const std::string &) { return Answer::take; })
        : decide_(std::move(decide)), stop_(::eventfd(0, EFD_CLOEXEC)),
          listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        const std::string path = rooted("/tmp/cache/qorcfg/server.socket");
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.c_str(), path.size());
        ::unlink(path.c_str());
        constexpr int backlog = 20;
        if (::bind(listener_.get(), reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 ||
            ::listen(listener_.get(), backlog) != 0) {
            throw std::runtime_error("cannot listen on " + path);
        }
        thread_ = std::thread([this] { serve(); });
    }

    ~ControlListener()
    {
        ::eventfd_write(stop_.get(), 1);
        thread_.join();
    }

    ControlListener(const ControlListener &) = delete;
    ControlListener &operator=(const ControlListener &) = delete;

    /// The messages taken so far, once there are `count`; fewer when they do not come in time.
    std::vector<std::string> messages(std::size_t count)
    {
        std::unique_lock lock(mutex_);
        constexpr std::chrono::seconds bound{20};
        changed_.wait_for(lock, bound, [&] { return messages_.size() >= count; });
        return messages_;
    }

private:
    bool wait_for(int fd)
    {
        std::array<pollfd, 2> waits{{{fd, POLLIN, 0}, {stop_.get(), POLLIN, 0}}};
        while (::poll(waits.data(), waits.size(), -1) < 0) {
        }
        return waits[1].revents == 0;
    }

    void serve()
    {
        while (listener_ && wait_for(listener_.get())) {
            const Fd client(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
            if (client && wait_for(client.get())) {
                serve_client(client.get());
            }
        }
    }

    void serve_client(int client)
    {
        std::array<char, 128> text{};
        const ssize_t got = ::recv(client, text.data(), text.size(), MSG_PEEK);
        const std::string message(text.data(), got > 0 ? static_cast<std::size_t>(got) : 0);
        const Answer answer = decide_(message);
        if (answer != Answer::take) {
            listener_.reset();
        }
        if (answer == Answer::drop_unread) {
            return;
        }
        while (::recv(client, text.data(), text.size(), 0) > 0) {
        }
        const std::lock_guard lock(mutex_);
        messages_.push_back(message);
        changed_.notify_all();
    }

    Decide decide_;
    Fd stop_;
    Fd listener_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> messages_;
    std::thread thread_;
};

} // namespace qorcfg
