#pragma once

#include "core/base/component.h"

namespace qorcfg {

extern const Operations ietf_ddns;
extern const Operations ietf_debug;
extern const Operations ietf_devname;

} // namespace qorcfg
