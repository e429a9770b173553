#include "core/base/changed_keys.h"

#include "platform/key_id.h"

#include <memory>

namespace qorcfg {

void ChangedKeys::FreeNode::operator()(Node *node) const noexcept
{
    std::destroy_at(node);
    const Memory freed(node);
}

void ChangedKeys::append(std::int32_t key_id)
{
    Memory memory = xmalloc(sizeof(Node));
    if (!memory) {
        return;
    }
    NodeOwner *end = &head_;
    while (*end) {
        end = &(*end)->next;
    }
    end->reset(std::construct_at(static_cast<Node *>(memory.release()), Node{key_id, nullptr}));
}

bool ChangedKeys::contains(std::int32_t key_id) const
{
    bool found = false;
    for_each([&](std::int32_t listed) { found = found || listed == key_id; });
    return found;
}

int changed_keys_contain_any(const ChangedKeys *list, std::span<const char *const> keys)
{
    int found = 0;
    if (list == nullptr) {
        return found;
    }
    for (const char *key : keys) {
        if (key == nullptr) {
            break;
        }
        if (found == 0) {
            if (!list->contains(config_key_id(key))) {
                return 0;
            }
            found = 1;
        }
    }
    return found;
}

} // namespace qorcfg
