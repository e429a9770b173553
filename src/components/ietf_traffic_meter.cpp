#include "components/components.h"

#include "core/base/globals.h"
#include "core/base/predicates.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::array global_keys{
    "endis_traffic",       "ctrl_volumn_time",  "restart_counter_time",
    "traffic_restart_day", "traffic_block_all", "traffic_led",
};

constexpr std::array control_keys{
    "ctrl_volumn_time", "round_up",         "limit",
    "mon_volumn_limit", "left_time_volumn", "mon_time_limit",
};

constexpr std::array global_options{
    Option{"control_type", "ctrl_volumn_time"},
    Option{"restart_time", "restart_counter_time"},
    Option{"restart_day", "traffic_restart_day"},
    Option{"disable_internet", "traffic_block_all"},
    Option{"turn_led", "traffic_led"},
};

constexpr std::array volume_options{
    Option{"round_up_volume", "round_up"},
    Option{"volume_type", "limit"},
    Option{"monthly_limit", "mon_volumn_limit"},
    Option{"left_volume", "left_time_volumn"},
};

constexpr std::array time_options{
    Option{"monthly_limit", "mon_time_limit"},
    Option{"left_time", "left_time_volumn"},
};

int update_global(int job)
{
    QORCFG_LOG(" update traffic meter global");
    if (is_base == 0) {
        return 1;
    }
    // An access point is switched by the key named "0", which a store does not normally hold.
    const char *switch_key = is_ap_mode() != 0 ? "0" : "endis_traffic";
    Document doc;
    doc.section("trafficmeter", "global")
        .add("enable", config_value(switch_key))
        .add(global_options);
    return commit(doc, "trafficmeter", "global", job);
}

int update_control_type(int job)
{
    QORCFG_LOG(" update traffic meter ctrl type");
    if (is_base == 0) {
        return 1;
    }
    const bool by_volume = config_value("ctrl_volumn_time") == "0";
    // A name of its own for each section, so that the one not chosen stays as it is.
    const char *name = by_volume ? "volume_control" : "time_control";
    Document doc;
    Section section = doc.section("trafficmeter", name);
    if (by_volume) {
        section.add(volume_options);
    } else {
        section.add(time_options);
    }
    return commit(doc, "trafficmeter", name, job);
}

void init()
{
    log_init("traffic_meter");
    subscribe_all(global_keys, update_global);
    subscribe_all(control_keys, update_control_type);
}

void register_()
{
    log_register("traffic_meter");
}

} // namespace

const Operations ietf_traffic_meter{init, nullptr, register_};

} // namespace qorcfg
