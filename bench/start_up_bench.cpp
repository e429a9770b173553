#include "core/base/globals.h"
#include "core/component_table.h"
#include "core/startup.h"
#include "engine/systeminfo.h"
#include "silent_output.h"
#include "support/sample_device.h"
#include "table.h"

#include <fcntl.h>
#include <filesystem>
#include <map>
#include <unistd.h>

// The start-up pass of the sample device: all its components and settings. Floor: the files that it
// writes, written by plain calls.
namespace qorcfg::bench {
namespace {

namespace fs = std::filesystem;

constexpr const char *folder = "/tmp/cache/qorcfg/ucicfg.d";

class StartUp : public benchmark::Fixture {
public:
    void SetUp(benchmark::State & /*state*/) override
    {
        silent_ = std::make_unique<SilentOutput>();
        device_ = std::make_unique<test::DeviceRoot>();
        test::lay_sample_device(*device_);
        qorcfg_change_is_trigger = 1;
        enable_listed_components(device_->path("/tmp/cache/qorcfg/qorcfg.conf"));
        init_all_systeminfo();
    }
    void TearDown(benchmark::State & /*state*/) override
    {
        device_.reset();
        silent_.reset();
    }

protected:
    void remove_files() const
    {
        for (const std::string &name : device_->names_in(folder)) {
            fs::remove(device_->path(std::string(folder) + "/" + name));
        }
    }
    std::map<std::string, std::string> files() const
    {
        std::map<std::string, std::string> files;
        for (const std::string &name : device_->names_in(folder)) {
            files[device_->path(std::string(folder) + "/" + name)] =
                device_->read(std::string(folder) + "/" + name);
        }
        return files;
    }

    std::unique_ptr<SilentOutput> silent_;
    std::unique_ptr<test::DeviceRoot> device_;
};

BENCHMARK_DEFINE_F(StartUp, Pass)(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        remove_files();
        state.ResumeTiming();
        run_startup_pass();
    }
    set_goal(state, 3.0);
}
BENCHMARK_REGISTER_F(StartUp, Pass)->Repetitions(3)->ReportAggregatesOnly();

bool write_file(const std::string &path, const std::string &text)
{
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    const bool written = ::write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::close(fd);
    return written;
}

BENCHMARK_DEFINE_F(StartUp, PassFloor)(benchmark::State &state)
{
    run_startup_pass();
    const auto files = this->files();
    for (auto _ : state) {
        state.PauseTiming();
        remove_files();
        state.ResumeTiming();
        for (const auto &[path, text] : files) {
            const bool batch = path.find("uci_update") != std::string::npos;
            if (!write_file(batch ? path : path + ".new", text)) {
                state.SkipWithError("cannot write");
            }
            if (!batch) {
                ::rename((path + ".new").c_str(), path.c_str());
            }
        }
    }
}
BENCHMARK_REGISTER_F(StartUp, PassFloor)->Repetitions(3)->ReportAggregatesOnly();

} // namespace
} // namespace qorcfg::bench
