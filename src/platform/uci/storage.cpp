#include "platform/uci/storage.h"

#include "platform/file.h"
#include "platform/file_calls.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qorcfg::uci {

namespace {

/// Far above any configuration: what is larger is not one.
constexpr std::size_t largest_file = std::size_t{64} << 20;

LockedFile open_plain(const std::string &path, Access access, mode_t mode)
{
    // Non-blocking, so that a FIFO under a package's name does not stop the caller.
    const int flags = (access == Access::read ? O_RDONLY : O_RDWR) | O_NOCTTY | O_NONBLOCK;
    LockedFile file{open_file(path, flags)};
    if (!file && errno == ENOENT && access == Access::create) {
        file.fd = open_file(path, flags | O_CREAT | O_EXCL, mode);
        file.created = static_cast<bool>(file.fd);
        if (!file && errno == EEXIST) {
            file.fd = open_file(path, flags);
        }
    }
    return file;
}

} // namespace

LockedFile open_locked(const std::string &path, Access access, mode_t mode)
{
    // Some stacked file systems show other inode numbers through the path than through the
    // descriptor; there the comparison proves nothing and is given up.
    constexpr int attempts = 64;
    for (int attempt = 1;; ++attempt) {
        LockedFile file = open_plain(path, access, mode);
        if (!file) {
            return {};
        }
        struct stat opened {};
        if (::fstat(file.fd.get(), &opened) != 0 || !S_ISREG(opened.st_mode)) {
            errno = ENOENT;
            return {};
        }
        if (!take_lock(file.fd, access == Access::read ? LOCK_SH : LOCK_EX)) {
            return {};
        }
        struct stat named {};
        const bool same = ::stat(path.c_str(), &named) == 0 && named.st_dev == opened.st_dev &&
                          named.st_ino == opened.st_ino;
        if (same || attempt == attempts) {
            return file;
        }
    }
}

std::optional<std::string> read_whole(const LockedFile &file)
{
    if (::lseek(file.fd.get(), 0, SEEK_SET) != 0) {
        return std::nullopt;
    }
    return read_descriptor(file.fd.get(), largest_file);
}

bool shorten_to(const LockedFile &file, std::string_view text)
{
    const int fd = file.fd.get();
    return ::lseek(fd, 0, SEEK_SET) == 0 && write_all(fd, text) &&
           file_calls::ftruncate(fd, static_cast<off_t>(text.size())) == 0;
}

mode_t mode_of(const std::string &path, mode_t otherwise)
{
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : otherwise;
}

} // namespace qorcfg::uci
