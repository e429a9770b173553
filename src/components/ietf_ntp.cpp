#include "components/components.h"

#include "core/base/globals.h"
#include "core/base/hooks.h"
#include "engine/uci_commit.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::array keys{
    "endis_ntp", "ntp_server_type",     "manual_ntp_server",
    "time_zone", "schedule_apply_flag", "ntpadjust",
};

constexpr std::array soap_keys{"time_zone", "ntpadjust", "ntp_hidden_select"};

constexpr std::array ntp_options{
    Option{"enable", "endis_ntp"},
    Option{"server_mode", "ntp_server_type"},
    Option{"server1", "manual_ntp_server"},
};

constexpr std::array timezone_options{
    Option{"timezone", "time_zone"},
    Option{"schedule_apply_flag", "schedule_apply_flag"},
};

constexpr std::array daylight_options{
    Option{"daylight_enable", "ntpadjust"},
};

int update(int job)
{
    QORCFG_LOG(" update ntp");
    Document doc;
    doc.optional_section("system", "ntp").add(ntp_options);
    doc.optional_section("system", "systemtimezone").add(timezone_options);
    // The user's zone travels in "systemtimezone"; daylight saving counts from UTC everywhere.
    doc.optional_section("system", "daylight")
        .add(daylight_options)
        .add_int("isdst", 0)
        .add("timezone", "UTC");
    return commit(doc, "system", "ntp", job);
}

int tell_satellites(const ChangedKeys *changed, int /*action*/)
{
    if (any_key_changed(changed, soap_keys) && is_base != 0) {
        notify_soap_agent("SetNTP");
    }
    return 0;
}

void init()
{
    log_init("ntp");
    subscribe_all(keys, update);
}

void soap_init()
{
    log_init("ntp");
    subscribe_all_soap(soap_keys, tell_satellites);
}

void register_()
{
    log_register("ntp");
}

} // namespace

const Operations ietf_ntp{init, soap_init, register_};

} // namespace qorcfg
