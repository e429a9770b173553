#include "core/change_queue.h"

#include "core/base/log.h"
#include "core/job_board.h"
#include "core/worker.h"
#include "platform/qor_platform.h"

#include <memory>

namespace qorcfg {

void ChangeQueue::handle(const ControlMessage &message)
{
    if (message.action != commit_action) {
        QORCFG_LOG(" recv set action %d", message.key_id);
        pending_.add({message.key_id, message.action});
    } else if (pending_.count() == 0) {
        QORCFG_LOG("No found config change !!");
    } else {
        commit();
    }
}

void ChangeQueue::commit()
{
    auto record = std::make_unique<JobRecord>();
    record->job = job_board().create();
    QORCFG_LOG(" recv commit action");
    if (config_commit() != 0) {
        QORCFG_LOG("NO.%d the store could not be made persistent", record->job);
    }
    record->count = pending_.count();
    record->changes = pending_.slots();
    pending_.clear();
    start_worker(std::move(record));
}

} // namespace qorcfg
