#include "support/hook_scripts.h"

#include "platform/file.h"

#include <cstdlib>

namespace qorcfg::test {

void install_hook_script(const DeviceRoot &device, const std::string &name)
{
    constexpr std::size_t bound = std::size_t{1} << 20;
    const auto script = read_file(std::string(QORCFG_HOOKS) + "/" + name, bound);
    device.write_program("/etc/qorcfg.d/" + name, script.value_or(""));
}

void install_hook_scripts(const DeviceRoot &device)
{
    for (const char *name : {"init.sh", "commit.sh", "reload.sh", "nvram.sh"}) {
        install_hook_script(device, name);
    }
    ::setenv("QORCTL", QORCTL_PROGRAM, 1);
}

} // namespace qorcfg::test
