#pragma once

#include <condition_variable>
#include <map>
#include <mutex>
#include <string>

namespace qorcfg {

inline constexpr const char *status_file = "/tmp/cache/qorcfg/GUI_apply_result";
inline constexpr const char *jobs_file = "/tmp/cache/qorcfg/jobs.json";

/// Characters of the status file.
inline constexpr const char *status_done = "1";
inline constexpr const char *status_working = "2";
inline constexpr const char *status_invalid = "3";

/// What is known of the apply jobs, and the two files that tell others: the status file, one
/// character for the latest job, and jobs.json, {"last": latest job numbered, "running": [...],
/// "ended": last job ended}. Creating a job, beginning it and ending it exclude each other, so the
/// end of a job never overwrites the "2" of a newer one. Safe from any thread.
class JobBoard {
public:
    /// Publishes jobs.json as it is before the first job.
    void publish();
    /// Numbers a new job, which counts as running from now on. Returns its number.
    int create();
    /// Writes "2", unless a newer job has already published its end.
    void begin(int job);
    /// The job's callbacks have returned; its hook script may still run.
    void callbacks_done(int job);
    /// Ends the job: writes `status` if it is still the latest.
    void end(int job, const char *status);
    /// Ends a job that could not be started. It publishes nothing of its own; jobs that it has
    /// overtaken publish "1" once the last of them has ended.
    void abandon(int job);
    /// A worker thread is about to start, and has nothing left to do.
    void worker_started();
    void worker_gone();

    /// Waits until no job has callbacks left to run. True when no worker is left at all.
    bool wait_for_callbacks();

private:
    void remove(int job);
    void publish_locked() const;

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::map<int, bool> running_; // job: its callbacks have yet to return
    int workers_ = 0;
    bool working_ = false;          // the status file says "2"
    bool latest_abandoned_ = false; // nobody will publish the latest job's end
    int last_published_end_ = 0;
    int last_ended_ = 0;
};

/// The board of this process.
JobBoard &job_board();

} // namespace qorcfg
