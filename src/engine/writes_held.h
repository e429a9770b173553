#pragma once

#include <atomic>

namespace qorcfg {

/// While one lives, the engine's commits of this process return at once and touch no file: for
/// tools that run component code to look at it.
class WritesHeld {
public:
    WritesHeld() { ++count_; }
    ~WritesHeld() { --count_; }
    WritesHeld(const WritesHeld &) = delete;
    WritesHeld &operator=(const WritesHeld &) = delete;

    static bool now() { return count_ > 0; }

private:
    static inline std::atomic<int> count_{0};
};

} // namespace qorcfg
