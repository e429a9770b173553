#pragma once

#include "support/device_root.h"

namespace qorcfg::test {

/// Puts one of the shipped hook scripts into the device ("nvram.sh").
void install_hook_script(const DeviceRoot &device, const std::string &name);

/// Puts all of the shipped hook scripts into the device. They call the `qorctl` of this build.
void install_hook_scripts(const DeviceRoot &device);

} // namespace qorcfg::test
