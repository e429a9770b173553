#include "support/hook_scripts.h"

#include "platform/file.h"

#include <cstdlib>

namespace qorcfg::test {

void install_hook_scripts(const DeviceRoot &device)
{
    constexpr std::size_t bound = std::size_t{1} << 20;
    for (const char *name : {"/init.sh", "/commit.sh", "/reload.sh", "/nvram.sh"}) {
        const auto script = read_file(std::string(QORCFG_HOOKS) + name, bound);
        device.write_program(std::string("/etc/qorcfg.d") + name, script.value_or(""));
    }
    ::setenv("QORCTL", QORCTL_PROGRAM, 1);
}

} // namespace qorcfg::test
