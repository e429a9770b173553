#pragma once

#include "core/base/changed_keys.h"

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace qorcfg {

/// Recomputes what a component owns. Takes the job number (the key id in the start-up pass); the
/// result is ignored.
using UpdateCallback = int (*)(int job);

/// Tells satellites of changed settings. Takes the changed keys under which it is subscribed and
/// the action announced with the first of them; the result is ignored.
using SoapCallback = int (*)(const ChangedKeys *keys, int action);

/// The callbacks that one key id triggers, in order of subscription.
struct KeyRecord {
    std::int32_t key_id;
    std::vector<UpdateCallback> normal;
    std::vector<SoapCallback> soap;
};

/// Who subscribed a callback.
struct CallbackOwner {
    const char *component = ""; ///< name of its table row
    int number = 0; ///< among the component's callbacks of this kind, by first subscription, from 1
};

/// Which callbacks which key triggers. Filled while components are enabled, before any worker
/// exists; only read afterwards, so it has no lock. Nothing is ever removed.
class Registry {
public:
    /// Number of key records from which a subscription warns.
    static constexpr int warning_limit = 512;

    /// Callbacks that come in from now on belong to this component; the registry keeps the pointer.
    void begin_component(const char *name) { component_ = name; }
    /// Both add the callback to the key's list unless it is there already, and return the key id,
    /// or -1 without memory. Keys whose ids collide share one record.
    std::int32_t subscribe(const char *key, UpdateCallback callback);
    std::int32_t subscribe_soap(const char *key, SoapCallback callback);

    /// All records in order of first subscription.
    const std::vector<KeyRecord> &records() const { return records_; }
    /// The record of a key id, null when nobody subscribed to it.
    const KeyRecord *find(std::int32_t key_id) const;
    /// The component that was the first to subscribe the callback; nobody for one that is not
    /// known.
    CallbackOwner owner_of(UpdateCallback callback) const;
    CallbackOwner owner_of(SoapCallback callback) const;
    /// Forgets everything; for tests and tools that enable components one by one.
    void clear();
    /// Has `watcher` told the name of each key that is subscribed to from now on, which the records
    /// do not keep; null ends that. For tools.
    void watch(std::function<void(const char *key)> watcher) { watcher_ = std::move(watcher); }

private:
    template <typename Callback> struct Owned {
        Callback callback;
        CallbackOwner owner;
    };

    KeyRecord *walk_to(std::int32_t key_id, const char *what);
    template <typename Callback>
    std::int32_t add(const char *key, const char *what, Callback callback,
                     std::vector<Callback> KeyRecord::*list, std::vector<Owned<Callback>> &owners);
    template <typename Callback>
    void note_owner(Callback callback, std::vector<Owned<Callback>> &owners) const;

    std::vector<KeyRecord> records_;
    std::vector<Owned<UpdateCallback>> update_owners_;
    std::vector<Owned<SoapCallback>> soap_owners_;
    const char *component_ = "";
    std::function<void(const char *key)> watcher_;
};

/// The registry of this process.
Registry &registry();

/// Subscribes an update callback to a store key. The priority is carried by convention (10) and has
/// no effect. Returns the key id, or -1 without memory.
std::int32_t subscribe_config(int priority, UpdateCallback callback, const char *key);

/// The same for a SOAP callback.
std::int32_t subscribe_soap(int priority, SoapCallback callback, const char *key);

} // namespace qorcfg
