#include "components/components.h"

#include "engine/uci_commit.h"
#include "platform/config_value.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::array keys{"force_https"};

int update(int job)
{
    QORCFG_LOG(" update lighttpd");
    Document doc;
    doc.section("system", "lighttpd").add_int("enable", config_value("force_https") == "1" ? 1 : 0);
    return commit(doc, "system", "lighttpd", job);
}

void init()
{
    log_init("lighttpd");
    subscribe_all(keys, update);
}

} // namespace

const Operations ietf_lighttpd{init, nullptr, nullptr};

} // namespace qorcfg
