#include "core/base/explanation.h"

#include <algorithm>
#include <new>

namespace qorcfg {

namespace {

// A job is one thread, from its callbacks down to the engine.
thread_local Explanation *of_this_thread = nullptr;

using Clock = std::chrono::steady_clock;

std::chrono::microseconds since(Clock::time_point begin)
{
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
}

std::string name_of(const CallbackOwner &owner, const char *kind)
{
    return std::string(owner.component) + " " + kind + " #" + std::to_string(owner.number);
}

} // namespace

const char *outcome_name(WriteOutcome outcome)
{
    switch (outcome) {
    case WriteOutcome::written:
        return "written";
    case WriteOutcome::overtaken:
        return "overtaken";
    case WriteOutcome::failed:
        break;
    }
    return "failed";
}

std::size_t ExplainedCallback::line_count() const
{
    std::size_t sum = 0;
    for (const ExplainedWrite &write : writes) {
        sum += write.line_count;
    }
    return sum;
}

std::size_t ExplainedJob::line_count() const
{
    std::size_t sum = 0;
    for (const ExplainedCallback &callback : callbacks) {
        sum += callback.line_count();
    }
    return sum;
}

std::string callback_name(UpdateCallback callback)
{
    return name_of(registry().owner_of(callback), "update");
}

std::string callback_name(SoapCallback callback)
{
    return name_of(registry().owner_of(callback), "soap");
}

Explanation::Explanation(int job)
{
    story_.job = job;
    of_this_thread = this;
}

Explanation::~Explanation()
{
    of_this_thread = nullptr;
}

template <typename Note> void Explanation::note(Note note)
{
    if (of_this_thread == nullptr) {
        return;
    }
    try {
        note(*of_this_thread);
    } catch (const std::bad_alloc &) {
        // Explaining must not cost the job.
    }
}

void Explanation::key(std::int32_t id, int action)
{
    note([&](Explanation &own) {
        ExplainedKey key{id, action, {}};
        if (const KeyRecord *record = registry().find(id)) {
            const auto add = [&](auto callback) {
                if (callback != nullptr) {
                    key.callbacks.push_back(callback_name(callback));
                }
            };
            std::for_each(record->soap.begin(), record->soap.end(), add);
            std::for_each(record->normal.begin(), record->normal.end(), add);
        }
        own.story_.keys.push_back(std::move(key));
    });
}

void Explanation::add_callback(std::string name)
{
    story_.callbacks.push_back({std::move(name), std::chrono::microseconds(0), {}});
    begin_ = Clock::now();
}

void Explanation::begin_callback(UpdateCallback callback)
{
    note([&](Explanation &own) { own.add_callback(callback_name(callback)); });
}

void Explanation::begin_callback(SoapCallback callback)
{
    note([&](Explanation &own) { own.add_callback(callback_name(callback)); });
}

void Explanation::end_callback()
{
    note([](Explanation &own) {
        if (!own.story_.callbacks.empty()) {
            own.story_.callbacks.back().time = since(own.begin_);
        }
    });
}

std::string_view Explanation::let_in(std::string_view lines)
{
    std::size_t kept = 0;
    while (lines_left_ > 0) {
        const std::size_t end = lines.find('\n', kept);
        if (end == std::string_view::npos || end + 1 - kept > bytes_left_) {
            break;
        }
        bytes_left_ -= end + 1 - kept;
        --lines_left_;
        kept = end + 1;
    }
    return lines.substr(0, kept);
}

void Explanation::write(std::string_view package, std::string_view section, WriteOutcome outcome,
                        std::string_view lines)
{
    note([&](Explanation &own) {
        if (!own.story_.callbacks.empty()) {
            const auto count = std::count(lines.begin(), lines.end(), '\n');
            own.story_.callbacks.back().writes.push_back(
                {std::string(package), std::string(section), outcome,
                 static_cast<std::size_t>(count), std::string(own.let_in(lines))});
        }
    });
}

void Explanation::begin_hook()
{
    note([](Explanation &own) { own.begin_ = Clock::now(); });
}

void Explanation::end_hook(const ProgramEnd &end)
{
    note([&](Explanation &own) {
        own.story_.hook = end;
        own.story_.hook_time = since(own.begin_);
    });
}

const ExplainedJob &Explanation::finish()
{
    story_.time = since(job_begin_);
    return story_;
}

} // namespace qorcfg
