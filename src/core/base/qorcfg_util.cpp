#include "core/base/qorcfg_util.h"

#include "core/base/log.h"
#include "platform/file.h"
#include "platform/file_calls.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qorcfg {

void write_status_file(const std::string &path, std::string_view text)
{
    constexpr mode_t mode = 0644;
    const Fd file = open_file(path, O_WRONLY | O_CREAT | O_NOCTTY, mode);
    if (!file) {
        return;
    }
    struct stat info {};
    if (::fstat(file.get(), &info) == 0 && info.st_size == 0) {
        file_calls::fchmod(file.get(), mode);
    }
    if (!write_all(file.get(), text) ||
        file_calls::ftruncate(file.get(), static_cast<off_t>(text.size())) != 0) {
        QORCFG_LOG("cannot write %s: %s", path.c_str(), std::strerror(errno));
    }
}

} // namespace qorcfg
