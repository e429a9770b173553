#include "components/components.h"

#include "engine/uci_commit.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::array keys{"upnp_enable", "upnp_AdverTime", "upnp_TimeToLive"};

constexpr std::array options{
    Option{"enable_upnp", "upnp_enable"},
    Option{"notify_interval", "upnp_AdverTime"},
    Option{"time_to_live", "upnp_TimeToLive"},
};

int update(int job)
{
    Document doc;
    doc.optional_section("upnpd", "config").add(options);
    return commit(doc, "upnpd", "config", job);
}

void init()
{
    log_init("upnpd");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("upnpd");
}

} // namespace

const Operations ietf_upnpd{init, nullptr, register_};

} // namespace qorcfg
