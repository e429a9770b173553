#include "apply/locked_file.h"

#include "platform/file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace qorcfg {

Fd lock_current_file(const std::string &path, int flags, int operation)
{
    // Some stacked file systems show other inode numbers through the path than through the
    // descriptor; there the comparison proves nothing and is given up.
    constexpr int attempts = 64;
    for (int attempt = 1;; ++attempt) {
        Fd fd = open_file(path, flags | O_NOCTTY | O_NONBLOCK);
        struct stat opened {};
        if (!fd || ::fstat(fd.get(), &opened) != 0 || !take_lock(fd, operation)) {
            return {};
        }
        if (!S_ISREG(opened.st_mode)) {
            errno = EINVAL;
            return {};
        }
        struct stat named {};
        const bool same = ::stat(path.c_str(), &named) == 0 && named.st_dev == opened.st_dev &&
                          named.st_ino == opened.st_ino;
        if (same || attempt == attempts) {
            return fd;
        }
    }
}

} // namespace qorcfg
