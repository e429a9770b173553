#include "core/component_table.h"
#include "platform/reference/store.h"
#include "support/daemon.h"
#include "support/golden_case.h"
#include "support/jobs.h"
#include "support/process_holdings.h"
#include "support/sample_device.h"
#include "support/wait.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <set>

// soak SECONDS [SEED]: random settings of every component, committed through the sample device's
// daemon with the shipped hook scripts. Fails when memory or descriptors grow, or when the applied
// packages differ from the documents at the end.
namespace qorcfg {
namespace {

namespace fs = std::filesystem;
using test::DeviceRoot;
using Clock = std::chrono::steady_clock;
using Strings = std::vector<std::string>;

std::chrono::seconds duration{60};
unsigned seed = 1;

/// Every key that a component of the device's list looks at.
Strings subscribed_keys(const DeviceRoot &device)
{
    std::set<std::string> keys;
    device.write("/tmp/qorcfg_debug", ""); // subscriptions are told in the log
    for_each_listed_component(device.path(default_component_list), [&](const char *name) {
        for (const std::string &key : device.subscribed_keys(*find_component(name)->ops)) {
            keys.insert(key);
        }
    });
    fs::remove(device.path("/tmp/qorcfg_debug"));
    device.clear_log();
    return {keys.begin(), keys.end()};
}

class Soak : public testing::Test {
protected:
    Soak()
    {
        daemon_.install_hooks();
        test::lay_sample_device(device_);
        keys_ = subscribed_keys(device_);
        EXPECT_EQ(store_settings("", defaults_), "");
    }

    std::size_t below(std::size_t count)
    {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
    }

    std::string random_value()
    {
        static const std::array<std::string, 16> values{
            "",
            "0",
            "1",
            "2",
            "4",
            "192.0.2.77",
            "255.255.255.0",
            "00:53:00:00:00:77",
            "no number",
            "two  blanks and a 'quote\"",
            "a=b;c#d\\e",
            "line\nfeed",
            "pppoe",
            "dhcp",
            "web TCP 80 80 80 80 192.0.2.5",
            std::string(300, 'x'),
        };
        return below(3) == 0 ? defaults_.at(below(defaults_.size())).value
                             : values.at(below(values.size()));
    }

    /// A few settings: mostly sensible ones, since much of a device hangs on its modes.
    std::vector<StoreWrite> random_writes()
    {
        std::vector<StoreWrite> writes;
        for (std::size_t i = below(5) + 1; i > 0; --i) {
            const Setting &known = defaults_.at(below(defaults_.size()));
            std::string key = below(2) == 0 ? known.key : keys_.at(below(keys_.size()));
            if (key.back() == '_' || below(8) == 0) {
                key += std::to_string(below(4)); // a member of a numbered family
            }
            if (below(10) == 0) {
                writes.push_back({key, std::nullopt});
            } else {
                writes.push_back({key, below(4) == 0 ? known.value : random_value()});
            }
        }
        return writes;
    }

    void commit(bool wait)
    {
        ASSERT_EQ(store_write(random_writes(), Marking::mark), "");
        const auto end = daemon_.qorctl(wait ? Strings{"commit", "--wait"} : Strings{"commit"});
        ASSERT_EQ(end.status, 0) << end.out << end.err;
        ++commits_;
    }

    void wait_for_jobs()
    {
        ASSERT_TRUE(test::wait_until([&] { return test::ended_jobs(device_); }));
    }

    test::Daemon daemon_;
    DeviceRoot &device_ = daemon_.device();
    std::mt19937 random_{seed};
    Strings keys_;
    std::vector<Setting> defaults_;
    int commits_ = 0;
};

TEST_F(Soak, NothingGrowsAndThePackagesAreWhatTheDocumentsSay)
{
    std::printf("seed %u, %zu keys, %zu settings\n", seed, keys_.size(), defaults_.size());
    daemon_.start();
    // The first jobs bring what every job needs: stacks, arenas, tables.
    constexpr int first_jobs = 100;
    while (commits_ < first_jobs && !HasFatalFailure()) {
        commit(commits_ % 2 == 0);
    }
    wait_for_jobs();
    const pid_t pid = daemon_.process().pid();
    const long memory_before = test::private_kib(pid);
    const long descriptors_before = test::descriptors_of(pid);
    const auto end = Clock::now() + duration;
    while (Clock::now() < end && !HasFatalFailure()) {
        commit(below(4) == 0);
    }
    wait_for_jobs();
    const long memory = test::private_kib(pid);
    const long descriptors = test::descriptors_of(pid);
    std::printf("%d commits; private memory %ld KiB, then %ld KiB; descriptors %ld, then %ld\n",
                commits_, memory_before, memory, descriptors_before, descriptors);
    EXPECT_EQ(descriptors, descriptors_before);
    constexpr long slack_kib = 256;
    EXPECT_LE(memory, memory_before + slack_kib);

    // What has failed to apply would be lying there.
    const std::string folder = "/tmp/cache/qorcfg/ucicfg.d";
    for (const std::string &name : device_.names_in(folder)) {
        EXPECT_EQ(name.find("uci_update"), std::string::npos) << name;
    }
    // The device has a section of this type from the start.
    test::expect_applied(device_, test::files_in(device_.path(folder)), {"repacd"});
    EXPECT_EQ(daemon_.stop().status, 0);
}

} // namespace
} // namespace qorcfg

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc > 1) {
        qorcfg::duration = std::chrono::seconds(std::atol(argv[1]));
    }
    if (argc > 2) {
        qorcfg::seed = static_cast<unsigned>(std::atol(argv[2]));
    }
    return RUN_ALL_TESTS();
}
