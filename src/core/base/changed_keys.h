#pragma once

#include "core/base/xmalloc.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>

namespace qorcfg {

/// Ids of the changed keys under which a SOAP callback is subscribed, in the order of their
/// announcement; an id that was announced twice stands twice. Owned by the worker: a callback must
/// not keep it.
class ChangedKeys {
public:
    /// Adds an id at the end. Without memory the id is dropped: the job goes on with what it has.
    void append(std::int32_t key_id);
    bool contains(std::int32_t key_id) const;
    /// Calls `visit(key_id)` for each id in order.
    template <typename Visit> void for_each(Visit visit) const
    {
        for (const Node *node = head_.get(); node != nullptr; node = node->next.get()) {
            visit(node->key_id);
        }
    }

private:
    struct Node;
    struct FreeNode {
        void operator()(Node *node) const noexcept;
    };
    using NodeOwner = std::unique_ptr<Node, FreeNode>;
    struct Node {
        std::int32_t key_id;
        NodeOwner next;
    };

    NodeOwner head_;
};

/// The test behind `changed_keys_contain`, over `keys` up to the first null.
int changed_keys_contain_any(const ChangedKeys *list, std::span<const char *const> keys);

/// Tests the named keys, up to a closing null, against a callback's list: 0 at once when the first
/// key is not in the list, 1 once a key has been found. So 1 means exactly that the first key named
/// is in the list; callers that mean "any of" ask once per key. A null list gives 0.
template <typename... Keys> int changed_keys_contain(const ChangedKeys *list, Keys... keys)
{
    const std::array<const char *, sizeof...(keys)> names{keys...};
    return changed_keys_contain_any(list, names);
}

/// Whether any of `keys` (a range of key names) is in the list. Each is asked for on its own, since
/// one question answers for its first key alone.
template <typename Keys> bool any_key_changed(const ChangedKeys *list, const Keys &keys)
{
    for (const char *key : keys) {
        if (changed_keys_contain(list, key) != 0) {
            return true;
        }
    }
    return false;
}

} // namespace qorcfg
