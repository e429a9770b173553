#include "apply/nvram_batch.h"

#include "apply/batch_claim.h"
#include "platform/child.h"
#include "platform/path_root.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace qorcfg {

namespace {

bool is_empty(const std::string &path)
{
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && info.st_size == 0;
}

/// Why the program did not end well; "" when it did.
std::string run_script(const std::string &path)
{
    const std::string root = path_root();
    if (!root.empty()) {
        ::setenv("QORCFG_ROOT", root.c_str(), 1); // it may have come as an argument
    }
    const std::string script = rooted(nvram_script);
    if (::access(script.c_str(), X_OK) != 0) {
        return script + ": " + std::strerror(errno);
    }
    const ProgramEnd end = run_program({script, path});
    if (end.error != 0) {
        return script + ": " + std::strerror(end.error);
    }
    return end.status == 0 ? "" : script + " ended with status " + std::to_string(end.status);
}

} // namespace

BatchEnd hand_over_nvram_batch(BatchFile file, ApplyReport &report)
{
    const std::string name = file.path(BatchState::waiting);
    std::string reason;
    if (file.state == BatchState::waiting && !claim(file)) {
        reason = std::string("cannot be claimed: ") + std::strerror(errno);
    } else if (!is_empty(file.path())) {
        reason = run_script(file.path());
    }
    if (reason.empty() && !remove_batch(file)) {
        reason = std::string("cannot be removed: ") + std::strerror(errno);
    }
    if (reason.empty()) {
        return BatchEnd::settled;
    }
    report.fault(name + ": " + reason + "; kept as " + file.path() + " for the next run");
    return BatchEnd::waits;
}

} // namespace qorcfg
