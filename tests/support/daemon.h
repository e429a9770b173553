#pragma once

#include "support/device_root.h"
#include "support/process.h"

#include <memory>
#include <string>
#include <vector>

namespace qorcfg::test {

/// The real daemon in a scratch root, with the real `qorctl` beside it. Its hook scripts are
/// recording stubs until a test writes others.
class Daemon {
public:
    Daemon();
    /// A daemon that must end as a test expects it to; the destructor only cleans up.
    ~Daemon();

    DeviceRoot &device() { return device_; }
    const DeviceRoot &device() const { return device_; }

    /// Puts the shipped hook scripts in the place of the stubs that only record their calls; the
    /// calls are still recorded, at their end.
    void install_hooks();
    /// Enables these components in the list file that `start` names by default.
    void list_components(const std::vector<std::string> &names);
    /// Takes another build of the daemon, with variables ("NAME=value") in its environment, at the
    /// next start; an empty name stands for the daemon itself.
    void use_program(const std::string &program, std::vector<std::string> environment = {});
    /// Starts the daemon and waits until it serves; `arguments` follow the program name.
    void start(const std::vector<std::string> &arguments = {});
    /// Starts it without waiting.
    void launch(const std::vector<std::string> &arguments = {});
    /// Whether no job is at work any more: its hook has run `hooks` times in all, the start-up one
    /// included, and no worker is left. True for a daemon that has ended.
    bool is_idle(std::size_t hooks);
    /// Whether the control socket takes connections.
    bool accepts() const;
    /// SIGTERM and wait. The exit status and what it printed.
    ProcessEnd stop();
    /// SIGKILL and wait.
    void kill();
    Process &process() { return *process_; }

    /// Runs qorctl below this root.
    ProcessEnd qorctl(const std::vector<std::string> &arguments,
                      const std::string &input = {}) const;
    /// Sends one raw message on a connection of its own.
    void send(const std::string &message) const;
    /// Connects to the control socket.
    Fd connect() const;

    /// Job numbers that the stub commit hook has seen, in order of its calls; the start-up hook's
    /// call is "init 0".
    std::vector<std::string> hook_calls() const;
    std::string status() const;

private:
    DeviceRoot device_;
    std::string program_;
    std::vector<std::string> environment_;
    std::unique_ptr<Process> process_;
};

} // namespace qorcfg::test
