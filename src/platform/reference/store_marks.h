#pragma once

#include "platform/reference/store.h"
#include "platform/reference/store_environment.h"

#include <cstdint>
#include <optional>
#include <string_view>

// The table of changed keys. For the sources of the reference store only.
namespace qorcfg::store {

/// What is remembered of a changed key.
struct Mark {
    KeyChange change;
    std::uint64_t serial;
};

/// Whether the write set a new key, removed one, or gave a key another value.
enum class WriteKind { create, remove, replace };

/// Marks `key` after a write; what earlier, not yet announced writes did to it counts as well. 0 or
/// an LMDB status.
int mark_key(MDB_txn *txn, const Database &database, std::string_view key, WriteKind kind,
             std::uint64_t serial);

/// Reads what the table holds under a key; nothing when the item is no mark.
std::optional<Mark> mark_of(const MDB_val &item);

} // namespace qorcfg::store
