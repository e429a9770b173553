#pragma once

#include "support/device_root.h"

#include <string>
#include <vector>

namespace qorcfg::bench {

/// Lays the sample device with its default settings, and switches diagnostics off as on a device.
void lay_sample_device(const test::DeviceRoot &device);

/// While it lives, output goes nowhere: the engine prints every line that it writes.
class SilentOutput {
public:
    SilentOutput();
    ~SilentOutput();
    SilentOutput(const SilentOutput &) = delete;
    SilentOutput &operator=(const SilentOutput &) = delete;

private:
    int output_;
    int errors_;
};

} // namespace qorcfg::bench
