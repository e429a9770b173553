#pragma once

#include "platform/fd.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>

namespace qorcfg {

/// open(2) with O_CLOEXEC, retried when interrupted. An empty Fd and errno on failure.
Fd open_file(const std::string &path, int flags, mode_t mode = 0);

/// `open_file` where the folder of `path` is open already: only the name behind the last slash is
/// looked up, in `folder`.
Fd open_file_in(const Fd &folder, const std::string &path, int flags, mode_t mode = 0);

/// Reads a whole file of at most `bound` bytes. Nothing on failure, with errno: ENOENT for a
/// missing file, EFBIG for one above the bound, EISDIR for a folder.
std::optional<std::string> read_file(const std::string &path, std::size_t bound);

/// Reads what is left of an open file, at most `bound` bytes. Nothing and errno on failure, EFBIG
/// for more than the bound.
std::optional<std::string> read_descriptor(int fd, std::size_t bound);

/// Writes all of `text`, going on after short and interrupted writes. False and errno on failure;
/// part of the text may then be written.
bool write_all(int fd, std::string_view text);

/// Appends `text` to the open file whole or not at all: after a failed or short write the file is
/// cut back to the length that it had. False and errno on failure.
bool append_all(int fd, std::string_view text);

/// Cuts an open file of lines back to its last line feed: what follows is half a line, left by a
/// writer that was killed. False and errno on failure.
bool drop_cut_off_line(int fd);

/// Whether two looks at a path met the same file, unchanged in between.
bool is_same_version(const struct stat &a, const struct stat &b);

/// Takes a flock(2) lock, or changes the kind of one that is held, waiting for it. False and errno
/// on failure.
bool take_lock(const Fd &fd, int operation);

/// Takes a flock(2) lock (LOCK_SH or LOCK_EX) on `path`, which must exist, waiting for it. The lock
/// goes with the returned descriptor. An empty Fd and errno on failure.
Fd lock_path(const std::string &path, int operation);

/// Replaces a file so that a reader, and a power cut, meet the old or the new content whole.
///
/// The content goes to a temporary file in the same folder; `commit` makes it durable and renames
/// it over the old one. The new file takes over owner and mode of a file that it replaces; a new
/// one gets `mode`. A temporary that was not committed is removed with the object, so a failure
/// leaves the old file and nothing else. The folder is looked up once, at the beginning.
class AtomicFile {
public:
    /// Opens the temporary: `path` + `suffix`, replacing a left-over of that name, or a name of its
    /// own when `suffix` is empty, so that several writers of one path do not meet. Check `ok`.
    AtomicFile(const std::string &path, mode_t mode, std::string_view suffix = {});
    /// The same where the folder of `path` is open already, and stays so while the object lives.
    AtomicFile(const Fd &folder, const std::string &path, mode_t mode,
               std::string_view suffix = {});
    ~AtomicFile();
    AtomicFile(const AtomicFile &) = delete;
    AtomicFile &operator=(const AtomicFile &) = delete;

    /// False once a step has failed; `error` has its errno.
    bool ok() const { return error_ == 0; }
    int error() const { return error_; }
    /// The temporary, open for reading and writing until `prepare`.
    int fd() const { return fd_.get(); }

    bool write(std::string_view text);
    /// Makes the temporary durable and closes it. From then on only the rename is missing.
    bool prepare();
    /// `prepare`, where that has not been done, and rename. False: the old file stands.
    bool commit();

private:
    void open(mode_t mode, std::string_view suffix);
    bool fail();

    Fd own_folder_;
    int folder_;
    std::string name_;
    std::string temporary_;
    Fd fd_;
    int error_ = 0;
    bool done_ = false;
};

/// Replaces the file at `path` by `text` through `AtomicFile`. False and errno on failure.
bool replace_file(const std::string &path, std::string_view text, mode_t mode);

/// fsync of the folder that holds `path`, so that a rename in it survives a power cut.
bool sync_folder_of(const std::string &path);

} // namespace qorcfg
