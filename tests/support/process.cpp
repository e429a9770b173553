#include "support/process.h"

#include "support/wait.h"

#include <csignal>
#include <cstring>
#include <spawn.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/wait.h>

namespace qorcfg::test {

namespace {

Fd memory_file(const std::string &content = {})
{
    Fd fd(::memfd_create("qor", MFD_CLOEXEC));
    if (!fd || ::write(fd.get(), content.data(), content.size()) < 0) {
        throw std::runtime_error("no memory file");
    }
    ::lseek(fd.get(), 0, SEEK_SET);
    return fd;
}

std::string content_of(const Fd &fd)
{
    std::string content;
    std::string block(65536, '\0');
    ::off_t at = 0;
    for (ssize_t got = 0; (got = ::pread(fd.get(), block.data(), block.size(), at)) > 0;
         at += got) {
        content.append(block, 0, static_cast<std::size_t>(got));
    }
    return content;
}

std::vector<char *> pointers(const std::vector<std::string> &texts)
{
    std::vector<char *> result;
    for (const std::string &text : texts) {
        result.push_back(const_cast<char *>(text.c_str()));
    }
    result.push_back(nullptr);
    return result;
}

std::vector<std::string> merged_environment(const std::vector<std::string> &added)
{
    std::vector<std::string> merged = added;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::string name = text.substr(0, text.find('=') + 1);
        bool replaced = false;
        for (const std::string &other : added) {
            replaced = replaced || other.compare(0, name.size(), name) == 0;
        }
        if (!replaced) {
            merged.push_back(text);
        }
    }
    return merged;
}

} // namespace

Process::Process(const std::vector<std::string> &argv, const std::vector<std::string> &environment,
                 const std::string &input)
    : out_(memory_file()), err_(memory_file())
{
    const Fd in = memory_file(input);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out_.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err_.get(), STDERR_FILENO);
    const std::vector<std::string> merged = merged_environment(environment);
    const int error = ::posix_spawnp(&pid_, argv.front().c_str(), &actions, nullptr,
                                     pointers(argv).data(), pointers(merged).data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error(argv.front() + ": " + std::strerror(error));
    }
}

Process::~Process()
{
    if (!ended_) {
        signal(SIGKILL);
        reap(true);
    }
}

bool Process::reap(bool block)
{
    int status = 0;
    if (!ended_ && ::waitpid(pid_, &status, block ? 0 : WNOHANG) == pid_) {
        ended_ = true;
        status_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }
    return ended_;
}

bool Process::running()
{
    return !reap(false);
}

void Process::signal(int number) const
{
    if (!ended_) {
        ::kill(pid_, number);
    }
}

ProcessEnd Process::wait(std::chrono::milliseconds bound)
{
    const bool in_time = wait_until([&] { return reap(false); }, bound);
    if (!in_time) {
        signal(SIGKILL);
        reap(true);
    }
    return {in_time ? status_ : -1, content_of(out_), content_of(err_)};
}

ProcessEnd run_process(const std::vector<std::string> &argv,
                       const std::vector<std::string> &environment, const std::string &input)
{
    return Process(argv, environment, input).wait();
}

} // namespace qorcfg::test
