#include "tools/jobs.h"

#include "core/job_board.h"
#include "engine/new_json_util.h"
#include "platform/file.h"
#include "platform/job_number.h"
#include "platform/path_root.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>

namespace qorcfg {

namespace {

constexpr std::size_t file_bound = std::size_t{1} << 20;
constexpr std::chrono::milliseconds poll_pause{10};

std::string cannot_read_jobs()
{
    return "cannot read " + rooted(jobs_file) + ": " + std::strerror(errno);
}

std::string list_of(const std::vector<int> &jobs)
{
    std::string text;
    for (const int job : jobs) {
        text += (text.empty() ? "" : ", ") + std::to_string(job);
    }
    return text;
}

/// The running jobs that are `job` or older.
std::vector<int> left_up_to(int job, const JobsState &state)
{
    std::vector<int> left;
    std::copy_if(state.running.begin(), state.running.end(), std::back_inserter(left),
                 [&](int each) { return !is_newer_job(each, job, state.last); });
    return left;
}

/// A daemon begins to number anew when it starts, so its numbers then fall back.
bool started_anew(int seen, int last)
{
    return last != seen && (last == 0 || is_newer_job(seen, last));
}

} // namespace

std::optional<JobsState> read_jobs()
{
    const auto text = read_file(rooted(jobs_file), file_bound);
    if (!text) {
        return std::nullopt;
    }
    const Json document = parse_json(*text, JsonSyntax::strict);
    json_object *last = json_get_member(document.get(), "last");
    json_object *running = json_get_member(document.get(), "running");
    json_object *ended = json_get_member(document.get(), "ended");
    errno = EBADMSG;
    if (!is_json_integer(last) || !is_json_array(running) || !is_json_integer(ended)) {
        return std::nullopt;
    }
    JobsState state{json_object_get_int(last), {}, json_object_get_int(ended)};
    for (std::size_t i = 0; i < json_size(running); ++i) {
        json_object *job = json_element(running, i);
        if (!is_json_integer(job)) {
            return std::nullopt;
        }
        state.running.push_back(json_object_get_int(job));
    }
    return state;
}

char read_status()
{
    const auto text = read_file(rooted(status_file), file_bound);
    return text && !text->empty() ? text->front() : '\0';
}

const char *status_meaning(char status)
{
    if (status == '\0') {
        return "no job yet";
    }
    if (status == *status_done) {
        return "done";
    }
    if (status == *status_working) {
        return "working";
    }
    return status == *status_invalid ? "invalid job" : "unknown";
}

std::string wait_for_jobs(WaitClock::time_point deadline)
{
    auto state = read_jobs();
    if (!state) {
        return cannot_read_jobs();
    }
    const int job = state->last;
    for (;;) {
        const std::vector<int> left = left_up_to(job, *state);
        if (left.empty()) {
            return "";
        }
        if (WaitClock::now() >= deadline) {
            return "time is up, not ended: job " + list_of(left);
        }
        std::this_thread::sleep_for(poll_pause);
        state = read_jobs();
        if (!state) {
            return cannot_read_jobs();
        }
        if (started_anew(job, state->last)) {
            return "the daemon has been started anew, not known to have ended: job " +
                   list_of(left);
        }
    }
}

} // namespace qorcfg
