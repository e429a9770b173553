#pragma once

#include "fault/fault.h"
#include "support/device_root.h"
#include "support/forked_process.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#ifndef FAULT_STRIDE
#define FAULT_STRIDE 1 // builds with sanitizers are slow and take one fault of several
#endif

namespace qorcfg::test {

/// The state of a scratch device, which it can be set back to. No program may be at work there.
class SavedState {
public:
    explicit SavedState(const DeviceRoot &device);
    ~SavedState();
    SavedState(const SavedState &) = delete;
    SavedState &operator=(const SavedState &) = delete;

    void restore() const;
    /// Where armed processes tell their calls.
    std::string log() const { return folder_ + "/calls"; }

private:
    const DeviceRoot &device_;
    std::string folder_;
};

/// As many tests share the faults of one scenario, so that they can run beside each other.
constexpr int fault_shares = 5;

/// Runs `round(fault, log)` from the saved state, first without a fault, to see where faults can
/// come, and then with each of this share of them. Every one must come. Ends at the first failure.
template <typename Round> void sweep_faults(const SavedState &saved, int share, Round round)
{
    saved.restore();
    round(Fault{}, saved.log());
    const CallLog measured(saved.log());
    const std::vector<Fault> faults = measured.faults();
    constexpr std::size_t shares = fault_shares;
    ASSERT_GE(faults.size(), shares) << measured.text();
    constexpr std::size_t few = 100;
    const std::size_t stride = faults.size() > few ? FAULT_STRIDE : 1;
    for (std::size_t i = static_cast<std::size_t>(share) * stride; i < faults.size();
         i += shares * stride) {
        saved.restore();
        round(faults[i], saved.log());
        const CallLog log(saved.log());
        EXPECT_TRUE(log.met()) << "call " << faults[i].call << " was not reached";
        ASSERT_FALSE(testing::Test::HasFailure()) << log.text();
    }
}

/// Standard output and error of this process lead nowhere from now on.
void print_nothing();

/// Runs `body`, which gives the exit status, in a process of its own that is armed and prints
/// nothing. Its exit status, 128 + SIGKILL where it was stopped.
template <typename Body> int run_armed(const Fault &fault, const std::string &log, Body body)
{
    return end_of(start_process([&] {
        print_nothing();
        arm(fault, log);
        return body();
    }));
}
/// The same without arming.
template <typename Body> int run_aside(Body body)
{
    return end_of(start_process([&] {
        print_nothing();
        return body();
    }));
}

/// Every snapshot of the device is a whole document.
void expect_whole_snapshots(const DeviceRoot &device);
/// The packages and settings files hold what the snapshots say, nothing twice.
void expect_packages_hold_the_documents(const DeviceRoot &device);
/// No batch file waits and no temporary is left, neither with the batches nor with the packages.
void expect_nothing_left(const DeviceRoot &device);
/// Removes the batches that were put aside because their last line is cut off. Only a stop after
/// half of a write may leave one; whether there was one.
bool put_away_cut_off_batches(const DeviceRoot &device, const Fault &fault);

} // namespace qorcfg::test
