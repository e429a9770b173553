#include "tools/subscribers.h"

#include "core/base/globals.h"
#include "core/component_table.h"
#include "engine/systeminfo.h"
#include "engine/writes_held.h"
#include "platform/key_id.h"

#include <algorithm>

namespace qorcfg {

namespace {

using Kind = Subscriber::Kind;

/// Enables every component of this build in an empty registry.
void enable_all_components()
{
    registry().clear();
    is_base = read_is_base();
    for (const ComponentRow &row : components) {
        if (row.ops != nullptr) {
            enable_component(row.name);
        }
    }
}

std::vector<Subscriber> callbacks_of(std::int32_t id)
{
    std::vector<Subscriber> callbacks;
    if (const KeyRecord *record = registry().find(id)) {
        for (const UpdateCallback callback : record->normal) {
            callbacks.push_back({registry().owner_of(callback), Kind::update});
        }
        for (const SoapCallback callback : record->soap) {
            callbacks.push_back({registry().owner_of(callback), Kind::soap});
        }
    }
    return callbacks;
}

std::vector<Subscribers> names_of(const std::vector<std::string> &keys)
{
    std::vector<Subscribers> entries;
    for (const std::string &key : keys) {
        for (std::string &name : announced_names(key)) {
            const bool known = std::any_of(entries.begin(), entries.end(),
                                           [&](const auto &entry) { return entry.name == name; });
            if (!known) {
                const std::int32_t id = config_key_id(name.c_str());
                entries.push_back({std::move(name), id, {}});
            }
        }
    }
    return entries;
}

} // namespace

std::vector<Subscribers> subscribers_of(const std::vector<std::string> &keys)
{
    const WritesHeld held;
    enable_all_components();
    std::vector<Subscribers> entries = names_of(keys);
    for (Subscribers &entry : entries) {
        entry.callbacks = callbacks_of(entry.id);
    }
    registry().clear();
    return entries;
}

std::string KeyNames::of(std::int32_t id)
{
    if (!names_) {
        names_.emplace();
        const WritesHeld held;
        registry().watch([&](const char *key) { names_->emplace(config_key_id(key), key); });
        enable_all_components();
        registry().watch(nullptr);
        registry().clear();
    }
    const auto name = names_->find(id);
    return name == names_->end() ? "" : name->second;
}

} // namespace qorcfg
