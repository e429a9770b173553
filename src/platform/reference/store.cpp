#include "platform/reference/store.h"

#include "platform/qor_platform.h"
#include "platform/reference/store_environment.h"
#include "platform/reference/store_marks.h"
#include "platform/reference/store_persistent.h"

#include <cstdio>
#include <mutex>

namespace qorcfg {

namespace {

using store::Access;
using store::item_of;
using store::text_of;
using store::Transaction;

/// A key as it may stand in a message of one line.
std::string shown(std::string_view key)
{
    constexpr std::size_t enough = 80;
    std::string text(key.substr(0, enough));
    for (char &c : text) {
        if (static_cast<unsigned char>(c) < ' ') {
            c = '?';
        }
    }
    return key.size() > enough ? text + "..." : text;
}

std::string error_of_write(const StoreWrite &write)
{
    if (write.key.empty()) {
        return "the empty key cannot be written";
    }
    const std::string name = shown(write.key);
    if (write.key.size() > store_key_limit) {
        return "key longer than " + std::to_string(store_key_limit) + " bytes: " + name;
    }
    if (write.key.find('\0') != std::string::npos) {
        return "key with a NUL byte: " + name;
    }
    if (!write.value) {
        return "";
    }
    if (write.value->size() > store_value_limit) {
        return "value longer than " + std::to_string(store_value_limit) + " bytes: " + name;
    }
    return write.value->find('\0') == std::string::npos ? "" : "value with a NUL byte: " + name;
}

std::string fault_at(std::string_view key, int status)
{
    if (status == MDB_MAP_FULL || status == MDB_TXN_FULL) {
        return "store is full: " + shown(key);
    }
    return store::fault("cannot write " + shown(key) + " to", store::live_path(), status);
}

/// Does one write of a transaction; `marked` counts those that leave a mark. 0 or an LMDB status.
int apply(MDB_txn *txn, const store::Database &database, const StoreWrite &write, Marking marking,
          std::uint32_t &marked)
{
    MDB_val key = item_of(write.key);
    MDB_val old{};
    int status = mdb_get(txn, database.settings, &key, &old);
    if (status != 0 && status != MDB_NOTFOUND) {
        return status;
    }
    const bool existed = status == 0;
    const bool seen = text_of(old) != (write.value ? *write.value : std::string_view());
    if (!write.value) {
        status = existed ? mdb_del(txn, database.settings, &key, nullptr) : 0;
    } else if (!existed || seen) {
        MDB_val value = item_of(*write.value);
        status = mdb_put(txn, database.settings, &key, &value, 0);
    }
    if (status != 0 || !seen || marking == Marking::leave) {
        return status;
    }
    const auto kind = !write.value ? store::WriteKind::remove
                      : existed    ? store::WriteKind::replace
                                   : store::WriteKind::create;
    // The number of the transaction grows with every commit, so no counter has to be kept.
    const std::uint64_t serial = (std::uint64_t{mdb_txn_id(txn)} << 32) + ++marked;
    return store::mark_key(txn, database, write.key, kind, serial);
}

/// Readers have nobody to hand an error to; a store that cannot be read is said once, not a
/// thousand times.
void complain(const std::string &error)
{
    static std::mutex mutex;
    static std::string last;
    const std::lock_guard lock(mutex);
    if (error != last) {
        last = error;
        std::fprintf(stderr, "%s\n", error.c_str());
    }
}

/// Hands the stored text of `key` to `use`, inside the transaction. False when there is none.
template <typename Use> bool with_value(const char *key, Use use)
{
    const std::string_view name = key == nullptr ? "" : key;
    if (name.empty() || name.size() > store_key_limit) {
        return false;
    }
    const Access access;
    if (!access.error().empty()) {
        complain(access.error());
        return false;
    }
    const Transaction transaction(access.env(), MDB_RDONLY);
    MDB_val item = item_of(name);
    MDB_val value{};
    const int status = transaction.status() != 0
                           ? transaction.status()
                           : mdb_get(transaction.get(), access->settings, &item, &value);
    if (status == 0) {
        use(text_of(value));
    } else if (status != MDB_NOTFOUND) {
        complain(store::fault("cannot read", store::live_path(), status));
    }
    return status == 0;
}

/// Calls `use` for each item of a table from the key `first` on, until it returns false.
template <typename Use>
std::string walk(MDB_dbi store::Database::*table, std::string_view first, Use use)
{
    const Access access;
    if (!access.error().empty()) {
        return access.error();
    }
    const Transaction transaction(access.env(), MDB_RDONLY);
    MDB_cursor *opened = nullptr;
    int status = transaction.status();
    if (status == 0) {
        status = mdb_cursor_open(transaction.get(), *access.*table, &opened);
    }
    const store::Cursor cursor(opened);
    MDB_val key = item_of(first);
    MDB_val value{};
    MDB_cursor_op step = first.empty() ? MDB_FIRST : MDB_SET_RANGE;
    while (status == 0) {
        status = mdb_cursor_get(cursor.get(), &key, &value, step);
        if (status == 0 && !use(text_of(key), value)) {
            return "";
        }
        step = MDB_NEXT;
    }
    return status == MDB_NOTFOUND ? "" : store::fault("cannot read", store::live_path(), status);
}

/// Removes the mark unless the key was changed again since. 0 or an LMDB status.
int clear_mark(MDB_txn *txn, MDB_dbi marks, const MarkedKey &marked)
{
    MDB_val key = item_of(marked.key);
    MDB_val item{};
    const int status = marked.key.empty() ? MDB_NOTFOUND : mdb_get(txn, marks, &key, &item);
    if (status != 0) {
        return status == MDB_NOTFOUND || status == MDB_BAD_VALSIZE ? 0 : status;
    }
    const auto mark = store::mark_of(item);
    return mark && mark->serial == marked.serial ? mdb_del(txn, marks, &key, nullptr) : 0;
}

/// Runs `change` for each element in one write transaction, all or none.
template <typename Elements, typename Change>
std::string change_all(const Elements &elements, Change change)
{
    if (elements.empty()) {
        return "";
    }
    const Access access;
    if (!access.error().empty()) {
        return access.error();
    }
    Transaction transaction(access.env(), 0);
    int status = transaction.status();
    for (const auto &element : elements) {
        if (status == 0) {
            status = change(transaction.get(), *access, element);
        }
        if (status != 0) {
            return fault_at(element.key, status);
        }
    }
    status = transaction.commit();
    if (status != 0) {
        store::distrust_environment();
        return fault_at(elements.back().key, status);
    }
    return "";
}

int said(const std::string &error)
{
    if (error.empty()) {
        return 0;
    }
    std::fprintf(stderr, "%s\n", error.c_str());
    return -1;
}

/// What `config_get` returned last in the calling thread.
std::string &text_of_last_read()
{
    thread_local std::string text;
    return text;
}

std::string_view text_or_empty(const char *text)
{
    return text == nullptr ? "" : text;
}

} // namespace

std::string store_write(const std::vector<StoreWrite> &writes, Marking marking)
{
    for (const StoreWrite &write : writes) {
        if (auto error = error_of_write(write); !error.empty()) {
            return error;
        }
    }
    std::uint32_t marked = 0;
    return change_all(writes,
                      [&](MDB_txn *txn, const store::Database &database, const StoreWrite &write) {
                          return apply(txn, database, write, marking, marked);
                      });
}

int config_set(const char *key, const char *value)
{
    if (value == nullptr) {
        return said("no value for " + shown(text_or_empty(key)));
    }
    return said(store_write({{std::string(text_or_empty(key)), value}}, Marking::mark));
}

int config_unset(const char *key)
{
    return said(store_write({{std::string(text_or_empty(key)), std::nullopt}}, Marking::mark));
}

std::string store_settings(std::string_view prefix, std::vector<Setting> &settings)
{
    settings.clear();
    if (prefix.size() > store_key_limit) {
        return "";
    }
    return walk(&store::Database::settings, prefix,
                [&](std::string_view key, const MDB_val &value) {
                    if (key.substr(0, prefix.size()) != prefix) {
                        return false;
                    }
                    settings.push_back({std::string(key), std::string(text_of(value))});
                    return true;
                });
}

std::string store_marked_keys(std::vector<MarkedKey> &keys)
{
    keys.clear();
    return walk(&store::Database::marks, "", [&](std::string_view key, const MDB_val &value) {
        if (const auto mark = store::mark_of(value)) {
            keys.push_back({std::string(key), mark->change, mark->serial});
        }
        return true;
    });
}

std::string store_clear_marks(const std::vector<MarkedKey> &keys)
{
    return change_all(keys,
                      [](MDB_txn *txn, const store::Database &database, const MarkedKey &marked) {
                          return clear_mark(txn, database.marks, marked);
                      });
}

bool store_has(const char *key)
{
    return with_value(key, [](std::string_view /*value*/) {});
}

} // namespace qorcfg

const char *config_get(const char *key)
{
    std::string &text = qorcfg::text_of_last_read();
    if (!qorcfg::with_value(key, [&](std::string_view value) { text = value; })) {
        text.clear();
    }
    return text.c_str();
}

int config_match(const char *key, const char *value)
{
    const std::string_view wanted = qorcfg::text_or_empty(value);
    bool equal = wanted.empty();
    qorcfg::with_value(key, [&](std::string_view stored) { equal = stored == wanted; });
    return equal ? 1 : 0;
}

int config_invmatch(const char *key, const char *value)
{
    return 1 - config_match(key, value);
}

int config_commit(void)
{
    return qorcfg::said(qorcfg::store::write_persistent_copy());
}

int mappi_set(const char *name, const char *value)
{
    if (value == nullptr) {
        return qorcfg::said("no value for " + qorcfg::shown(qorcfg::text_or_empty(name)));
    }
    return qorcfg::said(qorcfg::store_write({{std::string(qorcfg::text_or_empty(name)), value}},
                                            qorcfg::Marking::leave));
}
