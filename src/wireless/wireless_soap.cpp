#include "wireless/wireless_soap.h"

#include "core/base/hooks.h"

namespace qorcfg {

void tell_changed_group(const ChangedKeys *keys, std::span<const SoapGroup> groups,
                        SourcePlace place)
{
    for (const SoapGroup &group : groups) {
        if (!any_key_changed(keys, group.keys)) {
            continue;
        }
        if (group.before != nullptr) {
            group.before();
        }
        qorcfg_log(place, "soap sync wireless %s", group.word);
        notify_soap_agent(group.word);
        return;
    }
}

} // namespace qorcfg
