#pragma once

#include "core/base/log.h"
#include "core/base/registry.h"

namespace qorcfg {

/// The entry routines of a component; null where it has none. Enabling a component calls the first
/// two; the third is only there to be called by hand.
struct Operations {
    void (*init)();
    void (*soap_init)();
    void (*register_)();
};

/// Every subscription carries this priority.
inline constexpr int subscription_priority = 10;

/// The line that a component's init begins with: "init() - Initializing %s".
inline void log_init(const char *log_name, SourcePlace place = SourcePlace::here())
{
    qorcfg_log(place, "init() - Initializing %s", log_name);
}

/// The line of a component's register routine: "register() -  %s", with two blanks.
inline void log_register(const char *log_name, SourcePlace place = SourcePlace::here())
{
    qorcfg_log(place, "register() -  %s", log_name);
}

/// Subscribes an update callback to each of `keys` (a range of key names), in order.
template <typename Keys> void subscribe_all(const Keys &keys, UpdateCallback callback)
{
    for (const char *key : keys) {
        subscribe_config(subscription_priority, callback, key);
    }
}

/// `subscribe_all` that names each key first, on behalf of the component `component`:
/// "%s subscribe for config %s".
template <typename Keys>
void subscribe_all_by_name(const char *component, const Keys &keys, UpdateCallback callback,
                           SourcePlace place = SourcePlace::here())
{
    for (const char *key : keys) {
        qorcfg_log(place, "%s subscribe for config %s", component, key);
        subscribe_config(subscription_priority, callback, key);
    }
}

/// Subscribes a SOAP callback to each of `keys`, in order.
template <typename Keys> void subscribe_all_soap(const Keys &keys, SoapCallback callback)
{
    for (const char *key : keys) {
        subscribe_soap(subscription_priority, callback, key);
    }
}

} // namespace qorcfg
