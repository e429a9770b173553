#include "core/base/registry.h"

#include "core/base/log.h"
#include "platform/key_id.h"

#include <algorithm>
#include <new>
#include <string_view>

namespace qorcfg {

namespace {

template <typename Owners, typename Callback>
CallbackOwner find_owner(const Owners &owners, Callback callback)
{
    const auto known = std::find_if(owners.begin(), owners.end(),
                                    [&](const auto &each) { return each.callback == callback; });
    return known == owners.end() ? CallbackOwner() : known->owner;
}

} // namespace

// `what` names the kind of subscription in the warning.
KeyRecord *Registry::walk_to(std::int32_t key_id, const char *what)
{
    int count = 0;
    for (KeyRecord &record : records_) {
        if (++count >= warning_limit) {
            QORCFG_LOG("Too many %s %d (max %d)", what, count, warning_limit);
        }
        if (record.key_id == key_id) {
            return &record;
        }
    }
    return nullptr;
}

template <typename Callback>
void Registry::note_owner(Callback callback, std::vector<Owned<Callback>> &owners) const
{
    if (find_owner(owners, callback).number != 0) {
        return;
    }
    const std::string_view component = component_;
    const auto before = std::count_if(owners.begin(), owners.end(), [&](const auto &each) {
        return each.owner.component == component;
    });
    owners.push_back({callback, {component_, static_cast<int>(before) + 1}});
}

template <typename Callback>
std::int32_t Registry::add(const char *key, const char *what, Callback callback,
                           std::vector<Callback> KeyRecord::*list,
                           std::vector<Owned<Callback>> &owners)
{
    if (watcher_ && key != nullptr) {
        watcher_(key);
    }
    const std::int32_t key_id = config_key_id(key);
    KeyRecord *record = walk_to(key_id, what);
    try {
        note_owner(callback, owners);
        if (record != nullptr) {
            std::vector<Callback> &callbacks = record->*list;
            if (std::find(callbacks.begin(), callbacks.end(), callback) == callbacks.end()) {
                callbacks.push_back(callback);
            }
            return key_id;
        }
        KeyRecord added{key_id, {}, {}};
        (added.*list).push_back(callback);
        records_.push_back(std::move(added));
    } catch (const std::bad_alloc &) {
        return -1;
    }
    return key_id;
}

std::int32_t Registry::subscribe(const char *key, UpdateCallback callback)
{
    const std::int32_t key_id = config_key_id(key);
    QORCFG_LOG("Subscribe name %s spoint %d !!!!", key == nullptr ? "" : key, key_id);
    return add(key, "subscriptions", callback, &KeyRecord::normal, update_owners_);
}

std::int32_t Registry::subscribe_soap(const char *key, SoapCallback callback)
{
    return add(key, "soap subscriptions", callback, &KeyRecord::soap, soap_owners_);
}

const KeyRecord *Registry::find(std::int32_t key_id) const
{
    const auto record = std::find_if(records_.begin(), records_.end(),
                                     [&](const KeyRecord &each) { return each.key_id == key_id; });
    return record == records_.end() ? nullptr : &*record;
}

CallbackOwner Registry::owner_of(UpdateCallback callback) const
{
    return find_owner(update_owners_, callback);
}

CallbackOwner Registry::owner_of(SoapCallback callback) const
{
    return find_owner(soap_owners_, callback);
}

void Registry::clear()
{
    records_.clear();
    update_owners_.clear();
    soap_owners_.clear();
    component_ = "";
}

Registry &registry()
{
    static Registry instance;
    return instance;
}

std::int32_t subscribe_config(int /*priority*/, UpdateCallback callback, const char *key)
{
    return registry().subscribe(key, callback);
}

std::int32_t subscribe_soap(int /*priority*/, SoapCallback callback, const char *key)
{
    return registry().subscribe_soap(key, callback);
}

} // namespace qorcfg
