#pragma once

namespace qorcfg {

/// Job numbers run from 1 to this one and begin again at 1.
inline constexpr int last_job_number = 4097;

/// The number that follows `job`; 0, before the first job, is followed by 1.
constexpr int next_job_number(int job)
{
    return job >= last_job_number ? 1 : job + 1;
}

/// How many jobs have been numbered since `job`, up to `latest`; `job` is less than one round old.
constexpr int jobs_since(int job, int latest)
{
    return ((latest - job) % last_job_number + last_job_number) % last_job_number;
}

/// Whether `job` was numbered after `other`, counted the shorter way round the circle: for those
/// who do not know the latest job. It holds for jobs less than half a round apart.
constexpr bool is_newer_job(int job, int other)
{
    const int ahead = jobs_since(other, job);
    return ahead >= 1 && ahead <= last_job_number / 2;
}

/// The same for any two jobs of the last round, which ends with the job `latest`.
constexpr bool is_newer_job(int job, int other, int latest)
{
    return jobs_since(job, latest) < jobs_since(other, latest);
}

} // namespace qorcfg
