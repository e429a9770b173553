#pragma once

namespace qorcfg {

/// 1 when the device runs as an access point (store key "ap_mode" is "1"), else 0.
int is_ap_mode();

/// 1 when the device is in factory mode (store key "factory_mode" is "1"), else 0.
int is_factory_mode();

} // namespace qorcfg
