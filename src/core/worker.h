#pragma once

#include "core/pending_table.h"

#include <array>
#include <cstddef>
#include <memory>

namespace qorcfg {

/// What one commit hands to its worker: the announced changes, valid slots first, and the job
/// number.
struct JobRecord {
    std::array<PendingChange, pending_limit> changes{};
    std::size_t count = 0;
    int job = 0;
};

/// Does one job that the board has numbered: publishes "2", runs the SOAP callbacks and then the
/// update callbacks that the changed keys trigger, each once, then the commit hook, and publishes
/// "1" if no newer job exists ("3" for a job without changes). An exception of a callback is logged
/// and ends that callback only.
void run_job(const JobRecord &record);

/// Thread entry of a worker: takes over the `JobRecord` behind `record` and runs that job. The
/// thread ends detached, with the value 1.
void *create_event_pthread(void *record);

/// Starts a detached worker for a job that the board has numbered. False when no thread could be
/// had: that is logged, the job ends and its changes are lost.
bool start_worker(std::unique_ptr<JobRecord> record);

} // namespace qorcfg
