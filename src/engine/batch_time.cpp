#include "engine/batch_time.h"

#include "engine/paths.h"
#include "platform/path_root.h"

#include <filesystem>
#include <mutex>
#include <sys/stat.h>
#include <utility>

namespace qorcfg {

namespace {

constexpr long nanoseconds = 1'000'000'000;

bool is_later(const timespec &left, const timespec &right)
{
    return std::pair(left.tv_sec, left.tv_nsec) > std::pair(right.tv_sec, right.tv_nsec);
}

timespec latest_in(const std::string &folder)
{
    timespec latest{};
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        struct stat info {};
        if (::lstat(entry->path().c_str(), &info) == 0 && is_later(info.st_mtim, latest)) {
            latest = info.st_mtim;
        }
    }
    return latest;
}

timespec latest_of_earlier_runs()
{
    const timespec uci = latest_in(rooted(uci_folder));
    const timespec nvram = latest_in(rooted(nvram_folder));
    return is_later(uci, nvram) ? uci : nvram;
}

} // namespace

timespec next_batch_time()
{
    static std::mutex mutex;
    static timespec last = latest_of_earlier_runs();
    const std::lock_guard lock(mutex);
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    if (!is_later(now, last)) {
        now = last;
        if (++now.tv_nsec == nanoseconds) {
            now.tv_nsec = 0;
            ++now.tv_sec;
        }
    }
    last = now;
    return now;
}

} // namespace qorcfg
