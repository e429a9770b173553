#include "platform/reference/store_environment.h"

#include "platform/file.h"
#include "platform/file_calls.h"
#include "platform/path_root.h"
#include "platform/reference/store.h"
#include "platform/reference/store_persistent.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace qorcfg::store {

namespace {

constexpr unsigned table_count = 2;
constexpr unsigned reader_slots = 510; ///< one a read in progress, in all processes together

/// Opening one database file twice in a process would break its locks without a word, so whoever
/// works on it holds the mutex shared, and opening and closing hold it alone.
struct ProcessStore {
    std::shared_mutex mutex;
    Database database;
    unsigned generation = 0;
    std::atomic<bool> suspect{false};

    bool current() const
    {
        return database.env && generation == path_root_generation() && !suspect;
    }
    void close() { database = Database(); }
    std::string open();
};

/// An environment must not be used in a forked child, nor closed there, as its reader slots and
/// locks are the parent's; and the mutex could be unlocked by the parent's thread only. So a child
/// leaves both alone and begins anew.
struct StoreOfThisProcess {
    StoreOfThisProcess();
    std::unique_ptr<ProcessStore> store = std::make_unique<ProcessStore>();
    const ProcessStore *inherited = nullptr;
};

StoreOfThisProcess &store_of_this_process()
{
    static StoreOfThisProcess instance;
    return instance;
}

ProcessStore &process_store()
{
    return *store_of_this_process().store;
}

StoreOfThisProcess::StoreOfThisProcess()
{
    ::pthread_atfork([] { process_store().mutex.lock(); }, [] { process_store().mutex.unlock(); },
                     [] {
                         auto &mine = store_of_this_process();
                         mine.inherited = mine.store.release();
                         mine.store = std::make_unique<ProcessStore>();
                     });
}

std::string ProcessStore::open()
{
    close();
    generation = path_root_generation();
    suspect = false;
    const std::string path = live_path();
    const std::string folder = path.substr(0, path.rfind('/'));
    if (!make_folder(folder)) {
        return fault("cannot open the store, no folder", folder, errno);
    }
    // Nobody opens a store that another process is just putting in place.
    const std::string lock_name = path + ".lock";
    const Fd lock = lock_file(lock_name);
    if (!lock) {
        return fault("cannot open the store, lock", lock_name, errno);
    }
    if (auto error = restore_missing_store(path); !error.empty()) {
        return error;
    }
    // A commit need not reach the disk: the live store is as short-lived as the running system.
    // A slot that belongs to its thread is given back by the ending thread itself, which may be
    // just when the store is closed and the slots are gone; so each read takes one and gives it
    // back.
    const int status = open_database(path, MDB_NOSYNC | MDB_NOTLS, database);
    return status == 0 ? "" : fault("cannot open the store", path, status);
}

int open_tables(Database &database, unsigned flags)
{
    Transaction transaction(database.env.get(), flags);
    const unsigned create = flags == MDB_RDONLY ? 0 : MDB_CREATE;
    int status = transaction.status();
    if (status == 0) {
        status = mdb_dbi_open(transaction.get(), "settings", create, &database.settings);
    }
    if (status == 0) {
        status = mdb_dbi_open(transaction.get(), "marks", create, &database.marks);
    }
    return status == 0 ? transaction.commit() : status;
}

} // namespace

std::string live_path()
{
    return rooted("/tmp/cache/config");
}

std::string fault(std::string_view what, const std::string &path, int status)
{
    return std::string(what) + " " + path + ": " + mdb_strerror(status);
}

Fd lock_file(const std::string &path)
{
    Fd fd = open_file(path, O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    return fd && take_lock(fd, LOCK_EX) ? std::move(fd) : Fd();
}

bool make_folder(const std::string &path)
{
    if (file_calls::mkdir(path.c_str(), 0755) == 0) {
        return ::chmod(path.c_str(), 0755) == 0;
    }
    return errno == EEXIST;
}

int open_database(const std::string &path, unsigned flags, Database &database)
{
    MDB_env *env = nullptr;
    int status = mdb_env_create(&env);
    if (status != 0) {
        return status;
    }
    Database opened;
    opened.env.reset(env);
    mdb_env_set_mapsize(env, map_size);
    mdb_env_set_maxdbs(env, table_count);
    mdb_env_set_maxreaders(env, reader_slots);
    status = mdb_env_open(env, path.c_str(), flags | MDB_NOSUBDIR, 0600);
    if (status != 0) {
        return status;
    }
    // Slots of killed readers would keep old pages from being used again.
    int dead = 0;
    status = mdb_reader_check(env, &dead);
    if (status == 0) {
        // A reader that finds the tables does not wait for a writer.
        status = open_tables(opened, MDB_RDONLY);
    }
    if (status == MDB_NOTFOUND) {
        status = open_tables(opened, 0);
    }
    if (status == 0) {
        database = std::move(opened);
    }
    return status;
}

Transaction::Transaction(MDB_env *env, unsigned flags)
{
    MDB_txn *txn = nullptr;
    status_ = mdb_txn_begin(env, nullptr, flags, &txn);
    if (status_ == MDB_READERS_FULL) {
        int dead = 0;
        mdb_reader_check(env, &dead);
        status_ = mdb_txn_begin(env, nullptr, flags, &txn);
    }
    if (status_ == MDB_PANIC) {
        distrust_environment();
    }
    txn_.reset(status_ == 0 ? txn : nullptr);
}

Access::Access() : lock_(process_store().mutex)
{
    ProcessStore &store = process_store();
    while (error_.empty() && !store.current()) {
        lock_.unlock();
        {
            const std::unique_lock alone(store.mutex);
            if (!store.current()) {
                error_ = store.open();
            }
        }
        lock_.lock();
    }
}

const Database &Access::operator*() const
{
    return process_store().database;
}

void distrust_environment()
{
    process_store().suspect = true;
}

MDB_val item_of(std::string_view text)
{
    return {text.size(), const_cast<char *>(text.data())};
}

} // namespace qorcfg::store

namespace qorcfg {

void store_close()
{
    auto &store = store::process_store();
    const std::unique_lock alone(store.mutex);
    store.close();
}

} // namespace qorcfg
