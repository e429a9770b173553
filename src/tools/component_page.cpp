#include "tools/component_page.h"

#include "core/base/globals.h"
#include "core/component_table.h"
#include "core/guarded_call.h"
#include "core/startup.h"
#include "engine/writes_held.h"
#include "platform/key_id.h"
#include "platform/reference/store.h"
#include "tools/scratch_device.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace qorcfg {

namespace {

/// What a component told of itself.
struct Facts {
    std::vector<std::string> update_keys; ///< in order of subscription, as the next
    std::vector<std::string> soap_keys;
    std::set<std::string> packages;
    std::set<std::string> snapshots;
};

using Names = std::map<std::int32_t, std::string>;

void take_keys(Facts &facts, const Names &names)
{
    for (const KeyRecord &record : registry().records()) {
        const std::string &name = names.at(record.key_id);
        if (!record.normal.empty()) {
            facts.update_keys.push_back(name);
        }
        if (!record.soap.empty()) {
            facts.soap_keys.push_back(name);
        }
    }
}

void write_settings(const std::vector<std::string> &keys, const char *value)
{
    std::vector<StoreWrite> writes;
    writes.reserve(keys.size());
    for (const std::string &key : keys) {
        writes.push_back(
            {key, value == nullptr ? std::nullopt : std::optional<std::string>(value)});
    }
    if (const std::string fault = store_write(writes, Marking::leave); !fault.empty()) {
        throw std::runtime_error(fault);
    }
}

/// Enables the component alone and runs its updates. A setting can decide which document an update
/// writes, so they run without settings and with all of them switched off.
Facts facts_of(const ComponentRow &row)
{
    Facts facts;
    Names names;
    const WritesHeld held([&](const HeldWrite &write) {
        if (!write.package.empty()) {
            facts.packages.insert(write.package);
        }
        facts.snapshots.insert(write.snapshot);
    });
    registry().clear();
    registry().watch([&](const char *key) { names.emplace(config_key_id(key), key); });
    enable_component(row.name);
    registry().watch(nullptr);
    take_keys(facts, names);
    run_startup_pass();
    write_settings(facts.update_keys, "0");
    run_startup_pass();
    write_settings(facts.update_keys, nullptr);
    registry().clear();
    return facts;
}

template <typename List> void add_list(std::string &page, const char *title, const List &list)
{
    if (list.empty()) {
        return;
    }
    page.append("\n").append(title).append(":\n");
    for (const std::string &each : list) {
        page.append("- `").append(each).append("`\n");
    }
}

/// Many short names, filled into lines.
void add_keys(std::string &page, const char *title, const std::vector<std::string> &keys)
{
    if (keys.empty()) {
        return;
    }
    constexpr std::size_t line_width = 100;
    page.append("\n").append(title).append(" (").append(std::to_string(keys.size())).append("):\n");
    std::string line;
    for (const std::string &key : keys) {
        const std::string word = "`" + key + "`" + (&key == &keys.back() ? "" : ",");
        if (!line.empty() && line.size() + 1 + word.size() > line_width) {
            page.append(line).append("\n");
            line.clear();
        }
        line.append(line.empty() ? "" : " ").append(word);
    }
    page.append(line).append("\n");
}

constexpr std::string_view introduction =
    R"(# Components

Printed by `qorctl components --markdown`; do not edit.

The order is that of the component table. A change of a key in the first list makes the component write
its documents anew; a change of one in the second is told to satellites. A name whose
members the store numbers (`sysDNSUser_` of `sysDNSUser_1`, `sysDNSUser_2`) stands for all of them. A
snapshot holds the document that was written last. Names that a device's information files give are
shown as they are without these files.
)";

} // namespace

std::string component_page()
{
    const ScratchDevice device;
    std::string page(introduction);
    for (const ComponentRow &row : components) {
        page.append("\n## ").append(row.name).append("\n");
        if (row.ops == nullptr) {
            page.append("\nNot in this build.\n");
            continue;
        }
        const Facts facts = facts_of(row);
        add_list(page, "UCI packages", facts.packages);
        add_list(page, "Snapshots", facts.snapshots);
        add_keys(page, "Keys", facts.update_keys);
        add_keys(page, "Keys told to satellites", facts.soap_keys);
    }
    return page;
}

} // namespace qorcfg
