#include "core/base/predicates.h"

#include "platform/qor_platform.h"

namespace qorcfg {

int is_ap_mode()
{
    return config_match("ap_mode", "1") != 0 ? 1 : 0;
}

int is_factory_mode()
{
    return config_match("factory_mode", "1") != 0 ? 1 : 0;
}

} // namespace qorcfg
