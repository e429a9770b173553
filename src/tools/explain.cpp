#include "tools/explain.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <ostream>

namespace qorcfg {

namespace {

std::string milliseconds(std::chrono::microseconds time)
{
    const std::string fraction = std::to_string(time.count() % 1000);
    return std::to_string(time.count() / 1000) + "." + std::string(3 - fraction.size(), '0') +
           fraction;
}

std::string lines_text(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " line" : " lines");
}

std::string action_text(int action)
{
    constexpr std::array words{"created", "removed", "changed"};
    const auto index = static_cast<std::size_t>(action);
    return index < words.size() ? words[index] : "action " + std::to_string(action);
}

std::string hook_text(const ProgramEnd &end)
{
    constexpr int signal_base = 128;
    if (end.error == ETIMEDOUT) {
        return "ended at its time bound";
    }
    if (end.error != 0) {
        return std::string("not run: ") + std::strerror(end.error);
    }
    if (end.status > signal_base) {
        return "signal " + std::to_string(end.status - signal_base);
    }
    return "exit status " + std::to_string(end.status);
}

std::string document_name(const ExplainedWrite &write)
{
    return write.package.empty() ? "NVRAM " + write.section : write.package + "." + write.section;
}

std::string outcome_text(const ExplainedWrite &write)
{
    switch (write.outcome) {
    case WriteOutcome::written:
        return write.line_count == 0 ? "no difference" : lines_text(write.line_count);
    case WriteOutcome::overtaken:
        return "a newer job has written it";
    case WriteOutcome::failed:
        break;
    }
    return "failed, nothing written";
}

void print_key(std::ostream &out, const ExplainedKey &key, KeyNames &names)
{
    const std::string name = names.of(key.id);
    out << "  " << (name.empty() ? "key " + std::to_string(key.id) : name) << ' '
        << action_text(key.action) << " -> ";
    const char *between = "";
    for (const std::string &callback : key.callbacks) {
        out << between << callback;
        between = ", ";
    }
    out << (key.callbacks.empty() ? "nobody" : "") << '\n';
}

void print_write(std::ostream &out, const ExplainedWrite &write)
{
    out << "    " << document_name(write) << ": " << outcome_text(write) << '\n';
    std::string_view rest = write.lines;
    std::size_t shown = 0;
    for (; !rest.empty(); ++shown) {
        const std::size_t end = std::min(rest.find('\n'), rest.size() - 1) + 1;
        out << "      " << rest.substr(0, end);
        rest.remove_prefix(end);
    }
    if (shown < write.line_count) {
        out << "      (" << lines_text(write.line_count - shown) << " not kept)\n";
    }
}

Json milliseconds_json(std::chrono::microseconds time)
{
    // The text keeps the number as short as it is.
    return Json::own(json_object_new_double_s(static_cast<double>(time.count()) / 1000,
                                              milliseconds(time).c_str()));
}

Json count_json(std::size_t count)
{
    return Json::integer(static_cast<std::int64_t>(count));
}

Json key_json(const ExplainedKey &key, KeyNames &names)
{
    Json object = Json::object();
    json_set(object.get(), "key", Json::string(names.of(key.id)));
    json_set(object.get(), "id", Json::integer(key.id));
    json_set(object.get(), "action", Json::integer(key.action));
    Json callbacks = Json::array();
    for (const std::string &callback : key.callbacks) {
        json_append(callbacks.get(), Json::string(callback));
    }
    json_set(object.get(), "callbacks", std::move(callbacks));
    return object;
}

Json callback_json(const ExplainedCallback &callback)
{
    Json object = Json::object();
    json_set(object.get(), "name", Json::string(callback.name));
    json_set(object.get(), "ms", milliseconds_json(callback.time));
    json_set(object.get(), "lines", count_json(callback.line_count()));
    return object;
}

} // namespace

void print_explanation(std::ostream &out, const ExplainedJob &job, KeyNames &names)
{
    out << "job " << job.job << ": " << milliseconds(job.time) << " ms, "
        << lines_text(job.line_count()) << "; hook script: " << hook_text(job.hook) << " after "
        << milliseconds(job.hook_time) << " ms\n";
    for (const ExplainedKey &key : job.keys) {
        print_key(out, key, names);
    }
    for (const ExplainedCallback &callback : job.callbacks) {
        out << "  " << callback.name << ": " << milliseconds(callback.time) << " ms\n";
        for (const ExplainedWrite &write : callback.writes) {
            print_write(out, write);
        }
    }
}

Json explanation_json(const ExplainedJob &job, KeyNames &names)
{
    Json keys = Json::array();
    for (const ExplainedKey &key : job.keys) {
        json_append(keys.get(), key_json(key, names));
    }
    Json callbacks = Json::array();
    for (const ExplainedCallback &callback : job.callbacks) {
        json_append(callbacks.get(), callback_json(callback));
    }
    Json hook = Json::object();
    json_set(hook.get(), "result", Json::string(hook_text(job.hook)));
    json_set(hook.get(), "ms", milliseconds_json(job.hook_time));
    Json object = Json::object();
    json_set(object.get(), "job", Json::integer(job.job));
    json_set(object.get(), "ms", milliseconds_json(job.time));
    json_set(object.get(), "lines", count_json(job.line_count()));
    json_set(object.get(), "keys", std::move(keys));
    json_set(object.get(), "callbacks", std::move(callbacks));
    json_set(object.get(), "hook", std::move(hook));
    return object;
}

} // namespace qorcfg
