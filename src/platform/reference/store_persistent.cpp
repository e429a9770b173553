#include "platform/reference/store_persistent.h"

#include "platform/file.h"
#include "platform/file_calls.h"
#include "platform/path_root.h"
#include "platform/reference/store_environment.h"

#include <algorithm>
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

/// FNV-1a over words of eight bytes, of which no change within one word stays unseen.
class CheckSum {
public:
    /// All blocks but the last must be of whole words.
    void add(std::string_view bytes)
    {
        for (; !bytes.empty(); bytes.remove_prefix(std::min(bytes.size(), sizeof(std::uint64_t)))) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes.data(), std::min(bytes.size(), sizeof word));
            value_ = (value_ ^ word) * 0x100000001b3U;
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
    std::string block(16384, '\0');
    std::size_t filled = 0;
    for (off_t place = 0;;) {
        const ssize_t got = ::pread(fd, block.data() + filled, block.size() - filled, place);
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return std::nullopt;
        }
        place += got;
        filled += static_cast<std::size_t>(got);
        if (got == 0 || filled == block.size()) {
            sum.add(std::string_view(block).substr(0, filled));
            filled = 0;
        }
        if (got == 0) {
            return sum.line();
        }
    }
}

/// A plain copy is quick, but takes along the pages that hold nothing any more. LMDB's way to leave
/// them out costs a thread and buffers of 2 MiB, so it waits until they are most of the file.
bool is_mostly_empty(const Access &access)
{
    const Transaction transaction(access.env(), MDB_RDONLY);
    MDB_envinfo info{};
    MDB_stat main{};
    MDB_stat settings{};
    MDB_stat marks{};
    if (transaction.status() != 0 || mdb_env_info(access.env(), &info) != 0 ||
        mdb_env_stat(access.env(), &main) != 0 ||
        mdb_stat(transaction.get(), access->settings, &settings) != 0 ||
        mdb_stat(transaction.get(), access->marks, &marks) != 0) {
        return false;
    }
    std::size_t used = 2; // where LMDB keeps its roots
    for (const MDB_stat &table : {main, settings, marks}) {
        used += table.ms_branch_pages + table.ms_leaf_pages + table.ms_overflow_pages;
    }
    constexpr std::size_t small = 64; // pages that are not worth the trouble
    return info.me_last_pgno + 1 > small + 2 * used;
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
    if (file_calls::rename(path.c_str(), aside.c_str()) != 0) {
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
    const unsigned how = is_mostly_empty(access) ? MDB_CP_COMPACT : 0;
    if (const int status = mdb_env_copyfd2(access.env(), file.fd(), how); status != 0) {
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
    file_calls::unlink((live + "-lock").c_str());
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
