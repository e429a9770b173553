#include "fault/fault_sweep.h"
#include "platform/key_id.h"
#include "support/daemon.h"
#include "support/golden_case.h"
#include "support/nvram_wireless_device.h"
#include "support/sample_device.h"
#include "support/wait.h"

#include <algorithm>
#include <csignal>
#include <filesystem>

namespace qorcfg {
namespace {

using test::Fault;
using test::FaultKind;
using test::wait_until;

/// The daemon starts, which runs the start-up hook, and then does a job; the shipped hook scripts
/// apply what it writes.
class DaemonFaultTest : public testing::TestWithParam<int> {
protected:
    DaemonFaultTest()
    {
        test::lay_sample_device(device_);
        daemon_.install_hooks();
        daemon_.list_components({"ietf_dhcp", "nvram_wireless"});
        daemon_.start();
        EXPECT_EQ(daemon_.stop().status, 0);
        // The next start makes the sections of the live package once more.
        EXPECT_TRUE(std::filesystem::remove(device_.path("/tmp/.uci/wireless")));
    }

    void change_settings() const
    {
        device_.set({{"lan_dhcp", "0"},
                     {"reservation1", "192.0.2.5 02:00:5e:00:53:01 my pc"},
                     {"dns_hijack", "1"},
                     {"wl_ssid", "Other"}});
    }

    /// Announces what `change_settings` changes, commits it, and waits for the job's end.
    void commit()
    {
        const std::size_t hooks = daemon_.hook_calls().size() + 1;
        for (const char *key : {"lan_dhcp", "reservation", "dns_hijack", "wl_ssid"}) {
            daemon_.send("2:" + std::to_string(config_key_id(key)));
        }
        daemon_.send("3:0");
        ASSERT_TRUE(wait_until([&] { return daemon_.is_idle(hooks); }));
    }

    /// A start and a commit, by programs of which one may be armed.
    void start_and_commit()
    {
        const std::size_t hooks = daemon_.hook_calls().size() + 1;
        daemon_.launch();
        ASSERT_TRUE(wait_until([&] { return daemon_.is_idle(hooks); }));
        change_settings();
        if (daemon_.process().running()) {
            ASSERT_TRUE(wait_until([&] { return daemon_.accepts(); }));
            commit();
        }
        test::expect_whole_snapshots(device_);
    }

    /// The documents are those of the first call, and what was applied are the documents.
    void expect_settled()
    {
        test::Files documents;
        for (const char *folder : {"/tmp/cache/qorcfg/ucicfg.d", "/tmp/cache/qorcfg/nvramcfg.d"}) {
            documents.merge(test::files_in(device_.path(folder)));
        }
        auto sections = test::NvramWirelessDevice::live_sections();
        // A section is made first and named then; a daemon that is killed in between leaves it.
        std::erase_if(sections, [](const std::string &each) { return each.rfind("cfg", 0) == 0; });
        std::sort(sections.begin(), sections.end());
        if (settled_.empty()) {
            settled_ = documents;
            live_sections_ = sections;
        }
        EXPECT_EQ(sections, live_sections_);
        EXPECT_EQ(documents, settled_);
        // The device has a section of this type from the start.
        test::expect_applied(device_, documents, {"repacd"});
        test::expect_nothing_left(device_);
    }

    test::Files settled_;
    std::vector<std::string> live_sections_;
    test::Daemon daemon_;
    test::DeviceRoot &device_ = daemon_.device();
    const std::string programs_ = FAULT_PROGRAMS;
};

TEST_P(DaemonFaultTest, WhatTheDaemonCouldNotWriteItWritesTheNextTime)
{
    const test::SavedState saved(device_);
    test::sweep_faults(saved, GetParam(), [&](const Fault &fault, const std::string &log) {
        daemon_.use_program(programs_ + "/qorcfg_fault",
                            {test::armed_environment("qorcfg_fault", fault, log)});
        start_and_commit();
        if (fault.stops()) {
            EXPECT_EQ(daemon_.process().wait().status, 128 + SIGKILL);
            daemon_.use_program("");
            daemon_.start();
            test::put_away_cut_off_batches(device_, fault);
        } else if (fault.kind != FaultKind::none) {
            commit();
        }
        EXPECT_EQ(daemon_.stop().status, 0);
        expect_settled();
    });
}

TEST_P(DaemonFaultTest, WhatAScriptCouldNotApplyTheNextRunApplies)
{
    const test::SavedState saved(device_);
    test::sweep_faults(saved, GetParam(), [&](const Fault &fault, const std::string &log) {
        daemon_.use_program("", {"QORCTL=" + programs_ + "/qorctl_fault",
                                 test::armed_environment("qorctl_fault", fault, log)});
        start_and_commit();
        EXPECT_EQ(daemon_.stop().status, 0);
        const test::ProcessEnd end = daemon_.qorctl({"apply"});
        EXPECT_EQ(end.status, 0) << end.err;
        expect_settled();
    });
}

INSTANTIATE_TEST_SUITE_P(Shares, DaemonFaultTest, testing::Range(0, test::fault_shares));

} // namespace
} // namespace qorcfg
