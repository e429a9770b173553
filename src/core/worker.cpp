#include "core/worker.h"

#include "core/base/explanation.h"
#include "core/base/globals.h"
#include "core/base/hooks.h"
#include "core/base/log.h"
#include "core/call_tables.h"
#include "core/explained_jobs.h"
#include "core/guarded_call.h"
#include "core/job_board.h"

#include <cstring>
#include <optional>
#include <pthread.h>
#include <utility>

namespace qorcfg {

namespace {

constexpr const char *commit_hook = "/etc/qorcfg.d/commit.sh";

void collect_calls(const JobRecord &record, CallTables &calls)
{
    for (std::size_t i = 0; i < record.count; ++i) {
        const PendingChange &change = record.changes[i];
        Explanation::key(change.key_id, change.action);
        if (const KeyRecord *key = registry().find(change.key_id)) {
            calls.collect_updates(*key);
            calls.collect_soap(*key, change.action);
        }
    }
}

template <typename Callback, typename Body> void run_call(Callback callback, Body body)
{
    Explanation::begin_callback(callback);
    guarded_call(body);
    Explanation::end_callback();
}

void run_calls(CallTables &calls, int job)
{
    for (SoapCall &call : calls.soap()) {
        const ChangedKeys keys = std::move(call.keys);
        run_call(call.callback, [&] { call.callback(&keys, call.action); });
    }
    for (const UpdateCall &call : calls.updates()) {
        run_call(call.callback, [&] { call.callback(job); });
    }
}

void run_commit_hook(int job)
{
    Explanation::begin_hook();
    Explanation::end_hook(run_hook_script(commit_hook, job));
}

} // namespace

void run_job(const JobRecord &record)
{
    const int job = record.job;
    if (record.count == 0) {
        QORCFG_LOG("  This is not a valid Action");
        job_board().end(job, status_invalid);
        return;
    }
    job_board().begin(job);
    std::optional<Explanation> explanation;
    if (explained_jobs().wanted()) {
        explanation.emplace(job);
    }
    QORCFG_LOG("NO.%d get config change number is  %d", job, static_cast<int>(record.count));
    guarded_call([&] {
        CallTables calls(job);
        collect_calls(record, calls);
        run_calls(calls, job);
    });
    job_board().callbacks_done(job);
    run_commit_hook(job);
    job_board().end(job, status_done);
    if (explanation) {
        guarded_call([&] { explained_jobs().add(explanation->finish()); });
    }
}

void *create_event_pthread(void *record_pointer)
{
    const JobRecord record = *std::unique_ptr<JobRecord>(static_cast<JobRecord *>(record_pointer));
    QORCFG_LOG(" NO.%d Start pthread !!!", record.job);
    run_job(record);
    QORCFG_LOG(" NO.%d Stop pthread !!!", record.job);
    pthread_detach(pthread_self());
    job_board().worker_gone();
    return reinterpret_cast<void *>(1); // NOLINT(performance-no-int-to-ptr)
}

bool start_worker(std::unique_ptr<JobRecord> record)
{
    const int job = record->job;
    job_board().worker_started();
    pthread_t thread{};
    const int error = pthread_create(&thread, nullptr, create_event_pthread, record.get());
    if (error != 0) {
        QORCFG_LOG("NO.%d create pthread error,info is：%s", job, std::strerror(error));
        job_board().worker_gone();
        job_board().abandon(job);
        return false;
    }
    record.release(); // NOLINT(bugprone-unused-return-value): the worker owns it now
    return true;
}

} // namespace qorcfg
