#pragma once

#include "core/base/changed_keys.h"
#include "core/base/log.h"

#include <span>

namespace qorcfg {

/// A group of settings that satellites mirror as one.
struct SoapGroup {
    std::span<const char *const> keys;
    const char *word;           ///< tells the SOAP agent which group it is
    void (*before)() = nullptr; ///< what is to be done before it is told
};

/// Tells the SOAP agent of the first group that has a changed key, and only of that one; the log
/// names it on behalf of `place`. Without such a group nothing is told.
void tell_changed_group(const ChangedKeys *keys, std::span<const SoapGroup> groups,
                        SourcePlace place = SourcePlace::here());

} // namespace qorcfg
