#include "components/components.h"

#include "components/text.h"
#include "core/base/hooks.h"
#include "engine/document.h"
#include "platform/config_value.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr std::array outdoor_led_soap_configs{
    "led_light", "sync_btn", "led_schedule", "led_time_schedule", "Location",
};

/// A SOAP method and what the log calls it; the agent's name for one of them differs.
struct Method {
    const char *word;
    const char *log_name;
};

constexpr Method set_period{"SetLightingLEDOnPeriodByIndex", "SetLightingLEDOnPeriodByIndex"};
constexpr Method delete_period{"DeleteLightingLEDOnPeriodByIndex",
                               "DeleteLightingLEDOnPeriodByIndex"};
constexpr Method delete_all_periods{"DeleteLightingLEDOnAllPeriod", "DeleteLightingLEDOnPeriodAll"};

/// A setting that is told the same way whatever happened to it.
struct Setting {
    const char *key;
    Method method;
};

constexpr std::array<Setting, 4> plain_settings{{
    {"led_light", {"SetLightingLEDSettings", "SetLightingLEDSettings"}},
    {"sync_btn", {"SetHWSyncButtonStatus", "SetHWSyncButtonStatus"}},
    {"led_schedule", {"SetLightingLEDsOnBySchedule", "SetLightingLEDsOnBySchedule"}},
    {"Location", {"SetDeviceLocation", "SetDeviceLocation"}},
}};

/// What happened to a key, as the store's notifier numbers it.
enum Action : int { key_created = 0, key_removed = 1, key_changed = 2 };

void send(const Method &method)
{
    notify_soap_agent(method.word);
    QORCFG_LOG("send soap for %s", method.log_name);
}

/// Which removal the web interface meant: it names the device and the period, "<mac>-<index>", and
/// index 0 of a device without a first period stands for all of them.
const Method &deletion()
{
    const std::string named = cut<31>(config_value("mac_led_index"));
    const std::string mac = named.substr(0, named.find('-'));
    std::string index;
    if (!mac.empty() && mac.size() < named.size()) {
        index = named.substr(mac.size() + 1);
    }
    const bool first_is_empty = config_value("led_time_schedule_" + mac + "_1").empty();
    return first_is_empty && number_of(index) == 0 ? delete_all_periods : delete_period;
}

int tell_satellites(const ChangedKeys *changed, int action)
{
    QORCFG_LOG(" update update_outdoor_led_soap my action is %d", action);
    for (const Setting &setting : plain_settings) {
        if (changed_keys_contain(changed, setting.key) != 0) {
            send(setting.method);
        }
    }
    if (changed_keys_contain(changed, "led_time_schedule") != 0) {
        if (action == key_created || action == key_changed) {
            send(set_period);
        } else if (action == key_removed) {
            send(deletion());
        }
    }
    return 0;
}

void soap_init()
{
    log_init("outdoor_led");
    for (const char *key : outdoor_led_soap_configs) {
        QORCFG_LOG("%s subscribe for config %s", "ietf_outdoor_led", key);
        subscribe_soap(subscription_priority, tell_satellites, key);
    }
}

void register_()
{
    log_register("outdoor_led");
}

} // namespace

const Operations ietf_outdoor_led{nullptr, soap_init, register_};

} // namespace qorcfg
