#pragma once

#include "core/base/explanation.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <string>

namespace qorcfg {

/// While this file exists, jobs are explained.
inline constexpr const char *explain_switch = "/tmp/cache/qorcfg/explain";
/// {"jobs": [...]}, the explained jobs in the order of their ends. It holds values of settings, so
/// its mode is 0600.
inline constexpr const char *explain_file = "/tmp/cache/qorcfg/explain.json";

/// The stories of the jobs that ended last, for whoever switched explaining on. Safe from any
/// thread.
class ExplainedJobs {
public:
    static constexpr std::size_t kept_jobs = 16;

    /// Whether a job that begins now is to be explained. Once it is not, what was kept goes.
    bool wanted();
    /// Adds the story of a job that has ended, and publishes it.
    void add(const ExplainedJob &story);

private:
    void publish() const;
    void forget();

    std::mutex mutex_;
    std::deque<std::string> stories_; // as JSON text: values are shared by no threads
};

/// The explained jobs of this process.
ExplainedJobs &explained_jobs();

} // namespace qorcfg
