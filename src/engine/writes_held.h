#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <utility>

namespace qorcfg {

/// A commit that was held back.
struct HeldWrite {
    std::string package;  ///< the UCI package; empty for an NVRAM-side document
    std::string snapshot; ///< built-in path of the document's snapshot
};

/// While one lives, the engine's commits of this process return at once and touch no file: for
/// tools that run component code to look at it. `note`, where given, is told of each; only one that
/// has it may live at a time, and commits then come from its own thread.
class WritesHeld {
public:
    using Note = std::function<void(const HeldWrite &write)>;

    explicit WritesHeld(Note note = {}) : noted_(note != nullptr)
    {
        if (noted_) {
            note_ = std::move(note);
        }
        ++count_;
    }
    ~WritesHeld()
    {
        --count_;
        if (noted_) {
            note_ = nullptr;
        }
    }
    WritesHeld(const WritesHeld &) = delete;
    WritesHeld &operator=(const WritesHeld &) = delete;

    static bool now() { return count_ > 0; }
    /// Tells who holds back the writes of this one.
    static void tell(const HeldWrite &write)
    {
        if (note_) {
            note_(write);
        }
    }

private:
    static inline std::atomic<int> count_{0};
    static inline Note note_;
    bool noted_;
};

} // namespace qorcfg
