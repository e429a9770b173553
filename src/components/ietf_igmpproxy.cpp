#include "components/components.h"

#include "core/base/predicates.h"
#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <array>
#include <string>

namespace qorcfg {

namespace {

constexpr std::array keys{"ap_mode", "wan_endis_igmp", "force_igmp_version", "enable_bt_igmp"};

const char *forced_version()
{
    const std::string version = config_value("force_igmp_version");
    if (version == "1") {
        return "IGMPv2";
    }
    return version == "2" ? "IGMPv3" : "Auto";
}

int update(int job)
{
    QORCFG_LOG(" update igmpproxy");
    const bool access_point = is_ap_mode() == 1;
    const bool disabled = access_point || config_value("wan_endis_igmp") == "0";
    const bool bt_enabled = !access_point && config_value("enable_bt_igmp") == "1";
    Document doc;
    doc.section("igmpproxy", "igmpproxy")
        .add_int("disable", disabled ? 1 : 0)
        .add("igmpversion", access_point ? "Auto" : forced_version())
        .add_int("bt_enable", bt_enabled ? 1 : 0);
    return commit(doc, "igmpproxy", "igmpproxy", job);
}

void init()
{
    log_init("igmpproxy");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("igmpproxy");
}

} // namespace

const Operations ietf_igmpproxy{init, nullptr, register_};

} // namespace qorcfg
