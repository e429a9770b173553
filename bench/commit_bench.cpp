#include "platform/child.h"
#include "platform/fd.h"
#include "platform/file.h"
#include "platform/key_id.h"
#include "support/daemon.h"
#include "table.h"

#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

// A commit of one key, from its announcement to status "1", through the real daemon with a hook
// that does nothing. Floor: the same exchange with a server that starts a thread, writes the status
// twice and runs /bin/true.
namespace qorcfg::bench {
namespace {

namespace fs = std::filesystem;

constexpr const char *status_path = "/tmp/cache/qorcfg/GUI_apply_result";

bool set_status(const std::string &path, char status)
{
    const Fd file = open_file(path, O_WRONLY | O_CREAT, 0644);
    return file && ::write(file.get(), &status, 1) == 1;
}

/// Polls the status file as the web interface does, but often.
bool wait_for_status(const std::string &path, char wanted)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < deadline) {
        const Fd file = open_file(path, O_RDONLY);
        char status = '\0';
        if (file && ::read(file.get(), &status, 1) == 1 && status == wanted) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(20));
    }
    return false;
}

void Commit(benchmark::State &state)
{
    test::Daemon daemon;
    test::DeviceRoot &device = daemon.device();
    daemon.list_components({"ietf_devname"});
    daemon.start();
    fs::remove(device.path("/tmp/qorcfg_debug"));
    fs::remove(device.path("/etc/qorcfg.d/commit.sh"));
    fs::create_symlink("/bin/true", device.path("/etc/qorcfg.d/commit.sh"));
    const std::string status = device.path(status_path);
    const std::string announcement = "2:" + std::to_string(config_key_id("Device_name"));
    int count = 0;
    for (auto _ : state) {
        state.PauseTiming();
        device.set({{"Device_name", std::to_string(++count)}});
        set_status(status, '0');
        state.ResumeTiming();
        daemon.send(announcement);
        daemon.send("3:0");
        if (!wait_for_status(status, '1')) {
            state.SkipWithError("no status 1");
            break;
        }
    }
    set_goal(state, 1.3);
}
BENCHMARK(Commit)->UseRealTime()->Repetitions(3)->ReportAggregatesOnly();

/// Takes one message from each connection, as the daemon does, and acts on every second one.
class FloorServer {
public:
    FloorServer(const std::string &socket, std::string status)
        : status_(std::move(status)), listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        socket.copy(address.sun_path, sizeof address.sun_path - 1);
        const auto *name = reinterpret_cast<const sockaddr *>(&address);
        if (::bind(listener_.get(), name, sizeof address) != 0 ||
            ::listen(listener_.get(), 20) != 0) {
            throw std::runtime_error("cannot listen at " + socket);
        }
        thread_ = std::thread([this] { serve(); });
    }
    ~FloorServer()
    {
        ::shutdown(listener_.get(), SHUT_RDWR);
        thread_.join();
    }
    FloorServer(const FloorServer &) = delete;
    FloorServer &operator=(const FloorServer &) = delete;

private:
    void serve()
    {
        for (;;) {
            const Fd client(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
            if (!client) {
                return;
            }
            char message[128];
            if (::read(client.get(), message, sizeof message) > 0 && message[0] == '3') {
                std::thread([this] { work(); }).join();
            }
        }
    }
    void work() const
    {
        set_status(status_, '2');
        run_program({"/bin/true"}, std::chrono::seconds(10));
        set_status(status_, '1');
    }

    std::string status_;
    Fd listener_;
    std::thread thread_;
};

void CommitFloor(benchmark::State &state)
{
    const test::Daemon client; // not started: its root, and how it sends
    const std::string status = client.device().path(status_path);
    const FloorServer server(client.device().path("/tmp/cache/qorcfg/server.socket"), status);
    for (auto _ : state) {
        state.PauseTiming();
        set_status(status, '0');
        state.ResumeTiming();
        client.send("2:1");
        client.send("3:0");
        if (!wait_for_status(status, '1')) {
            state.SkipWithError("no status 1");
            break;
        }
    }
}
BENCHMARK(CommitFloor)->UseRealTime()->Repetitions(3)->ReportAggregatesOnly();

} // namespace
} // namespace qorcfg::bench
