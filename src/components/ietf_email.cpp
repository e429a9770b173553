#include "components/components.h"

#include "components/text.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <array>
#include <cstddef>
#include <string>

namespace qorcfg {

namespace {

constexpr std::array keys{
    "email_notify",         "email_addr",        "email_smtp",          "email_port",
    "email_endis_auth",     "email_username",    "email_password",      "email_send_alert",
    "email_cfAlert_Select", "email_cfAlert_Day", "email_schedule_hour",
};

constexpr std::array status_options{
    Option{"enable", "email_notify"},
};

constexpr std::array account_options{
    Option{"to_email_address", "email_addr"}, Option{"smtp_server", "email_smtp"},
    Option{"smtp_port", "email_port"},        Option{"smtp_auth", "email_endis_auth"},
    Option{"username", "email_username"},     Option{"password", "email_password"},
};

constexpr std::array blocked_site_options{
    Option{"notify", "email_send_alert"},
};

constexpr std::array days{"sun", "mon", "tue", "wed", "thu", "fri", "sat"};
constexpr int hours_of_a_day = 24;

/// The day that the store names by its number, Sunday first; Sunday for any other number.
std::string day_name(const std::string &value)
{
    const auto day = static_cast<std::size_t>(number_of(value));
    return day < days.size() ? days.at(day) : days.front();
}

/// The full hour that the store names by its number; midnight for any other number.
std::string full_hour(const std::string &value)
{
    const int number = number_of(value);
    const int hour = number >= 0 && number < hours_of_a_day ? number : 0;
    std::string text = hour < 10 ? "0" : "";
    text += std::to_string(hour);
    return text + ":00";
}

constexpr std::array mailing_options{
    Option{"type", "email_cfAlert_Select"},
    Option{"day", "email_cfAlert_Day", day_name},
    Option{"time", "email_schedule_hour", full_hour},
};

int update(int job)
{
    QORCFG_LOG(" update email");
    // A choice with a 4 in it is the one that mails no log.
    const bool never = config_value("email_cfAlert_Select").find('4') != std::string::npos;
    Document doc;
    doc.optional_section("email", "status").add(status_options);
    doc.optional_section("email", "email_settings").add(account_options);
    doc.optional_section("email", "visit_blocked_site").add(blocked_site_options);
    doc.optional_section("email", "log").add_int("notify", never ? 0 : 1).add(mailing_options);
    return commit(doc, "email", "email", job);
}

void init()
{
    log_init("email");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("email");
}

} // namespace

const Operations ietf_email{init, nullptr, register_};

} // namespace qorcfg
