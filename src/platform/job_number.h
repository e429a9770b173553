#pragma once

namespace qorcfg {

/// Job numbers run from 1 to this one and begin again at 1.
inline constexpr int last_job_number = 4097;

/// The number that follows `job`; 0, before the first job, is followed by 1.
constexpr int next_job_number(int job)
{
    return job >= last_job_number ? 1 : job + 1;
}

/// Whether `job` was numbered after `other`, counted the shorter way round the circle.
constexpr bool is_newer_job(int job, int other)
{
    const int ahead = ((job - other) % last_job_number + last_job_number) % last_job_number;
    return ahead >= 1 && ahead <= last_job_number / 2;
}

} // namespace qorcfg
