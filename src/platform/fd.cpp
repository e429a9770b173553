#include "platform/fd.h"

#include <cerrno>

namespace qorcfg {

void Fd::reset(int fd)
{
    if (fd_ >= 0) {
        const int saved_errno = errno;
        ::close(fd_);
        errno = saved_errno;
    }
    fd_ = fd;
}

} // namespace qorcfg
