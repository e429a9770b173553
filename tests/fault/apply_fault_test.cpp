#include "apply/apply.h"
#include "fault/fault_sweep.h"
#include "support/applied_package.h"
#include "support/hook_scripts.h"

#include <csignal>
#include <iostream>

namespace qorcfg {
namespace {

using test::Fault;
using Lines = std::vector<std::string>;

/// Batches of every kind that the applier treats in its own way: several of one package, one with
/// a line that cannot be applied, one of a package that does not exist yet, one that is empty, one
/// of the package in which others stage changes, one for the NVRAM side.
class ApplyFaultTest : public testing::TestWithParam<int> {
protected:
    ApplyFaultTest()
    {
        test::install_hook_script(device, "nvram.sh");
        device.write("/tmp/etc/config/net", old_);
        device.write("/tmp/etc/config/wireless", old_);
        device.write("/tmp/.uci/wireless", "+wireless.cfg021234='t'\n@wireless.cfg021234='made'\n");
        batch("uci_update1.net.a", "add_list net.s.l=1\n" + unusable_);
        batch("uci_update2.net.a", "add_list net.s.l=2\nadd net r\nset net.@r[0].x=1\n");
        batch("uci_update2.new.a", "set new.s=t\nadd_list new.s.l=1\n");
        batch("uci_update2.new.b", "");
        batch("uci_update2.wireless.a", "add_list wireless.s.l=1\n");
        device.write("/tmp/cache/qorcfg/nvramcfg.d/nvram_update2.wifi", "set w.ath0.ssid=one\n");
    }

    void batch(const std::string &name, const std::string &text) const
    {
        device.write(folder_ + ("/" + name), text);
    }
    static int apply() { return apply_batches({}, std::cerr) ? 0 : 1; }

    void expect_applied_once() const
    {
        EXPECT_EQ(test::list_items(device, "net", "s", "l"), (Lines{"0", "1", "2"}));
        EXPECT_EQ(device.read("/tmp/etc/config/net"),
                  "\nconfig t 's'\n\tlist l '0'\n\tlist l '1'\n\tlist l '2'\n\n"
                  "config r\n\toption x '1'\n\n");
        EXPECT_EQ(device.read("/tmp/etc/config/new"), "\nconfig t 's'\n\tlist l '1'\n\n");
        EXPECT_EQ(device.read("/tmp/etc/config/wireless"),
                  "\nconfig t 's'\n\tlist l '0'\n\tlist l '1'\n\nconfig t 'made'\n\n");
        EXPECT_EQ(device.read("/tmp/etc/nvram/wifi"), "w.ath0.ssid=one\n");
        EXPECT_EQ(device.names_in(folder_), Lines{"failed.uci_update1.net.a"});
        EXPECT_EQ(device.read(folder_ + std::string("/failed.uci_update1.net.a")),
                  "add_list net.s.l=1\n" + unusable_);
        EXPECT_EQ(device.names_in("/tmp/cache/qorcfg/nvramcfg.d"), Lines{});
        EXPECT_EQ(device.names_in("/tmp/etc/config"), (Lines{"net", "new", "wireless"}));
    }

    test::DeviceRoot device;
    const std::string old_ = "config t 's'\n\tlist l '0'\n";
    const std::string unusable_ = "nonsense\n";
    static constexpr const char *folder_ = "/tmp/cache/qorcfg/ucicfg.d";
};

TEST_P(ApplyFaultTest, EveryBatchIsAppliedOnce)
{
    const test::SavedState saved(device);
    test::sweep_faults(saved, GetParam(), [&](const Fault &fault, const std::string &log) {
        const int status = test::run_armed(fault, log, apply);
        EXPECT_EQ(status, fault.stops() ? 128 + SIGKILL : 1); // the line that cannot be applied
        const int next = test::run_aside(apply);
        EXPECT_TRUE(next == 0 || next == 1) << next;
        expect_applied_once();
    });
}

INSTANTIATE_TEST_SUITE_P(Shares, ApplyFaultTest, testing::Range(0, test::fault_shares));

} // namespace
} // namespace qorcfg
