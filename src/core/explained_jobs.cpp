#include "core/explained_jobs.h"

#include "core/base/log.h"
#include "engine/json.h"
#include "platform/file.h"
#include "platform/file_calls.h"
#include "platform/path_root.h"

#include <cstring>
#include <unistd.h>

namespace qorcfg {

namespace {

bool exists(const char *path)
{
    return ::access(rooted(path).c_str(), F_OK) == 0;
}

Json count(std::size_t number)
{
    return Json::integer(static_cast<std::int64_t>(number));
}

template <typename Items, typename Convert> Json list_of(const Items &items, Convert convert)
{
    Json list = Json::array();
    for (const auto &item : items) {
        json_append(list.get(), convert(item));
    }
    return list;
}

Json json_of_key(const ExplainedKey &key)
{
    Json object = Json::object();
    json_set(object.get(), "id", Json::integer(key.id));
    json_set(object.get(), "action", Json::integer(key.action));
    json_set(object.get(), "callbacks", list_of(key.callbacks, Json::string));
    return object;
}

Json json_of_write(const ExplainedWrite &write)
{
    Json object = Json::object();
    json_set(object.get(), "package", Json::string(write.package));
    json_set(object.get(), "section", Json::string(write.section));
    json_set(object.get(), "outcome", Json::string(outcome_name(write.outcome)));
    json_set(object.get(), "line_count", count(write.line_count));
    json_set(object.get(), "lines", Json::string(write.lines));
    return object;
}

Json json_of_callback(const ExplainedCallback &callback)
{
    Json object = Json::object();
    json_set(object.get(), "name", Json::string(callback.name));
    json_set(object.get(), "us", Json::integer(callback.time.count()));
    json_set(object.get(), "writes", list_of(callback.writes, json_of_write));
    return object;
}

Json json_of_hook(const ExplainedJob &story)
{
    Json object = Json::object();
    json_set(object.get(), "status", Json::integer(story.hook.status));
    json_set(object.get(), "error", Json::integer(story.hook.error));
    json_set(object.get(), "us", Json::integer(story.hook_time.count()));
    return object;
}

std::string text_of(const ExplainedJob &story)
{
    const Json object = Json::object();
    json_set(object.get(), "job", Json::integer(story.job));
    json_set(object.get(), "us", Json::integer(story.time.count()));
    json_set(object.get(), "keys", list_of(story.keys, json_of_key));
    json_set(object.get(), "callbacks", list_of(story.callbacks, json_of_callback));
    json_set(object.get(), "hook", json_of_hook(story));
    return json_compact_text(object.get());
}

} // namespace

bool ExplainedJobs::wanted()
{
    if (exists(explain_switch)) {
        return true;
    }
    const std::lock_guard lock(mutex_);
    if (!stories_.empty()) {
        forget();
    }
    return false;
}

void ExplainedJobs::add(const ExplainedJob &story)
{
    std::string text = text_of(story);
    const std::lock_guard lock(mutex_);
    if (!exists(explain_file)) {
        stories_.clear(); // switched off and on again: what was removed does not come back
    }
    stories_.push_back(std::move(text));
    if (stories_.size() > kept_jobs) {
        stories_.pop_front();
    }
    publish();
    // Who switches it off removes the switch and then the file, which must not come back.
    if (!exists(explain_switch)) {
        forget();
    }
}

void ExplainedJobs::publish() const
{
    std::string text = "{\"jobs\": [";
    for (const std::string &story : stories_) {
        text += (&story == &stories_.front() ? "\n" : ",\n") + story;
    }
    text += "\n]}\n";
    constexpr mode_t private_mode = 0600;
    AtomicFile file(rooted(explain_file), private_mode, ".new");
    if (!file.write(text) || !file.commit()) {
        QORCFG_LOG("cannot write %s: %s", explain_file, std::strerror(file.error()));
    }
}

void ExplainedJobs::forget()
{
    stories_.clear();
    file_calls::unlink(rooted(explain_file).c_str());
}

ExplainedJobs &explained_jobs()
{
    static ExplainedJobs instance;
    return instance;
}

} // namespace qorcfg
