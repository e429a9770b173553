#include "platform/reference/store_marks.h"

#include <array>
#include <cstring>

namespace qorcfg::store {

namespace {

constexpr std::size_t serial_size = sizeof(std::uint64_t);
/// The serial and one byte for what happened.
using MarkBytes = std::array<char, serial_size + 1>;

MarkBytes bytes_of(const Mark &mark)
{
    MarkBytes bytes{};
    std::memcpy(bytes.data(), &mark.serial, serial_size);
    bytes[serial_size] = static_cast<char>(mark.change);
    return bytes;
}

KeyChange change_of(WriteKind kind, const std::optional<Mark> &before)
{
    if (kind == WriteKind::remove) {
        return KeyChange::removed;
    }
    if (!before) {
        return kind == WriteKind::create ? KeyChange::created : KeyChange::changed;
    }
    // Whoever listens has not heard of a created key yet, and still knows a removed one.
    return before->change == KeyChange::created ? KeyChange::created : KeyChange::changed;
}

} // namespace

std::optional<Mark> mark_of(const MDB_val &item)
{
    const auto bytes = text_of(item);
    if (bytes.size() != MarkBytes().size()) {
        return std::nullopt;
    }
    Mark mark{};
    std::memcpy(&mark.serial, bytes.data(), serial_size);
    mark.change = static_cast<KeyChange>(bytes[serial_size]);
    return mark;
}

int mark_key(MDB_txn *txn, const Database &database, std::string_view key, WriteKind kind,
             std::uint64_t serial)
{
    MDB_val name = item_of(key);
    MDB_val item{};
    std::optional<Mark> before;
    int status = mdb_get(txn, database.marks, &name, &item);
    if (status == 0) {
        before = mark_of(item);
    } else if (status != MDB_NOTFOUND) {
        return status;
    }
    const MarkBytes bytes = bytes_of({change_of(kind, before), serial});
    item = item_of({bytes.data(), bytes.size()});
    return mdb_put(txn, database.marks, &name, &item, 0);
}

} // namespace qorcfg::store
