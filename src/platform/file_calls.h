#pragma once

#include <cstddef>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

/// The system calls by which files are made, written, renamed and removed, each passed on as it is,
/// errno included. Everything that the daemon and its tools write goes through here, so that a
/// program can be linked with calls that fail, or that end it, at a chosen moment.
namespace qorcfg::file_calls {

int openat(int folder, const char *path, int flags, mode_t mode);
ssize_t write(int fd, const void *data, std::size_t size);
int fsync(int fd);
int ftruncate(int fd, off_t length);
int fchmod(int fd, mode_t mode);
int fchown(int fd, uid_t owner, gid_t group);
/// Sets the time of the last change and leaves that of the last access.
int set_modified(int fd, const timespec &time);
int close(int fd);
/// Both names are in the same folder.
int renameat(int folder, const char *from, const char *to);
int link(const char *from, const char *to);
int unlinkat(int folder, const char *path);
int mkdir(const char *path, mode_t mode);

inline int rename(const char *from, const char *to)
{
    return renameat(AT_FDCWD, from, to);
}

inline int unlink(const char *path)
{
    return unlinkat(AT_FDCWD, path);
}

} // namespace qorcfg::file_calls
