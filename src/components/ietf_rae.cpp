#include "components/components.h"

#include "engine/uci_commit.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::array keys{"ra_enable"};

constexpr std::array options{
    Option{"enable", "ra_enable"},
};

int update(int job)
{
    QORCFG_LOG(" update rae");
    Document doc;
    doc.section("system", "rae").add(options);
    return commit(doc, "system", "rae", job);
}

void init()
{
    log_init("rae");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("rae");
}

} // namespace

const Operations ietf_rae{init, nullptr, register_};

} // namespace qorcfg
