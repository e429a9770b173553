#pragma once

#include "support/device_root.h"

namespace qorcfg::test {

/// Lays the sample base unit with its component list and default settings, and switches diagnostics
/// off as on a device.
void lay_sample_device(const DeviceRoot &device);

} // namespace qorcfg::test
