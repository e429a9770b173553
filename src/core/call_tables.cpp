#include "core/call_tables.h"

#include "core/base/log.h"

#include <algorithm>

namespace qorcfg {

namespace {

template <typename Calls, typename Callback> auto find_call(Calls &calls, Callback callback)
{
    return std::find_if(calls.begin(), calls.end(),
                        [&](const auto &call) { return call.callback == callback; });
}

} // namespace

bool CallTables::has_room(std::size_t used, std::size_t limit) const
{
    if (used < limit) {
        return true;
    }
    QORCFG_LOG("Too many callbacks in job %d", job_);
    return false;
}

void CallTables::collect_updates(const KeyRecord &record)
{
    for (const UpdateCallback callback : record.normal) {
        if (callback != nullptr && find_call(updates_, callback) == updates_.end() &&
            has_room(updates_.size(), update_limit)) {
            updates_.push_back({record.key_id, callback});
        }
    }
}

void CallTables::collect_soap(const KeyRecord &record, int action)
{
    for (const SoapCallback callback : record.soap) {
        if (callback == nullptr) {
            continue;
        }
        auto call = find_call(soap_, callback);
        if (call == soap_.end()) {
            if (!has_room(soap_.size(), soap_limit)) {
                continue;
            }
            soap_.push_back({ChangedKeys(), action, callback});
            call = std::prev(soap_.end());
        }
        call->keys.append(record.key_id);
    }
}

} // namespace qorcfg
