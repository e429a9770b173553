#include "core/job_board.h"

#include "core/base/globals.h"
#include "core/base/log.h"
#include "core/base/qorcfg_util.h"
#include "platform/file.h"
#include "platform/job_number.h"
#include "platform/path_root.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace qorcfg {

namespace {

void write_status(const char *status)
{
    write_status_file(rooted(status_file), status);
}

} // namespace

void JobBoard::publish()
{
    const std::lock_guard lock(mutex_);
    publish_locked();
}

void JobBoard::publish_locked() const
{
    std::string running;
    for (const auto &[job, callbacks_left] : running_) {
        running += (running.empty() ? "" : ", ") + std::to_string(job);
    }
    const std::string text = "{\"last\": " + std::to_string(pth_count.load()) + ", \"running\": [" +
                             running + "], \"ended\": " + std::to_string(last_ended_) + "}\n";
    constexpr mode_t mode = 0644;
    if (!replace_file(rooted(jobs_file), text, mode)) {
        QORCFG_LOG("cannot write %s: %s", jobs_file, std::strerror(errno));
    }
}

int JobBoard::create()
{
    const std::lock_guard lock(mutex_);
    const int job = next_job_number(pth_count);
    pth_count = job;
    running_[job] = true;
    latest_abandoned_ = false;
    publish_locked();
    return job;
}

void JobBoard::begin(int job)
{
    const std::lock_guard lock(mutex_);
    if (last_published_end_ == 0 || !is_newer_job(last_published_end_, job, pth_count)) {
        write_status(status_working);
        working_ = true;
    }
}

void JobBoard::callbacks_done(int job)
{
    const std::lock_guard lock(mutex_);
    if (const auto entry = running_.find(job); entry != running_.end()) {
        entry->second = false;
    }
    changed_.notify_all();
}

void JobBoard::end(int job, const char *status)
{
    const std::lock_guard lock(mutex_);
    if (job == pth_count) {
        write_status(status);
        working_ = false;
        last_published_end_ = job;
    }
    remove(job);
}

void JobBoard::abandon(int job)
{
    const std::lock_guard lock(mutex_);
    latest_abandoned_ = latest_abandoned_ || job == pth_count;
    remove(job);
}

void JobBoard::worker_started()
{
    const std::lock_guard lock(mutex_);
    ++workers_;
}

void JobBoard::worker_gone()
{
    const std::lock_guard lock(mutex_);
    --workers_;
    changed_.notify_all();
}

// Others wait for a job by jobs.json, so the status file is written before it.
void JobBoard::remove(int job)
{
    running_.erase(job);
    last_ended_ = job;
    // Older jobs leave their end to the latest one, which never ran.
    if (latest_abandoned_ && working_ && running_.empty()) {
        write_status(status_done);
        working_ = false;
    }
    publish_locked();
    changed_.notify_all();
}

bool JobBoard::wait_for_callbacks()
{
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] {
        return std::none_of(running_.begin(), running_.end(),
                            [](const auto &entry) { return entry.second; });
    });
    return workers_ == 0;
}

JobBoard &job_board()
{
    static JobBoard instance;
    return instance;
}

} // namespace qorcfg
