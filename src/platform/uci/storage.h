#pragma once

#include "platform/fd.h"

#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace qorcfg::uci {

/// A regular file opened under a flock lock, which goes with it.
struct LockedFile {
    Fd fd;
    bool created = false;

    explicit operator bool() const { return static_cast<bool>(fd); }
};

enum class Access {
    read,   // shared lock; the file must exist
    write,  // exclusive lock; the file must exist
    create, // exclusive lock; an empty file is made where there is none
};

/// Opens and locks, waiting for the lock. Whoever waited may hold a file that was replaced
/// meanwhile; it is then opened anew, so the lock is always on the file that the path names. Empty
/// and errno on failure, ENOENT also for what is no regular file.
LockedFile open_locked(const std::string &path, Access access, mode_t mode = 0600);

/// All of the file, from its beginning. Nothing and errno on failure.
std::optional<std::string> read_whole(const LockedFile &file);

/// Puts a shorter text in place of the file's content, in the same file: others may wait for its
/// lock.
bool shorten_to(const LockedFile &file, std::string_view text);

/// Permission bits of the path, or `otherwise` where there is none.
mode_t mode_of(const std::string &path, mode_t otherwise);

} // namespace qorcfg::uci
