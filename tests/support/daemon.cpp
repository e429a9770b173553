#include "support/daemon.h"

#include "support/hook_scripts.h"
#include "support/process_holdings.h"
#include "support/wait.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace qorcfg::test {

Daemon::Daemon()
{
    const std::string calls = device_.path("/tmp/hook_calls");
    device_.write_program("/etc/qorcfg.d/init.sh", "#!/bin/sh\necho \"init $*\" >>" + calls + "\n");
    device_.write_program("/etc/qorcfg.d/commit.sh",
                          "#!/bin/sh\necho \"commit $*\" >>" + calls + "\n");
    device_.write("/tmp/cache/qorcfg/qorcfg.conf", "");
}

Daemon::~Daemon() = default;

void Daemon::install_hooks()
{
    install_hook_scripts(device_);
    for (const char *name : {"init", "commit"}) {
        const std::string script = "/etc/qorcfg.d/" + std::string(name);
        device_.write_program(script + "-shipped.sh", device_.read(script + ".sh"));
        device_.write_program(script + ".sh",
                              "#!/bin/sh\n\"${0%.sh}-shipped.sh\" \"$@\"; status=$?\n" +
                                  ("echo \"" + std::string(name)) + " $*\" >>" +
                                  device_.path("/tmp/hook_calls") + "\nexit $status\n");
    }
}

void Daemon::list_components(const std::vector<std::string> &names)
{
    std::string list;
    for (const std::string &name : names) {
        list += name + "=1\n";
    }
    device_.write("/tmp/cache/qorcfg/qorcfg.conf", list);
}

void Daemon::use_program(const std::string &program, std::vector<std::string> environment)
{
    program_ = program;
    environment_ = std::move(environment);
}

void Daemon::launch(const std::vector<std::string> &arguments)
{
    std::vector<std::string> argv{program_.empty() ? QORCFG_PROGRAM : program_};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environment = environment_;
    environment.push_back("QORCFG_ROOT=" + device_.root());
    process_ = std::make_unique<Process>(argv, environment);
}

void Daemon::start(const std::vector<std::string> &arguments)
{
    // The start-up hook is the last step before serving. A commit hook may be one of the daemon
    // that ran before.
    const auto starts = [&] {
        const auto calls = hook_calls();
        return std::count_if(calls.begin(), calls.end(),
                             [](const std::string &call) { return call.rfind("init", 0) == 0; });
    };
    const auto before = starts();
    launch(arguments);
    ASSERT_TRUE(wait_until([&] { return starts() > before || !process_->running(); }));
    ASSERT_TRUE(wait_until([&] { return accepts() || !process_->running(); }));
    ASSERT_TRUE(process_->running());
}

bool Daemon::is_idle(std::size_t hooks)
{
    if (!process_->running()) {
        return true;
    }
    return hook_calls().size() >= hooks && threads_of(process_->pid()) == 1;
}

Fd Daemon::connect() const
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = device_.path("/tmp/cache/qorcfg/server.socket");
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    Fd client(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (::connect(client.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) !=
        0) {
        client.reset();
    }
    return client;
}

bool Daemon::accepts() const
{
    return static_cast<bool>(connect());
}

void Daemon::send(const std::string &message) const
{
    const Fd client = connect();
    ASSERT_TRUE(client);
    ASSERT_EQ(::send(client.get(), message.data(), message.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(message.size()));
}

ProcessEnd Daemon::stop()
{
    process_->signal(SIGTERM);
    return process_->wait();
}

void Daemon::kill()
{
    process_->signal(SIGKILL);
    process_->wait();
}

ProcessEnd Daemon::qorctl(const std::vector<std::string> &arguments, const std::string &input) const
{
    std::vector<std::string> argv{QORCTL_PROGRAM};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return run_process(argv, {"QORCFG_ROOT=" + device_.root()}, input);
}

std::vector<std::string> Daemon::hook_calls() const
{
    return split_lines(device_.read("/tmp/hook_calls"));
}

std::string Daemon::status() const
{
    return device_.read("/tmp/cache/qorcfg/GUI_apply_result");
}

} // namespace qorcfg::test
