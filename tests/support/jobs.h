#pragma once

#include "support/device_root.h"

#include <vector>

namespace qorcfg::test {

/// What the daemon publishes of its jobs.
struct Jobs {
    int last = 0;
    std::vector<int> running;
    int ended = 0;
};

/// Reads the device's jobs.json; zeros before there is one.
Jobs read_jobs(const DeviceRoot &device);

/// Whether no job runs.
bool ended_jobs(const DeviceRoot &device);

} // namespace qorcfg::test
