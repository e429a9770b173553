#include "apply/batch_file.h"

#include "platform/batch_folders.h"
#include "platform/job_number.h"
#include "platform/path_root.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <sys/stat.h>
#include <tuple>
#include <utility>

namespace qorcfg {

namespace {

using Side = BatchFile::Side;
using Kind = BatchSelection::Kind;

constexpr std::string_view failed_prefix = "failed.";

struct StatePrefix {
    BatchState state;
    std::string_view prefix;
};
constexpr std::array state_prefixes{StatePrefix{BatchState::claimed, "claimed."},
                                    StatePrefix{BatchState::ready, "ready."},
                                    StatePrefix{BatchState::waiting, ""}};

bool take_prefix(std::string_view &text, std::string_view prefix)
{
    const bool there = text.substr(0, prefix.size()) == prefix;
    if (there) {
        text.remove_prefix(prefix.size());
    }
    return there;
}

/// Reads "uci_update[JOB].PACKAGE.SECTION" or "nvram_update[JOB].DOCUMENT", with its state before
/// it.
bool read_name(std::string_view text, BatchFile &file)
{
    for (const auto &[state, prefix] : state_prefixes) {
        if (take_prefix(text, prefix)) {
            file.state = state;
            break;
        }
    }
    file.name = text;
    if (!take_prefix(text, file.side == Side::uci ? "uci_update" : "nvram_update")) {
        return false;
    }
    const std::string_view digits = text.substr(0, text.find('.'));
    if (digits.size() == text.size()) {
        return false;
    }
    text.remove_prefix(digits.size() + 1);
    file.target = file.side == Side::uci ? text.substr(0, text.find('.')) : text;
    if (digits.empty()) {
        return true;
    }
    int job = 0;
    const char *const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, job);
    file.job = job;
    return error == std::errc() && stop == end && job >= 0;
}

std::string find_in(Side side, const char *folder, std::vector<BatchFile> &files)
{
    const std::string path = rooted(folder);
    std::error_code error;
    std::filesystem::directory_iterator entry(path, error);
    for (const std::filesystem::directory_iterator end; !error && entry != end;
         entry.increment(error)) {
        BatchFile file;
        file.side = side;
        file.folder = path;
        struct stat info {};
        if (read_name(entry->path().filename().string(), file) &&
            ::lstat(entry->path().c_str(), &info) == 0 && S_ISREG(info.st_mode)) {
            file.modified = info.st_mtim;
            files.push_back(std::move(file));
        }
    }
    const bool absent = error == std::errc::no_such_file_or_directory;
    return error && !absent ? path + ": " + error.message() : "";
}

std::pair<time_t, long> time_of(const BatchFile &file)
{
    return {file.modified.tv_sec, file.modified.tv_nsec};
}

template <typename Condition>
const BatchFile *newest(const std::vector<BatchFile> &files, Condition condition)
{
    const BatchFile *found = nullptr;
    for (const BatchFile &file : files) {
        if (condition(file) && (found == nullptr || time_of(file) > time_of(*found))) {
            found = &file;
        }
    }
    return found;
}

/// The groups of files that are applied one after the other.
enum Group { cut_off, earlier_runs, start_up, jobs, not_now };

/// Where the circle of job numbers ends.
int latest_job(const std::vector<BatchFile> &files, const BatchSelection &selection)
{
    if (selection.latest_job) {
        if (const auto known = selection.latest_job()) {
            const bool behind = selection.kind == Kind::job && is_newer_job(selection.job, *known);
            return behind ? selection.job : *known;
        }
    }
    // The file that was written last may be of an older job than another: jobs overlap.
    int job = selection.job;
    if (selection.kind != Kind::job) {
        const BatchFile *last =
            newest(files, [](const BatchFile &file) { return file.job.has_value(); });
        job = last == nullptr ? 0 : *last->job;
    }
    int ahead = 0;
    for (const BatchFile &file : files) {
        if (file.job && is_newer_job(*file.job, job)) {
            ahead = std::max(ahead, jobs_since(job, *file.job));
        }
    }
    return job % last_job_number + ahead;
}

/// Puts each file into its group.
class Grouping {
public:
    Grouping(const std::vector<BatchFile> &files, const BatchSelection &selection)
        : selection_(selection), latest_job_(latest_job(files, selection)),
          newest_start_up_(newest(files, [](const BatchFile &file) { return !file.job; }))
    {
    }

    Group of(const BatchFile &file) const
    {
        if (file.state != BatchState::waiting) {
            return cut_off;
        }
        if (!file.job) {
            return start_up;
        }
        // A start-up pass comes before every job of its run: what is older than it is from before.
        if (selection_.kind == Kind::startup ||
            (newest_start_up_ != nullptr && time_of(file) < time_of(*newest_start_up_))) {
            return earlier_runs;
        }
        const bool later =
            selection_.kind == Kind::job && is_newer_job(*file.job, selection_.job, latest_job_);
        return later ? not_now : jobs;
    }

    auto key(const BatchFile &file) const
    {
        const Group group = of(file);
        return std::tuple(group, group == jobs ? -jobs_since(*file.job, latest_job_) : 0,
                          time_of(file), std::string_view(file.name));
    }

private:
    const BatchSelection &selection_;
    int latest_job_;
    const BatchFile *newest_start_up_;
};

} // namespace

std::string BatchFile::path(BatchState which) const
{
    std::string path = folder + "/";
    for (const auto &[each, prefix] : state_prefixes) {
        if (each == which) {
            path += prefix;
        }
    }
    return path + name;
}

std::string BatchFile::failed_path() const
{
    return folder + "/" + std::string(failed_prefix) + name;
}

bool find_batch_files(std::vector<BatchFile> &files, std::string &error)
{
    error = find_in(Side::uci, uci_folder, files);
    if (error.empty()) {
        error = find_in(Side::nvram, nvram_folder, files);
    }
    return error.empty();
}

std::vector<BatchFile> in_order(std::vector<BatchFile> files, const BatchSelection &selection)
{
    const std::vector<BatchFile> all = files;
    const Grouping grouping(all, selection);
    files.erase(std::remove_if(files.begin(), files.end(),
                               [&](const BatchFile &file) { return grouping.of(file) == not_now; }),
                files.end());
    std::sort(files.begin(), files.end(), [&](const BatchFile &a, const BatchFile &b) {
        return grouping.key(a) < grouping.key(b);
    });
    return files;
}

} // namespace qorcfg
