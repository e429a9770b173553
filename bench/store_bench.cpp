#include "platform/qor_platform.h"
#include "support/sample_device.h"
#include "table.h"

#include <array>
#include <memory>

// Reads of the store, as components do them, from one thread and from four.
namespace qorcfg::bench {
namespace {

constexpr std::array keys{"wan_proto", "lan_ipaddr", "Device_name", "no_such_key"};

class Store : public benchmark::Fixture {
public:
    void SetUp(benchmark::State &state) override
    {
        if (state.thread_index() == 0) {
            device_ = std::make_unique<test::DeviceRoot>();
            test::lay_sample_device(*device_);
        }
    }
    void TearDown(benchmark::State &state) override
    {
        if (state.thread_index() == 0) {
            device_.reset();
        }
    }

private:
    std::unique_ptr<test::DeviceRoot> device_;
};

BENCHMARK_DEFINE_F(Store, Read)(benchmark::State &state)
{
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(config_get(keys.at(next++ % keys.size())));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_REGISTER_F(Store, Read)->UseRealTime()->Threads(1)->Threads(4);

} // namespace
} // namespace qorcfg::bench
