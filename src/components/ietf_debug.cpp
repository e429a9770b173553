#include "components/components.h"

#include "core/base/globals.h"
#include "engine/uci_commit.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::array keys{"debug_boot_up", "debug_wanlan_capture"};

constexpr std::array options{
    Option{"debug_wanlan_capture", "debug_wanlan_capture"},
    Option{"debug_boot_up", "debug_boot_up"},
};

int update(int job)
{
    QORCFG_LOG(" update package debug");
    if (is_base == 0) {
        return 1;
    }
    Document doc;
    doc.section("debug", "configuration").add(options);
    return commit(doc, "debug", "configuration", job);
}

void init()
{
    log_init("debug");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("debug");
}

} // namespace

// The register routine stands in the second slot, so that enabling prints its line too.
const Operations ietf_debug{init, register_, nullptr};

} // namespace qorcfg
