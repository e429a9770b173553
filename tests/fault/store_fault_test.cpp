#include "fault/fault_sweep.h"
#include "platform/config_value.h"
#include "platform/qor_platform.h"
#include "platform/reference/store.h"

#include <csignal>
#include <filesystem>
#include <string>

namespace qorcfg {
namespace {

using test::Fault;

/// A store of several pages whose settings all have one value.
class StoreFaultTest : public testing::TestWithParam<int> {
protected:
    static void set_all(const std::string &value)
    {
        std::vector<StoreWrite> writes;
        for (int i = 0; i < count_; ++i) {
            writes.push_back({"key" + std::to_string(i), std::string(300, value[0])});
        }
        ASSERT_EQ(store_write(writes, Marking::mark), "");
    }
    /// The value of all settings; "mixed" where they differ, "" where there are none.
    static std::string all()
    {
        std::vector<Setting> settings;
        EXPECT_EQ(store_settings("", settings), "");
        if (settings.empty()) {
            return "";
        }
        for (const Setting &setting : settings) {
            if (setting.value != settings.front().value || settings.size() != count_) {
                return "mixed";
            }
        }
        return settings.front().value.substr(0, 1);
    }
    /// A power cut: what is in memory is gone.
    void restart() const
    {
        store_close();
        for (const char *name : {"", "-lock", ".lock", ".commit-lock", ".restored"}) {
            std::filesystem::remove(device.path("/tmp/cache/config") + name);
        }
    }

    test::DeviceRoot device;
    static constexpr int count_ = 100;
};

TEST_P(StoreFaultTest, ACommitLeavesTheOldOrTheNewCopyWhole)
{
    set_all("a");
    ASSERT_EQ(::config_commit(), 0);
    set_all("b");
    const test::SavedState saved(device);
    test::sweep_faults(saved, GetParam(), [&](const Fault &fault, const std::string &log) {
        const int status =
            test::run_armed(fault, log, [] { return ::config_commit() == 0 ? 0 : 1; });
        EXPECT_TRUE(fault.stops() ? status == 128 + SIGKILL : status == 0 || status == 1) << status;
        restart();
        const std::string kept = all();
        EXPECT_TRUE(kept == "b" || (kept == "a" && status != 0)) << kept;
        // The next commit goes through whatever was left.
        set_all("c");
        EXPECT_EQ(::config_commit(), 0);
        restart();
        EXPECT_EQ(all(), "c");
        EXPECT_EQ(device.names_in("/etc/qorcfg"), std::vector<std::string>{"config.mdb"});
    });
}

TEST_P(StoreFaultTest, ARestoreThatFailsOrStopsIsDoneByTheNextProcess)
{
    set_all("a");
    ASSERT_EQ(::config_commit(), 0);
    restart();
    const test::SavedState saved(device);
    test::sweep_faults(saved, GetParam(), [&](const Fault &fault, const std::string &log) {
        const int status = test::run_armed(fault, log, [] {
            const std::string found = all();
            return found == "a" || found.empty() ? 0 : 1;
        });
        EXPECT_EQ(status, fault.stops() ? 128 + SIGKILL : 0);
        EXPECT_EQ(all(), "a");
        restart();
        EXPECT_EQ(all(), "a");
        EXPECT_EQ(device.names_in("/etc/qorcfg"), std::vector<std::string>{"config.mdb"});
    });
}

INSTANTIATE_TEST_SUITE_P(Shares, StoreFaultTest, testing::Range(0, test::fault_shares));

} // namespace
} // namespace qorcfg
