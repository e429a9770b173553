#pragma once

#include "support/device_root.h"

namespace qorcfg::test {

/// Puts the shipped hook scripts into the device. They call the `qorctl` of this build.
void install_hook_scripts(const DeviceRoot &device);

} // namespace qorcfg::test
