#pragma once

#include <string_view>

namespace qorcfg {

/// Name of a source unit: the file name of `path` without folder and ending ("ietf_ddns").
constexpr std::string_view source_unit(std::string_view path)
{
    path.remove_prefix(path.rfind('/') + 1);
    return path.substr(0, path.rfind('.'));
}

/// Where a log line comes from. As a default argument it names the caller's own place, so that a
/// helper's line carries the component that called it.
struct SourcePlace {
    std::string_view unit;
    int line = 0;

    static constexpr SourcePlace here(const char *file = __builtin_FILE(),
                                      int line = __builtin_LINE())
    {
        return {source_unit(file), line};
    }
};

/// While one lives, no log line of the process reaches the console: for tools that run the daemon's
/// code and must not speak in its name.
class LogSilence {
public:
    LogSilence();
    ~LogSilence();
    LogSilence(const LogSilence &) = delete;
    LogSilence &operator=(const LogSilence &) = delete;
};

/// Appends "[time][source line] : message\n" to the console while the file "/tmp/qorcfg_debug" is
/// readable; without it returns after that one check. `format` is printf's; a message is cut at
/// 1023 bytes. Returns 0. Safe from any thread; lines of several threads do not mix.
int qorcfg_log(std::string_view source, int line, const char *format, ...)
    __attribute__((format(printf, 3, 4)));

/// `qorcfg_log` on behalf of `place`.
int qorcfg_log(SourcePlace place, const char *format, ...) __attribute__((format(printf, 2, 3)));

} // namespace qorcfg

/// Logs with the name and line of the source it stands in.
#define QORCFG_LOG(...) ::qorcfg::qorcfg_log(::qorcfg::SourcePlace::here(), __VA_ARGS__)
