#include "core/base/log.h"

#include "platform/file.h"
#include "platform/path_root.h"

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace qorcfg {

namespace {

std::atomic<int> silences{0};

bool diagnostics_are_on()
{
    return ::access(rooted("/tmp/qorcfg_debug").c_str(), R_OK) == 0;
}

std::string local_time_text()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
    return text.data();
}

int log_line(std::string_view source, int line, const char *format, std::va_list arguments)
{
    if (silences > 0 || !diagnostics_are_on()) {
        return 0;
    }
    std::array<char, 1024> message{};
    std::vsnprintf(message.data(), message.size(), format, arguments);
    const Fd console = open_file(rooted("/dev/console"), O_WRONLY | O_APPEND | O_CREAT | O_NOCTTY,
                                 S_IRUSR | S_IWUSR);
    if (!console) {
        return 0;
    }
    const std::string text = std::string("[") + local_time_text() + "][" + std::string(source) +
                             " " + std::to_string(line) + "] : " + message.data() + "\n";
    write_all(console.get(), text);
    return 0;
}

} // namespace

LogSilence::LogSilence()
{
    ++silences;
}

LogSilence::~LogSilence()
{
    --silences;
}

int qorcfg_log(std::string_view source, int line, const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const int result = log_line(source, line, format, arguments);
    va_end(arguments);
    return result;
}

int qorcfg_log(SourcePlace place, const char *format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const int result = log_line(place.unit, place.line, format, arguments);
    va_end(arguments);
    return result;
}

} // namespace qorcfg
