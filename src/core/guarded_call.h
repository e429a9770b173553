#pragma once

#include "core/base/log.h"

#include <exception>

namespace qorcfg {

/// Runs `body`; an exception is logged and goes no further: one faulty callback must end neither
/// the daemon nor the other callbacks of its job.
template <typename Body> void guarded_call(Body body)
{
    try {
        body();
    } catch (const std::exception &error) {
        QORCFG_LOG("callback failed: %s", error.what());
    } catch (...) {
        QORCFG_LOG("callback failed");
    }
}

} // namespace qorcfg
