#include "platform/file_calls.h"

#include <array>
#include <cstdio>
#include <unistd.h>

namespace qorcfg::file_calls {

int openat(int folder, const char *path, int flags, mode_t mode)
{
    return ::openat(folder, path, flags, mode);
}

ssize_t write(int fd, const void *data, std::size_t size)
{
    return ::write(fd, data, size);
}

int fsync(int fd)
{
    return ::fsync(fd);
}

int ftruncate(int fd, off_t length)
{
    return ::ftruncate(fd, length);
}

int fchmod(int fd, mode_t mode)
{
    return ::fchmod(fd, mode);
}

int fchown(int fd, uid_t owner, gid_t group)
{
    return ::fchown(fd, owner, group);
}

int set_modified(int fd, const timespec &time)
{
    const std::array<timespec, 2> times{timespec{0, UTIME_OMIT}, time};
    return ::futimens(fd, times.data());
}

int close(int fd)
{
    return ::close(fd);
}

int renameat(int folder, const char *from, const char *to)
{
    return ::renameat(folder, from, folder, to);
}

int link(const char *from, const char *to)
{
    return ::link(from, to);
}

int unlinkat(int folder, const char *path)
{
    return ::unlinkat(folder, path, 0);
}

int mkdir(const char *path, mode_t mode)
{
    return ::mkdir(path, mode);
}

} // namespace qorcfg::file_calls
