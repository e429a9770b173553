#pragma once

#include <cstddef>
#include <cstdint>
#include <lmdb.h>
#include <memory>
#include <optional>
#include <shared_mutex>
#include <string>
#include <string_view>

#include "platform/fd.h"

// The database below the store: one environment a process, opened at the first use. For the sources
// of the reference store only.
namespace qorcfg::store {

/// Upper end of the store's size; small enough for the address space of a 32-bit process.
inline constexpr std::size_t map_size = std::size_t{32} << 20;

/// The live store. It may be lost with the power: what has to last is in the persistent copy.
std::string live_path();

/// "what PATH: reason", the reason of an LMDB status or errno.
std::string fault(std::string_view what, const std::string &path, int status);

/// Creates the file where it is missing and takes an exclusive flock(2) lock on it, waiting for it.
Fd lock_file(const std::string &path);

/// Creates the folder with mode 0755, whatever the umask says, unless it exists. False and errno.
bool make_folder(const std::string &path);

struct CloseEnvironment {
    void operator()(MDB_env *env) const { mdb_env_close(env); }
};
struct AbortTransaction {
    void operator()(MDB_txn *txn) const { mdb_txn_abort(txn); }
};
struct CloseCursor {
    void operator()(MDB_cursor *cursor) const { mdb_cursor_close(cursor); }
};
using Cursor = std::unique_ptr<MDB_cursor, CloseCursor>;

/// An open database file and its two tables.
struct Database {
    std::unique_ptr<MDB_env, CloseEnvironment> env;
    MDB_dbi settings = 0;
    MDB_dbi marks = 0;
};

/// Opens or creates the database file; `flags` are LMDB's. 0 or an LMDB status or errno.
int open_database(const std::string &path, unsigned flags, Database &database);

/// One transaction, given up with the object unless it was committed.
class Transaction {
public:
    Transaction(MDB_env *env, unsigned flags);
    /// 0, or why it could not begin.
    int status() const { return status_; }
    MDB_txn *get() const { return txn_.get(); }
    int commit() { return mdb_txn_commit(txn_.release()); }

private:
    std::unique_ptr<MDB_txn, AbortTransaction> txn_;
    int status_ = 0;
};

/// The open store, kept from being closed as long as the object lives; opens it when it is not, or
/// when the path root has changed. A thread holds at most one at a time.
class Access {
public:
    Access();
    /// "" or why the store cannot be opened.
    const std::string &error() const { return error_; }
    const Database &operator*() const;
    const Database *operator->() const { return &**this; }
    MDB_env *env() const { return (**this).env.get(); }

private:
    std::shared_lock<std::shared_mutex> lock_;
    std::string error_;
};

/// Has the environment opened anew before its next use: LMDB refuses to go on with one that could
/// not write its last commit.
void distrust_environment();

/// The bytes of a database item, which stay in the transaction's memory.
inline std::string_view text_of(const MDB_val &item)
{
    return {static_cast<const char *>(item.mv_data), item.mv_size};
}
/// `text` as LMDB takes it; it does not write to keys and values that it is given.
MDB_val item_of(std::string_view text);

} // namespace qorcfg::store
