// Stands in for platform/file_calls.cpp in the programs that are linked with it.
#include "platform/file_calls.h"

#include "fault/fault.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <string_view>
#include <unistd.h>

namespace qorcfg {

namespace {

using test::Fault;
using test::FaultKind;

/// What becomes of one call.
enum class Course { as_ever, fail, half };

/// The calls of this process and the fault that it will meet.
class Plan {
public:
    /// A program that was started with a plan in its environment has it from the first call on.
    Plan()
    {
        const char *text =
            std::getenv((std::string("QOR_FAULT_") + ::program_invocation_short_name).c_str());
        int kind = 0;
        int start_of_log = 0;
        if (text != nullptr && std::sscanf(text, "%ld %d %d %n", &fault_.call, &kind, &fault_.error,
                                           &start_of_log) == 3) {
            fault_.kind = static_cast<FaultKind>(kind);
            open_log(text + start_of_log);
        }
    }

    void arm(const Fault &fault, const std::string &log)
    {
        const std::lock_guard lock(mutex_);
        fault_ = fault;
        count_ = 0;
        open_log(log.c_str());
    }

    /// Counts a call. `bytes` is what a write has to write, 0 for other calls.
    Course next(const char *name, const std::string &target, int fd = -1, std::size_t bytes = 0)
    {
        const std::lock_guard lock(mutex_);
        if (log_ < 0) {
            return Course::as_ever;
        }
        if (failing_fd_ >= 0 && failing_fd_ == fd && bytes > 0) {
            failing_fd_ = -1;
            return Course::fail;
        }
        const bool met = ++count_ == fault_.call && fault_.kind != FaultKind::none;
        tell(name, target, bytes > 1, met);
        if (!met) {
            return Course::as_ever;
        }
        if (fault_.kind == FaultKind::stop) {
            ::kill(::getpid(), SIGKILL);
        }
        if (fault_.kind == FaultKind::fail || bytes < 2) {
            return Course::fail;
        }
        failing_fd_ = fd;
        return Course::half;
    }

    void after_half() const
    {
        if (fault_.kind == FaultKind::half_stop) {
            ::kill(::getpid(), SIGKILL);
        }
    }

    template <typename Result> Result failed() const
    {
        errno = fault_.error;
        return -1;
    }

private:
    void open_log(const char *path)
    {
        log_ = ::open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
        if (log_ < 0) {
            std::perror(path);
            std::abort();
        }
    }

    void tell(const char *name, const std::string &target, bool halves, bool met) const
    {
        const std::string line = std::to_string(::getpid()) + " " + std::to_string(count_) + " " +
                                 (halves ? "halves" : "whole") + " " + (met ? "FAULT " : "") +
                                 name + " " + target + "\n";
        if (::write(log_, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
            std::abort(); // the test would not know what it has seen
        }
    }

    std::mutex mutex_;
    Fault fault_;
    long count_ = 0;
    int log_ = -1;        ///< none as long as the process is not armed
    int failing_fd_ = -1; ///< the next write there fails: its first half is done
};

Plan &plan()
{
    static Plan instance;
    return instance;
}

std::string file_of(int fd)
{
    std::array<char, 4096> path{};
    const ssize_t length =
        ::readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), path.data(), path.size());
    return {path.data(), length < 0 ? 0 : static_cast<std::size_t>(length)};
}

/// Makes a call unless it is the one that fails.
template <typename Call> int call_on(const char *name, const std::string &target, Call call)
{
    return plan().next(name, target) == Course::as_ever ? call() : plan().failed<int>();
}

} // namespace

namespace file_calls {

int openat(int folder, const char *path, int flags, mode_t mode)
{
    const auto call = [&] { return ::openat(folder, path, flags, mode); };
    const bool only_reads = (flags & O_ACCMODE) == O_RDONLY && (flags & (O_CREAT | O_TRUNC)) == 0;
    return only_reads ? call() : call_on("open", path, call);
}

ssize_t write(int fd, const void *data, std::size_t size)
{
    switch (plan().next("write", file_of(fd), fd, size)) {
    case Course::as_ever:
        return ::write(fd, data, size);
    case Course::half: {
        const ssize_t written = ::write(fd, data, size / 2);
        plan().after_half();
        return written;
    }
    case Course::fail:
        break;
    }
    return plan().failed<ssize_t>();
}

int fsync(int fd)
{
    return call_on("fsync", file_of(fd), [&] { return ::fsync(fd); });
}

int ftruncate(int fd, off_t length)
{
    return call_on("ftruncate", file_of(fd), [&] { return ::ftruncate(fd, length); });
}

int fchmod(int fd, mode_t mode)
{
    return call_on("fchmod", file_of(fd), [&] { return ::fchmod(fd, mode); });
}

int fchown(int fd, uid_t owner, gid_t group)
{
    return call_on("fchown", file_of(fd), [&] { return ::fchown(fd, owner, group); });
}

int set_modified(int fd, const timespec &time)
{
    const std::array<timespec, 2> times{timespec{0, UTIME_OMIT}, time};
    return call_on("futimens", file_of(fd), [&] { return ::futimens(fd, times.data()); });
}

int close(int fd)
{
    // A close that reports an error has closed the descriptor all the same.
    const std::string target = file_of(fd);
    const bool as_ever = plan().next("close", target) == Course::as_ever;
    const int result = ::close(fd);
    return as_ever ? result : plan().failed<int>();
}

int renameat(int folder, const char *from, const char *to)
{
    return call_on("rename", to, [&] { return ::renameat(folder, from, folder, to); });
}

int link(const char *from, const char *to)
{
    return call_on("link", to, [&] { return ::link(from, to); });
}

int unlinkat(int folder, const char *path)
{
    return call_on("unlink", path, [&] { return ::unlinkat(folder, path, 0); });
}

int mkdir(const char *path, mode_t mode)
{
    return call_on("mkdir", path, [&] { return ::mkdir(path, mode); });
}

} // namespace file_calls

namespace test {

void arm(const Fault &fault, const std::string &log)
{
    plan().arm(fault, log);
}

} // namespace test

} // namespace qorcfg
