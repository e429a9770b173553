#include "components/components.h"

#include "core/base/globals.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr std::array keys{
    "everyday",
    "schedule_days_to_block",
    "schedule_start_block_time",
    "schedule_end_block_time",
};

/// A day's option and the digit by which the store lists the day.
struct Day {
    const char *option;
    char digit;
};

constexpr std::array<Day, 7> days{{
    {"sun", '0'},
    {"mon", '1'},
    {"tue", '2'},
    {"wed", '3'},
    {"thu", '4'},
    {"fri", '5'},
    {"sat", '6'},
}};

/// A span that ends with the day is closed a minute early, since no clock ever shows 24:00.
std::string end_within_the_day(const std::string &value)
{
    return value.find("24:") == std::string::npos ? value : "23:59";
}

constexpr std::array time_options{
    Option{"start_time", "schedule_start_block_time"},
    Option{"end_time", "schedule_end_block_time", end_within_the_day},
};

int update(int job)
{
    QORCFG_LOG(" update block schedule");
    if (is_base == 0) {
        return 1;
    }
    const std::string chosen = config_value("schedule_days_to_block");
    const bool everyday = chosen == "everyday";
    Document doc;
    Section section = doc.section("schedule", "block_sched");
    section.add("everyday", everyday ? "1" : "0");
    for (const Day &day : days) {
        const bool blocked = everyday || chosen.find(day.digit) != std::string::npos;
        section.add(day.option, blocked ? "1" : "0");
    }
    section.add(time_options);
    return commit(doc, "schedule", "block_sched", job);
}

void init()
{
    log_init("schedule");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("schedule");
}

} // namespace

const Operations ietf_schedule{init, nullptr, register_};

} // namespace qorcfg
