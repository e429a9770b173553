#include "components/components.h"
#include "components/numbered_keys.h"
#include "components/text.h"

#include "core/base/hooks.h"
#include "engine/uci_commit.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr int max_rules = 128;

// The store's spelling.
constexpr std::array qoracl_configs{"enable_block_device", "new_device_statue_by_default",
                                    "access_control"};
constexpr std::array qoracl_soap_configs = qoracl_configs;
constexpr std::array qoracl_guest_sche_configs{"guest_schedule"};

constexpr std::array verdict_options{
    Option{"enabled", "enable_block_device", cut<1>},
    Option{"default", "new_device_statue_by_default", cut<5>},
};

constexpr std::array guest_options{
    Option{"wlg_enabled", "wlg1_endis_guestNet", cut<1>},
    Option{"wla_enabled", "wla1_endis_guestNet", cut<1>},
    Option{"guest_schedule", "guest_schedule", cut<7>},
};

/// Options of a rule, in the order of its fields.
constexpr std::array rule_options{"status", "mac", "conn_type", "order", "name", "log", "group"};

void add_rule(Document &doc, int number, const std::string &rule)
{
    const auto fields = first_fields<rule_options.size()>(split_at_single_blanks(rule));
    if (!fields) {
        return;
    }
    Section section = doc.section("acl", "acl_rule" + std::to_string(number - 1));
    for (std::size_t i = 0; i < rule_options.size(); ++i) {
        section.add(rule_options[i], (*fields)[i]);
    }
}

int update_access_list(int job)
{
    QORCFG_LOG(" update qoracl");
    Document doc;
    doc.section("acl", "acld").add(verdict_options);
    for_each_numbered_key("access_control", 1, [&](int number, const std::string &rule) {
        add_rule(doc, number, rule);
        return number < max_rules;
    });
    QORCFG_LOG("qoracl json output %s", json_compact_text(doc.get()).c_str());
    return commit(doc, "acl", "acld", job);
}

int update_guest_schedule(int job)
{
    QORCFG_LOG(" update qoracl_guest_sche");
    Document doc;
    doc.section("acl", "acl_group").add(guest_options);
    QORCFG_LOG("qoracl guest sche json output %s", json_compact_text(doc.get()).c_str());
    return commit(doc, "acl", "guest_sche", job);
}

int tell_satellites(const ChangedKeys *keys, int)
{
    QORCFG_LOG(" update qoracl_soap_update");
    if (any_key_changed(keys, qoracl_soap_configs)) {
        notify_soap_agent("AccessControl");
        QORCFG_LOG("qoracl send soap AccessControl");
    }
    return 0;
}

void init()
{
    log_init("qoracl");
    subscribe_all_by_name("ietf_qoracl", qoracl_configs, update_access_list);
}

void soap_init()
{
    log_init("qoracl_soap");
    subscribe_all_soap(qoracl_soap_configs, tell_satellites);
}

void register_()
{
    log_register("qoracl");
}

void init_guest_sche()
{
    log_init("qoracl_guest_sche");
    subscribe_all_by_name("ietf_qoracl_guest_sche", qoracl_guest_sche_configs,
                          update_guest_schedule);
}

void register_guest_sche()
{
    log_register("qoracl_guest_sche");
}

} // namespace

const Operations ietf_qoracl{init, soap_init, register_};
const Operations ietf_qoracl_guest_sche{init_guest_sche, nullptr, register_guest_sche};

} // namespace qorcfg
