#pragma once

#include "core/base/registry.h"
#include "platform/child.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Why a job writes what it writes.
namespace qorcfg {

/// What became of a document that a callback handed to the engine.
enum class WriteOutcome {
    written,   ///< its lines, which may be none, are in the batch file
    overtaken, ///< a newer job had written it already
    failed     ///< nothing was changed
};

/// Its name in explain.json.
const char *outcome_name(WriteOutcome outcome);

/// One document of a callback.
struct ExplainedWrite {
    std::string package; ///< the UCI package; empty for an NVRAM-side document
    std::string section; ///< its section, or the name of the NVRAM-side document
    WriteOutcome outcome = WriteOutcome::written;
    std::size_t line_count = 0; ///< lines in the batch file
    std::string lines;          ///< the first of them, as far as the job's bound lets them in
};

/// An announced key and the callbacks that it triggers ("ietf_ddns update #1").
struct ExplainedKey {
    std::int32_t id = 0;
    int action = 0;
    std::vector<std::string> callbacks;
};

/// One callback that the job ran.
struct ExplainedCallback {
    std::string name;
    std::chrono::microseconds time{0};
    std::vector<ExplainedWrite> writes;

    std::size_t line_count() const;
};

/// Everything that is told of one job.
struct ExplainedJob {
    int job = 0;
    std::chrono::microseconds time{0}; ///< from its status "2" to its end
    std::vector<ExplainedKey> keys;
    std::vector<ExplainedCallback> callbacks;
    ProgramEnd hook;
    std::chrono::microseconds hook_time{0};

    std::size_t line_count() const;
};

/// How a callback is called where people read of it: "ietf_ddns update #1".
std::string callback_name(UpdateCallback callback);
std::string callback_name(SoapCallback callback);

/// Collects the story of a job. While one lives it belongs to its thread; the static functions add
/// to it, and do nothing in a thread that has none. What there is no memory for is left out: the
/// job goes on.
class Explanation {
public:
    /// Lines of all documents of a job together that are kept; the others are only counted.
    static constexpr std::size_t kept_lines = 200;
    static constexpr std::size_t kept_bytes = 16384;

    /// The job's time counts from here.
    explicit Explanation(int job);
    ~Explanation();
    Explanation(const Explanation &) = delete;
    Explanation &operator=(const Explanation &) = delete;

    /// An announced key.
    static void key(std::int32_t id, int action);
    /// Around each callback; what the engine is handed in between belongs to it.
    static void begin_callback(UpdateCallback callback);
    static void begin_callback(SoapCallback callback);
    static void end_callback();
    /// What became of a document, and the lines that came of it.
    static void write(std::string_view package, std::string_view section, WriteOutcome outcome,
                      std::string_view lines = {});
    /// Around the hook script.
    static void begin_hook();
    static void end_hook(const ProgramEnd &end);

    /// The story so far; the job's time ends here.
    const ExplainedJob &finish();

private:
    using Clock = std::chrono::steady_clock;

    template <typename Note> static void note(Note note);
    void add_callback(std::string name);
    std::string_view let_in(std::string_view lines);

    ExplainedJob story_;
    Clock::time_point job_begin_ = Clock::now();
    Clock::time_point begin_ = job_begin_; // of the callback or the hook script
    std::size_t lines_left_ = kept_lines;
    std::size_t bytes_left_ = kept_bytes;
};

} // namespace qorcfg
