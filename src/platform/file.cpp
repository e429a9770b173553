#include "platform/file.h"
#include "platform/file_calls.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace qorcfg {

namespace {

std::string folder_of(const std::string &path)
{
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string unique_temporary(const std::string &name)
{
    static std::atomic<unsigned> counter{0};
    return name + "." + std::to_string(::getpid()) + "-" + std::to_string(++counter) + ".tmp";
}

std::string name_of(const std::string &path)
{
    return path.substr(path.rfind('/') + 1);
}

Fd open_at(int folder, const std::string &name, int flags, mode_t mode)
{
    int fd = -1;
    do {
        fd = file_calls::openat(folder, name.c_str(), flags | O_CLOEXEC, mode);
    } while (fd < 0 && errno == EINTR);
    return Fd(fd);
}

} // namespace

Fd open_file(const std::string &path, int flags, mode_t mode)
{
    return open_at(AT_FDCWD, path, flags, mode);
}

Fd open_file_in(const Fd &folder, const std::string &path, int flags, mode_t mode)
{
    return open_at(folder.get(), name_of(path), flags, mode);
}

std::optional<std::string> read_file(const std::string &path, std::size_t bound)
{
    const Fd fd = open_file(path, O_RDONLY | O_NOCTTY);
    return fd ? read_descriptor(fd.get(), bound) : std::nullopt;
}

std::optional<std::string> read_descriptor(int fd, std::size_t bound)
{
    std::string content;
    struct stat info {};
    if (::fstat(fd, &info) == 0 && info.st_size > 0) {
        if (static_cast<unsigned long long>(info.st_size) > bound) {
            errno = EFBIG;
            return std::nullopt;
        }
        content.reserve(static_cast<std::size_t>(info.st_size));
    }
    std::string block(16384, '\0');
    for (;;) {
        const ssize_t got = ::read(fd, block.data(), block.size());
        if (got == 0) {
            return content;
        }
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return std::nullopt;
        }
        content.append(block, 0, static_cast<std::size_t>(got));
        if (content.size() > bound) {
            errno = EFBIG;
            return std::nullopt;
        }
    }
}

bool write_all(int fd, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = file_calls::write(fd, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0) {
            errno = ENOSPC;
            return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool append_all(int fd, std::string_view text)
{
    if (text.empty()) {
        return true;
    }
    const off_t length = ::lseek(fd, 0, SEEK_END);
    if (length < 0) {
        return false;
    }
    if (write_all(fd, text)) {
        return true;
    }
    const int saved_errno = errno;
    if (file_calls::ftruncate(fd, length) != 0) {
        // Nothing more can be done: the caller reports the write error.
    }
    errno = saved_errno;
    return false;
}

bool drop_cut_off_line(int fd)
{
    const off_t length = ::lseek(fd, 0, SEEK_END);
    off_t end = length;
    for (char last = 0; end > 0; --end) {
        if (::pread(fd, &last, 1, end - 1) != 1) {
            return false;
        }
        if (last == '\n') {
            break;
        }
    }
    return end == length ? length >= 0 : file_calls::ftruncate(fd, end) == 0;
}

bool is_same_version(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

bool take_lock(const Fd &fd, int operation)
{
    while (::flock(fd.get(), operation) != 0) {
        if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

Fd lock_path(const std::string &path, int operation)
{
    Fd fd = open_file(path, O_RDONLY);
    return fd && take_lock(fd, operation) ? std::move(fd) : Fd();
}

AtomicFile::AtomicFile(const std::string &path, mode_t mode, std::string_view suffix)
    : own_folder_(open_file(folder_of(path), O_RDONLY | O_DIRECTORY)), folder_(own_folder_.get()),
      name_(name_of(path))
{
    open(mode, suffix);
}

AtomicFile::AtomicFile(const Fd &folder, const std::string &path, mode_t mode,
                       std::string_view suffix)
    : folder_(folder.get()), name_(name_of(path))
{
    open(mode, suffix);
}

void AtomicFile::open(mode_t mode, std::string_view suffix)
{
    temporary_ = suffix.empty() ? unique_temporary(name_) : name_ + std::string(suffix);
    constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW;
    if (folder_ >= 0) {
        fd_ = open_at(folder_, temporary_, flags, 0600);
        if (!fd_ && errno == EEXIST && file_calls::unlinkat(folder_, temporary_.c_str()) == 0) {
            fd_ = open_at(folder_, temporary_, flags, 0600);
        }
    }
    if (!fd_) {
        fail();
        done_ = true; // no temporary of ours to remove
        return;
    }
    struct stat old {};
    const bool replaces = ::fstatat(folder_, name_.c_str(), &old, 0) == 0 && S_ISREG(old.st_mode);
    if (replaces && (old.st_uid != ::geteuid() || old.st_gid != ::getegid()) &&
        file_calls::fchown(fd_.get(), old.st_uid, old.st_gid) != 0) {
        fail();
        return;
    }
    if (file_calls::fchmod(fd_.get(), replaces ? old.st_mode & 07777 : mode) != 0) {
        fail();
    }
}

AtomicFile::~AtomicFile()
{
    if (!done_) {
        const int saved_errno = errno;
        file_calls::unlinkat(folder_, temporary_.c_str());
        errno = saved_errno;
    }
}

bool AtomicFile::fail()
{
    if (error_ == 0) {
        error_ = errno == 0 ? EIO : errno;
    }
    return false;
}

bool AtomicFile::write(std::string_view text)
{
    return ok() && (write_all(fd_.get(), text) || fail());
}

bool AtomicFile::prepare()
{
    if (!ok()) {
        return false;
    }
    if (fd_ && (file_calls::fsync(fd_.get()) != 0 || file_calls::close(fd_.release()) != 0)) {
        return fail();
    }
    return true;
}

bool AtomicFile::commit()
{
    if (!prepare()) {
        return false;
    }
    if (file_calls::renameat(folder_, temporary_.c_str(), name_.c_str()) != 0) {
        return fail();
    }
    done_ = true;
    // The new content stands already; a folder that cannot be synced is no reason to fail.
    file_calls::fsync(folder_);
    return true;
}

bool replace_file(const std::string &path, std::string_view text, mode_t mode)
{
    AtomicFile file(path, mode);
    if (file.write(text) && file.commit()) {
        return true;
    }
    errno = file.error();
    return false;
}

bool sync_folder_of(const std::string &path)
{
    const Fd folder = open_file(folder_of(path), O_RDONLY | O_DIRECTORY);
    return folder && file_calls::fsync(folder.get()) == 0;
}

} // namespace qorcfg
