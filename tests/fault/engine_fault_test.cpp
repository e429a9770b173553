#include "apply/apply.h"
#include "core/base/globals.h"
#include "engine/document.h"
#include "engine/nvram_commit.h"
#include "engine/uci_commit.h"
#include "fault/fault_sweep.h"
#include "support/hook_scripts.h"

#include <csignal>
#include <iostream>

namespace qorcfg {
namespace {

using test::Fault;

/// What a job writes: two documents of one package and one of another, with all that shows a line
/// that was applied twice: lists and added sections.
struct Documents {
    const char *net;
    const char *more;
    const char *options;
    const char *nvram;
};

constexpr Documents first{
    R"({"t": {"s": {"a": "1", "l": ["1", "2"]}}, "r": [{"alias-name": false}, {"x": "1"}]})",
    R"({"m": {"m1": {"a": "1"}}})",
    R"({"o": {"p": {"a": "1", "b": "1"}}})",
    R"({"w": {"ath0": {"ssid": "one", "channel": "1"}}})",
};
constexpr Documents second{
    R"({"t": {"s": {"a": "1", "l": ["1", "2"]}, "u": {"l": ["1", "2"]}},
        "r": [{"alias-name": false}, {"x": "1"}, {"l": ["2", "3"]}, {"x": "3"}],
        "n": [{"alias-name": true}, {"y": "1"}]})",
    R"({"m": {"m2": {"a": "2", "l": ["4"]}}})",
    R"({"o": {"p": {"a": "2", "c": "1"}}, "q": [{"alias-name": false}, {"x": "1"}]})",
    R"({"w": {"ath0": {"ssid": "two", "channel": "1"}, "ath1": {"ssid": "one"}}})",
};

constexpr int start_up = 0; ///< in the place of a job number: everything is written

void write_documents(const Documents &documents, int job)
{
    const int trigger = job == start_up ? 1 : 0;
    pth_count = job;
    commit_uci_section(Document::parse(documents.net), "net", "part", trigger, job);
    commit_uci_section(Document::parse(documents.more), "net", "more", trigger, job);
    commit_uci_options(Document::parse(documents.options), "opt", "part", trigger, job);
    commit_nvram_document(Document::parse(documents.nvram), "wifi", trigger, job);
}

bool apply(int job)
{
    using Kind = BatchSelection::Kind;
    return apply_batches({job == start_up ? Kind::startup : Kind::job, job}, std::cerr);
}

/// The daemon's writes and its hook script's `qorctl apply`, in one process beside the test.
class EngineFaultTest : public testing::TestWithParam<int> {
protected:
    EngineFaultTest()
    {
        test::install_hook_script(device, "nvram.sh");
        EXPECT_EQ(test::run_aside([] { return write_and_apply(first, start_up); }), 0);
        expect_applied(first);
    }

    /// Writes the documents and applies what was written. 0 when all went well, as far as was told.
    static int write_and_apply(const Documents &documents, int job)
    {
        write_documents(documents, job);
        return apply(job) ? 0 : 1;
    }

    void expect_applied(const Documents &documents) const
    {
        const auto compact = [](const char *text) {
            return json_compact_text(Document::parse(text).get());
        };
        EXPECT_EQ(device.document("net", "part"), compact(documents.net));
        EXPECT_EQ(device.document("net", "more"), compact(documents.more));
        EXPECT_EQ(device.document("opt", "part"), compact(documents.options));
        EXPECT_EQ(device.nvram_document("wifi"), compact(documents.nvram));
        test::expect_packages_hold_the_documents(device);
        test::expect_nothing_left(device);
    }

    /// Changes the documents in a run that meets a fault, and does so again without one.
    void change(int job, const Fault &fault, const std::string &log) const
    {
        const int status =
            test::run_armed(fault, log, [&] { return write_and_apply(second, job); });
        EXPECT_TRUE(fault.stops() ? status == 128 + SIGKILL : status == 0 || status == 1) << status;
        test::expect_whole_snapshots(device);
        if (status == 0) {
            test::expect_nothing_left(device);
        }
        // A daemon that was killed begins anew.
        const int next = fault.stops() ? start_up : job + 1;
        const bool whole = test::run_aside([&] { return write_and_apply(second, next); }) == 0;
        EXPECT_TRUE(whole || test::put_away_cut_off_batches(device, fault));
        expect_applied(second);
    }

    test::DeviceRoot device;
};

TEST_P(EngineFaultTest, AJobAndItsApplyLoseNothingAndRepeatNothing)
{
    const test::SavedState saved(device);
    test::sweep_faults(saved, GetParam(),
                       [&](const Fault &fault, const std::string &log) { change(2, fault, log); });
}

TEST_P(EngineFaultTest, AStartUpPassAndItsApplyLoseNothingAndRepeatNothing)
{
    const test::SavedState saved(device);
    test::sweep_faults(saved, GetParam(), [&](const Fault &fault, const std::string &log) {
        change(start_up, fault, log);
    });
}

INSTANTIATE_TEST_SUITE_P(Shares, EngineFaultTest, testing::Range(0, test::fault_shares));

} // namespace
} // namespace qorcfg
