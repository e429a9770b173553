#include "core/stop_signal.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace qorcfg {

namespace {

int stop_event = -1;

void ask_for_stop(int)
{
    const int saved_errno = errno;
    const std::uint64_t one = 1;
    const ssize_t written = ::write(stop_event, &one, sizeof one);
    static_cast<void>(written); // the counter cannot overflow with two signals
    errno = saved_errno;
}

} // namespace

int watch_stop_signals()
{
    stop_event = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (stop_event < 0) {
        return -1;
    }
    struct sigaction action {};
    action.sa_handler = ask_for_stop;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    return stop_event;
}

void ignore_write_signals()
{
    struct sigaction action {};
    action.sa_handler = SIG_IGN;
    ::sigaction(SIGPIPE, &action, nullptr);
    ::sigaction(SIGXFSZ, &action, nullptr);
}

} // namespace qorcfg
