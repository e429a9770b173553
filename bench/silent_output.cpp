#include "silent_output.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace qorcfg::bench {

SilentOutput::SilentOutput()
    : output_(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)),
      errors_(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0))
{
    std::fflush(nullptr);
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    ::close(nowhere);
}

SilentOutput::~SilentOutput()
{
    std::fflush(nullptr);
    ::dup2(output_, STDOUT_FILENO);
    ::dup2(errors_, STDERR_FILENO);
    ::close(output_);
    ::close(errors_);
}

} // namespace qorcfg::bench
