#include "core/base/hooks.h"

#include "core/base/log.h"
#include "platform/path_root.h"
#include "platform/qor_platform.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

namespace qorcfg {

namespace {

constexpr std::size_t job_text_limit = 6;

void pause_one_second()
{
    std::this_thread::sleep_for(std::chrono::seconds(1));
}

std::atomic<void (*)()> soap_pause{pause_one_second};

} // namespace

ProgramEnd run_hook_script(const char *path, int job)
{
    const std::string argument = std::to_string(job).substr(0, job_text_limit);
    const int status = qor_safe_system(0, 0, 0, rooted(path).c_str(), argument.c_str(),
                                       static_cast<char *>(nullptr));
    const ProgramEnd end{status, status == -1 ? errno : 0};
    if (end.error == ETIMEDOUT) {
        QORCFG_LOG("%s %s was ended at its time bound", path, argument.c_str());
    }
    return end;
}

void notify_soap_agent(const char *value)
{
    if (value == nullptr) {
        return;
    }
    mappi_set("soap_setting", value);
    run_program({"killall", "-SIGUSR1", "soap_agent"});
    soap_pause.load()();
}

void set_soap_pause(void (*pause)())
{
    soap_pause = pause == nullptr ? pause_one_second : pause;
}

} // namespace qorcfg
