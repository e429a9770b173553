#include "tools/subscribers.h"

#include "core/base/globals.h"
#include "core/component_table.h"
#include "engine/systeminfo.h"
#include "engine/writes_held.h"
#include "platform/key_id.h"

#include <algorithm>

namespace qorcfg {

namespace {

/// Numbers callbacks by their first appearance.
template <typename Callback> class Numbers {
public:
    int of(Callback callback)
    {
        const auto known = std::find(seen_.begin(), seen_.end(), callback);
        const auto place = known - seen_.begin();
        if (known == seen_.end()) {
            seen_.push_back(callback);
        }
        return static_cast<int>(place) + 1;
    }

private:
    std::vector<Callback> seen_;
};

using Kind = Subscriber::Kind;

/// Adds what the component alone has put into the registry to `entries`.
void attribute(const char *component, std::vector<Subscribers> &entries)
{
    Numbers<UpdateCallback> updates;
    Numbers<SoapCallback> soaps;
    const auto add = [&](std::int32_t id, Subscriber subscriber) {
        for (Subscribers &entry : entries) {
            if (entry.id == id) {
                entry.callbacks.push_back(subscriber);
            }
        }
    };
    for (const KeyRecord &record : registry().records()) {
        for (const UpdateCallback callback : record.normal) {
            add(record.key_id, {component, Kind::update, updates.of(callback)});
        }
        for (const SoapCallback callback : record.soap) {
            add(record.key_id, {component, Kind::soap, soaps.of(callback)});
        }
    }
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
    std::vector<Subscribers> entries = names_of(keys);
    is_base = read_is_base();
    for (const ComponentRow &row : components) {
        if (row.ops == nullptr) {
            continue;
        }
        // Alone in the registry, what is there is this component's.
        registry().clear();
        enable_component(row.name);
        attribute(row.name, entries);
    }
    registry().clear();
    for (Subscribers &entry : entries) {
        std::stable_partition(entry.callbacks.begin(), entry.callbacks.end(),
                              [](const Subscriber &each) { return each.kind == Kind::update; });
    }
    return entries;
}

} // namespace qorcfg
