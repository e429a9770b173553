#include "platform/config_value.h"

#include "platform/qor_platform.h"

#ifdef QORCFG_PLATFORM_EXTERNAL
#include <mutex>
#endif

namespace qorcfg {

std::string config_value(const char *key)
{
#ifdef QORCFG_PLATFORM_EXTERNAL
    // The device's library hands out one static buffer.
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
#endif
    const char *text = config_get(key);
    return text == nullptr ? "" : text;
}

} // namespace qorcfg
