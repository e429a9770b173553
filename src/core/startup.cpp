#include "core/startup.h"

#include "core/base/log.h"
#include "core/base/registry.h"
#include "core/call_tables.h"
#include "core/guarded_call.h"

namespace qorcfg {

void run_startup_pass()
{
    CallTables calls(0);
    for (const KeyRecord &record : registry().records()) {
        calls.collect_updates(record);
    }
    for (const UpdateCall &call : calls.updates()) {
        QORCFG_LOG("Init call callback %d", call.key_id);
        guarded_call([&] { call.callback(call.key_id); });
    }
}

} // namespace qorcfg
