#include "platform/key_id.h"
#include "support/daemon.h"
#include "support/jobs.h"
#include "support/process_holdings.h"
#include "support/sample_device.h"
#include "support/wait.h"
#include "table.h"

#include <filesystem>

// Private dirty memory of the daemon with the whole sample device: after start-up, and after a
// number of commits.
namespace qorcfg::bench {
namespace {

namespace fs = std::filesystem;

void Memory(benchmark::State &state)
{
    const int commits = static_cast<int>(state.range(0));
    constexpr const char *key = "Device_name";
    for (auto _ : state) {
        test::Daemon daemon;
        test::DeviceRoot &device = daemon.device();
        test::lay_sample_device(device);
        daemon.start();
        fs::remove(device.path("/tmp/qorcfg_debug"));
        fs::remove(device.path("/etc/qorcfg.d/commit.sh"));
        fs::create_symlink("/bin/true", device.path("/etc/qorcfg.d/commit.sh"));
        const std::string announcement = "2:" + std::to_string(config_key_id(key));
        for (int i = 1; i <= commits; ++i) {
            const int before = test::read_jobs(device).last;
            daemon.send(announcement);
            daemon.send("3:0");
            if (!test::wait_until([&] {
                    return test::read_jobs(device).last != before && test::ended_jobs(device);
                })) {
                state.SkipWithError("a job does not end");
                return;
            }
        }
        state.counters["private_KiB"] =
            static_cast<double>(test::private_kib(daemon.process().pid()));
        daemon.stop();
    }
}
BENCHMARK(Memory)->Arg(0)->Arg(10'000)->Iterations(1);

} // namespace
} // namespace qorcfg::bench
