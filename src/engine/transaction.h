#pragma once

#include "engine/json.h"
#include "platform/fd.h"

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace qorcfg {

/// The files of one document, by built-in path.
struct DocumentFiles {
    std::string folder;   ///< where both lie
    std::string batch;    ///< lines of this write go to its end
    std::string snapshot; ///< the document of the last write
};

/// One write of one document: its lines reach the batch file and its snapshot is replaced, or
/// neither.
///
/// Writes of the same document wait for each other; others do not. While it lives, nobody claims a
/// batch file of the folder. Lines go on standard output too. A failure is logged and leaves the
/// old snapshot, so that the next write of the document carries the same changes again.
class Transaction {
public:
    /// Opens the batch file for appending, making it where it is missing. Check `is_open`.
    explicit Transaction(const DocumentFiles &files);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    bool is_open() const { return static_cast<bool>(batch_); }
    /// Whether a newer job than `job` has written this document since the daemon's start. Its
    /// document came from a later store, so that of `job` must not replace it.
    bool is_overtaken(int job) const;
    /// The document of the last write; empty when there was none or its snapshot is damaged.
    Json last_document() const;
    /// The document of a write that was cut off by the daemon's end; empty without one.
    Json cut_off_document() const;
    /// Appends `lines` and makes `document` the snapshot. True when both are done; `job`, where
    /// given, is then the job that wrote the document last.
    bool finish(std::string_view lines, json_object *document, std::optional<int> job);

private:
    struct Writer {
        std::mutex mutex;
        int last_job = 0;
    };
    static Writer &writer_of(const std::string &snapshot);
    Json load(const std::string &path) const;

    DocumentFiles files_;
    Writer &writer_;
    std::unique_lock<std::mutex> lock_;
    Fd folder_lock_;
    Fd batch_;
};

/// Writes `text` to standard output in one piece; nobody reading it is no error.
void print_lines(std::string_view text);

} // namespace qorcfg
