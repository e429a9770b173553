#include "platform/reference/store_persistent.h"

#include "platform/file.h"
#include "platform/path_root.h"
#include "platform/reference/store_environment.h"

#include <cerrno>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace qorcfg::store {

namespace {

/// FNV-1a, of which no change of a single byte stays unseen.
class CheckSum {
public:
    void add(std::string_view bytes)
    {
        for (const char byte : bytes) {
            value_ = (value_ ^ static_cast<unsigned char>(byte)) * 0x100000001b3U;
        }
    }
    /// The last line of a persistent copy.
    std::string line() const
    {
        char text[40];
        std::snprintf(text, sizeof text, "qorcfg-store %016" PRIx64 "\n", value_);
        return text;
    }

private:
    std::uint64_t value_ = 0xcbf29ce484222325U;
};

/// Check sum line of everything written to `fd` so far; nothing and errno on failure.
std::optional<std::string> check_sum_of(int fd)
{
    CheckSum sum;
    std::string block(65536, '\0');
    off_t place = 0;
    for (;;) {
        const ssize_t got = ::pread(fd, block.data(), block.size(), place);
        if (got == 0) {
            return sum.line();
        }
        if (got > 0) {
            sum.add(std::string_view(block).substr(0, static_cast<std::size_t>(got)));
            place += got;
        } else if (errno != EINTR) {
            return std::nullopt;
        }
    }
}

/// The database in a persistent copy, nothing when the check sum says that it is not what was
/// written.
std::optional<std::string_view> checked_database(std::string_view copy)
{
    const std::size_t length = CheckSum().line().size();
    if (copy.size() <= length) {
        return std::nullopt;
    }
    const auto database = copy.substr(0, copy.size() - length);
    CheckSum sum;
    sum.add(database);
    return copy.substr(database.size()) == sum.line() ? std::optional(database) : std::nullopt;
}

/// The start-up pass that follows a restart tells everything, so nothing is left to be announced.
int clear_all_marks(const std::string &path)
{
    Database database;
    int status = open_database(path, MDB_NOLOCK | MDB_NOSYNC, database);
    if (status != 0) {
        return status;
    }
    Transaction transaction(database.env.get(), 0);
    status = transaction.status();
    if (status == 0) {
        status = mdb_drop(transaction.get(), database.marks, 0);
    }
    return status == 0 ? transaction.commit() : status;
}

bool means_damage(int status)
{
    return status == MDB_INVALID || status == MDB_VERSION_MISMATCH || status == MDB_CORRUPTED ||
           status == MDB_PAGE_NOTFOUND || status == MDB_INCOMPATIBLE || status == EIO ||
           status == EFBIG || status == EISDIR;
}

std::string set_aside(const std::string &path, const std::string &reason)
{
    const std::string aside = path + ".damaged";
    if (::rename(path.c_str(), aside.c_str()) != 0) {
        return fault("cannot set aside the damaged", path, errno);
    }
    sync_folder_of(path);
    std::fprintf(stderr, "%s: %s; set aside as %s, the store starts empty\n", path.c_str(),
                 reason.c_str(), aside.c_str());
    return "";
}

} // namespace

std::string persistent_path()
{
    return rooted("/etc/qorcfg/config.mdb");
}

std::string write_persistent_copy()
{
    const Access access;
    if (!access.error().empty()) {
        return access.error();
    }
    const std::string path = persistent_path();
    const auto failed = [&](int status) { return fault("cannot write", path, status); };
    if (!make_folder(path.substr(0, path.rfind('/')))) {
        return failed(errno);
    }
    // Of two copies at once the older one could come to lie over the newer one.
    const std::string lock_name = live_path() + ".commit-lock";
    const Fd lock = lock_file(lock_name);
    if (!lock) {
        return fault("cannot lock", lock_name, errno);
    }
    AtomicFile file(path, 0600, ".new");
    if (!file.ok()) {
        return failed(file.error());
    }
    if (const int status = mdb_env_copyfd2(access.env(), file.fd(), MDB_CP_COMPACT); status != 0) {
        return failed(status);
    }
    const auto line = check_sum_of(file.fd());
    if (!line) {
        return failed(errno);
    }
    return file.write(*line) && file.commit() ? "" : failed(file.error());
}

std::string restore_missing_store(const std::string &live)
{
    struct stat info {};
    if (::stat(live.c_str(), &info) == 0) {
        return "";
    }
    // The lock file of a store that was removed counts transactions which the new one never saw.
    ::unlink((live + "-lock").c_str());
    const std::string path = persistent_path();
    const auto copy = read_file(path, map_size + 64);
    if (!copy) {
        const int error = errno;
        if (error == ENOENT) {
            return "";
        }
        return means_damage(error) ? set_aside(path, std::strerror(error))
                                   : fault("cannot read", path, error);
    }
    const auto database = checked_database(*copy);
    if (!database) {
        return set_aside(path, "damaged, its check sum does not match");
    }
    AtomicFile file(live, 0600, ".restored");
    if (!file.write(*database) || !file.prepare()) {
        return fault("cannot write", live, file.error());
    }
    const int status = clear_all_marks(live + ".restored");
    if (means_damage(status)) {
        return set_aside(path, mdb_strerror(status));
    }
    if (status != 0) {
        return fault("cannot restore", live, status);
    }
    return file.commit() ? "" : fault("cannot write", live, file.error());
}

} // namespace qorcfg::store
