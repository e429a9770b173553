#pragma once

#include <chrono>
#include <thread>

namespace qorcfg::test {

/// Waits until `condition` holds, at most `bound`. Whether it came to hold.
template <typename Condition>
bool wait_until(Condition condition, std::chrono::milliseconds bound = std::chrono::seconds(60))
{
    const auto deadline = std::chrono::steady_clock::now() + bound;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace qorcfg::test
