#include "components/components.h"

#include "components/numbered_keys.h"
#include "core/base/predicates.h"
#include "engine/systeminfo.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <array>
#include <string>
#include <string_view>

namespace qorcfg {

namespace {

constexpr std::array pool_keys{"ap_mode", "lan_dhcp", "dhcp_start", "dhcp_end"};
constexpr int max_reservations = 128;

std::string ignore_unless_served(const std::string &lan_dhcp)
{
    return lan_dhcp == "1" ? "0" : "1";
}

std::string state_or_first(const std::string &state)
{
    return state.empty() ? "apply_0" : cut<31>(state);
}

// The service's scripts take the last address for "limit", not a count.
constexpr std::array pool_options{
    Option{"start", "dhcp_start", cut<31>},
    Option{"limit", "dhcp_end", cut<31>},
    Option{"ignore", "lan_dhcp", ignore_unless_served},
    Option{"apply_state", "lan_apply", state_or_first},
};

Document pool_document()
{
    Document doc;
    if (doc.container("dhcp", named_sections) == nullptr) {
        return {};
    }
    // Whether there is a guest VLAN is looked up, but the guest pool is filled by other code.
    read_info_value("/tmp/cache/systeminfo/dgc_data.info", "dgc_func_have_guest_vlan");
    doc.section("dhcp", "guest");
    Section lan = doc.section("dhcp", "lan");
    if (is_ap_mode() == 1) {
        lan.add("ignore", "1");
    } else {
        lan.add("interface", systeminfo[lan_net_section].value)
            .add("leasetime", "86400")
            .add(pool_options);
    }
    return doc;
}

/// Adds the reservation "address MAC name", in which the name may hold blanks. False when the text
/// has no second or third part.
bool add_reservation(Document &doc, const std::string &value)
{
    const std::size_t first = value.find(' ');
    const std::size_t second = first == std::string::npos ? first : value.find(' ', first + 1);
    if (second == std::string::npos) {
        return false;
    }
    doc.append("host", numbered_sections)
        .add("ip", cut<31>(value.substr(0, first)))
        .add("mac", cut<31>(value.substr(first + 1, second - first - 1)))
        .add("name", cut<63>(value.substr(second + 1)));
    return true;
}

Document reservation_document()
{
    Document doc;
    json_object *hosts = doc.container("host", numbered_sections);
    if (hosts == nullptr) {
        return {};
    }
    // This list's marker is a text where others have a boolean.
    if (!json_add_string(json_element(hosts, 0), "alias-name", "true")) {
        doc.mark_incomplete();
    }
    bool whole = true;
    for_each_numbered_key("reservation", 1, [&](int number, const std::string &value) {
        whole = add_reservation(doc, value);
        return whole && number < max_reservations;
    });
    // A list that is not whole is not served in part: every reservation goes away.
    return whole ? std::move(doc) : Document();
}

Document hijack_document()
{
    Document doc;
    if (doc.container("dnsmasq", anonymous_sections) == nullptr) {
        return {};
    }
    doc.append("dnsmasq", anonymous_sections).add("dns_hijack", config_value("dns_hijack"));
    return doc;
}

int update_pool(int job)
{
    QORCFG_LOG(" update dhcp");
    return commit(pool_document(), "dhcp", "lan", job);
}

int update_reservations(int job)
{
    QORCFG_LOG("1111 update reservation");
    return commit(reservation_document(), "dhcp", "host", job);
}

int update_hijack(int job)
{
    QORCFG_LOG("update dns_hijack status");
    return commit(hijack_document(), "dhcp", "hijack", job);
}

void init()
{
    log_init("dhcp");
    subscribe_all(pool_keys, update_pool);
    // The stem stands for the numbered keys.
    subscribe_config(subscription_priority, update_reservations, "reservation");
    subscribe_config(subscription_priority, update_pool, "lan_apply");
    subscribe_config(subscription_priority, update_hijack, "dns_hijack");
}

void register_()
{
    log_register("dhcp");
}

} // namespace

const Operations ietf_dhcp{init, nullptr, register_};

} // namespace qorcfg
