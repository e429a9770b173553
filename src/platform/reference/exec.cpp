#include "platform/child.h"
#include "platform/qor_platform.h"

#include <cerrno>
#include <cstdarg>
#include <string>
#include <vector>

int qor_safe_system(int /*reserved1*/, int /*reserved2*/, int /*reserved3*/, const char *path, ...)
{
    if (path == nullptr) {
        errno = EINVAL;
        return -1;
    }
    std::vector<std::string> argv{path};
    va_list arguments;
    va_start(arguments, path);
    while (const char *argument = va_arg(arguments, const char *)) {
        argv.emplace_back(argument);
    }
    va_end(arguments);
    const qorcfg::ProgramEnd end = qorcfg::run_program(argv);
    errno = end.error;
    return end.status;
}
