#include "components/components.h"

#include "engine/uci_commit.h"

#include <array>

namespace qorcfg {

namespace {

constexpr std::array keys{"Device_name", "GUI_Region"};

constexpr std::array options{
    Option{"devicename", "Device_name", cut<127>},
    Option{"hostname", "Device_name", cut<127>},
    Option{"netbiosname", "Device_name", cut<127>},
    Option{"language", "GUI_Region", cut<127>},
};

int update(int job)
{
    QORCFG_LOG(" update device name");
    Document doc;
    doc.section("system", "system").add(options);
    return commit(doc, "systemconfig", "system", job);
}

void init()
{
    log_init("device name");
    subscribe_all(keys, update);
}

void register_()
{
    log_register("device name");
}

} // namespace

const Operations ietf_devname{init, nullptr, register_};

} // namespace qorcfg
