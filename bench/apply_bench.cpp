#include "apply/apply.h"
#include "support/device_root.h"
#include "table.h"

#include <sstream>
#include <string>
#include <uci.h>
#include <vector>

// Applying 1,600 options to one package. Floor: the same settings through bare libuci calls.
namespace qorcfg::bench {
namespace {

constexpr int sections = 160;
constexpr int options = 10;

/// "NAME=TYPE" and "NAME.OPTION=VALUE", in the order of the batch.
std::vector<std::string> settings()
{
    std::vector<std::string> all;
    for (int section = 0; section < sections; ++section) {
        const std::string name = "section" + std::to_string(section);
        all.push_back(name + "=interface");
        for (int option = 0; option < options; ++option) {
            const std::string number = std::to_string(option);
            all.push_back(name + ".option" + number + "=a value of some length " + number);
        }
    }
    return all;
}

void ApplyOptions(benchmark::State &state)
{
    const test::DeviceRoot device;
    std::string batch;
    for (const std::string &setting : settings()) {
        batch += "set net." + setting + "\n";
    }
    for (auto _ : state) {
        state.PauseTiming();
        device.write("/tmp/etc/config/net", "");
        device.write("/tmp/cache/qorcfg/ucicfg.d/uci_update1.net.a", batch);
        state.ResumeTiming();
        std::ostringstream err;
        if (!apply_batches({BatchSelection::Kind::job, 1}, err)) {
            state.SkipWithError(err.str().c_str());
            break;
        }
    }
    set_goal(state, 1.5);
}
BENCHMARK(ApplyOptions);

bool set_all(uci_context *context, const std::vector<std::string> &all)
{
    uci_package *package = nullptr;
    if (uci_load(context, "net", &package) != UCI_OK) {
        return false;
    }
    for (const std::string &setting : all) {
        std::string text = "net." + setting;
        uci_ptr target{};
        if (uci_lookup_ptr(context, &target, text.data(), false) != UCI_OK ||
            uci_set(context, &target) != UCI_OK) {
            return false;
        }
    }
    return uci_commit(context, &package, true) == UCI_OK;
}

void ApplyOptionsFloor(benchmark::State &state)
{
    const test::DeviceRoot device;
    const auto all = settings();
    for (auto _ : state) {
        state.PauseTiming();
        device.write("/tmp/etc/config/net", "");
        state.ResumeTiming();
        uci_context *context = uci_alloc_context();
        uci_set_confdir(context, device.path("/etc/config").c_str());
        uci_set_savedir(context, device.path("/tmp/.uci").c_str());
        const bool done = set_all(context, all);
        uci_free_context(context);
        if (!done) {
            state.SkipWithError("libuci refused");
            break;
        }
    }
}
BENCHMARK(ApplyOptionsFloor);

} // namespace
} // namespace qorcfg::bench
