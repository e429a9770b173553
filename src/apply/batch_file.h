#pragma once

#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qorcfg {

/// How far a batch file has come, told by the beginning of its name: claimed files are no longer
/// appended to, and of a ready one the new package has been written beside the old one.
enum class BatchState { waiting, claimed, ready };

/// A batch file that lies in one of the two folders.
struct BatchFile {
    enum class Side { uci, nvram };

    Side side = Side::uci;
    std::string folder;     ///< below the path root
    std::string name;       ///< as its writer named it
    std::string target;     ///< package, or document on the NVRAM side
    std::optional<int> job; ///< none for the files of the start-up pass
    BatchState state = BatchState::waiting;
    timespec modified{};

    std::string path(BatchState which) const;
    std::string path() const { return path(state); }
    /// Where it is kept when it could not be applied whole.
    std::string failed_path() const;
};

/// Which files a run is about.
struct BatchSelection {
    enum class Kind {
        everything, ///< whatever lies there
        startup,    ///< what earlier runs of the daemon left, then the start-up files
        job         ///< the files of one job, and older ones before them
    };
    Kind kind = Kind::everything;
    int job = 0;
    /// Tells the latest job that was numbered, if that is known. Asked once the files have been
    /// listed, so that no file's job is newer.
    std::function<std::optional<int>()> latest_job = nullptr;
};

/// All batch files of both folders. A folder that does not exist holds none; false and `error` when
/// one cannot be read.
bool find_batch_files(std::vector<BatchFile> &files, std::string &error);

/// Those of `files` that the selection names, in the order in which they are to be applied: first
/// those whose application was cut off; then left-over files of earlier runs of the daemon; then
/// start-up files; then jobs by number, which goes round in a circle that ends with the latest job,
/// and files of one job by the time of their last write.
std::vector<BatchFile> in_order(std::vector<BatchFile> files, const BatchSelection &selection);

} // namespace qorcfg
