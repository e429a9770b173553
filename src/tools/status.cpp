#include "tools/status.h"

#include "engine/json.h"
#include "tools/explain.h"
#include "tools/jobs.h"

#include <ostream>

namespace qorcfg {

namespace {

std::string status_text(char status)
{
    return status == '\0' ? "" : std::string(1, status);
}

std::string in_words(char status, const std::optional<JobsState> &jobs)
{
    std::string text = "status ";
    text += status == '\0' ? "-" : status_text(status);
    text += std::string(" (") + status_meaning(status) + ")";
    if (!jobs) {
        return text + ", jobs not known";
    }
    text += ", last job " + std::to_string(jobs->last) + ", running";
    for (const int job : jobs->running) {
        text += ' ';
        text += std::to_string(job);
    }
    return text + (jobs->running.empty() ? " none" : "") + ", last ended " +
           std::to_string(jobs->ended);
}

/// Without explained jobs nothing is added.
void add_explained(json_object *object, KeyNames &names)
{
    const Explanations read = read_explanations();
    if (!read.error.empty()) {
        json_set(object, "explain_error", Json::string(read.error));
    }
    if (read.jobs.empty()) {
        return;
    }
    Json jobs = Json::array();
    for (const ExplainedJob &job : read.jobs) {
        json_append(jobs.get(), explanation_json(job, names));
    }
    json_set(object, "explained", std::move(jobs));
}

std::string as_json(char status, const std::optional<JobsState> &jobs, KeyNames &names)
{
    const Json object = Json::object();
    json_set(object.get(), "status", Json::string(status_text(status)));
    json_set(object.get(), "meaning", Json::string(status_meaning(status)));
    if (jobs) {
        Json running = Json::array();
        for (const int job : jobs->running) {
            json_append(running.get(), Json::integer(job));
        }
        json_set(object.get(), "last", Json::integer(jobs->last));
        json_set(object.get(), "running", std::move(running));
        json_set(object.get(), "ended", Json::integer(jobs->ended));
    }
    add_explained(object.get(), names);
    return json_compact_text(object.get());
}

} // namespace

std::string status_line(bool json, KeyNames &names)
{
    const auto jobs = read_jobs();
    const char status = read_status();
    if (!jobs && status == '\0') {
        return "";
    }
    return json ? as_json(status, jobs, names) : in_words(status, jobs);
}

void watch_status(std::ostream &out, bool json, const std::function<bool()> &stop,
                  const std::function<void()> &pause)
{
    std::string printed;
    KeyNames names;
    while (out) {
        if (std::string line = status_line(json, names); !line.empty() && line != printed) {
            out << line << std::endl;
            printed = std::move(line);
        }
        if (stop()) {
            return;
        }
        pause();
    }
}

} // namespace qorcfg
