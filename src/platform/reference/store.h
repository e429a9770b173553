#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the reference key/value store offers to tools beyond the device's own interface
// (qor_platform.h). The daemon uses none of it.
namespace qorcfg {

inline constexpr std::size_t store_key_limit = 511;     ///< bytes of a key, at least 1
inline constexpr std::size_t store_value_limit = 65536; ///< bytes of a value

/// What a changed key has gone through; the number is the action that is announced for it.
enum class KeyChange : int { created = 0, removed = 1, changed = 2 };

/// One write: a new value for a key, or its removal where `value` is missing.
struct StoreWrite {
    std::string key;
    std::optional<std::string> value;
};

struct Setting {
    std::string key;
    std::string value;
};

/// A key that was changed and not yet announced. `serial` grows with every write that marks the
/// key.
struct MarkedKey {
    std::string key;
    KeyChange change;
    std::uint64_t serial;
};

/// Whether writes mark the keys that they change as changed.
enum class Marking { mark, leave };

/// Does all writes in one transaction, or none of them. A write that changes nothing a reader can
/// see marks nothing. Returns "" on success, else one line that names the key or file at fault.
std::string store_write(const std::vector<StoreWrite> &writes, Marking marking);

/// `store_write` of one key with marking. 0 on success, -1 on failure (said on standard error).
int config_set(const char *key, const char *value);
int config_unset(const char *key);

/// Reads every setting whose key begins with `prefix`, sorted by key bytes. Returns "" or the
/// error.
std::string store_settings(std::string_view prefix, std::vector<Setting> &settings);

/// The marked keys, sorted by key bytes. Returns "" or the error.
std::string store_marked_keys(std::vector<MarkedKey> &keys);

/// Removes the marks of `keys` where they still have the given serial: a key that was changed again
/// in the meantime keeps its mark, so that the later change is announced too. Returns "" or the
/// error.
std::string store_clear_marks(const std::vector<MarkedKey> &keys);

/// Whether the store holds the key, even with an empty value.
bool store_has(const char *key);

/// Closes the environment of this process; the next call opens it anew, below the path root of
/// then.
void store_close();

} // namespace qorcfg
