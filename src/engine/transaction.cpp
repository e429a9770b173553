#include "engine/transaction.h"

#include "core/base/globals.h"
#include "core/base/log.h"
#include "engine/batch_time.h"
#include "platform/file.h"
#include "platform/file_calls.h"
#include "platform/job_number.h"
#include "platform/path_root.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qorcfg {

namespace {

constexpr std::size_t snapshot_bound = std::size_t{64} << 20;
constexpr mode_t private_mode = 0600; // documents hold passwords

/// The new snapshot lies under this ending from before the lines are written until it is renamed.
constexpr std::string_view pending_suffix = ".new";

} // namespace

Transaction::Writer &Transaction::writer_of(const std::string &snapshot)
{
    static std::mutex mutex;
    static std::map<std::string, std::unique_ptr<Writer>> writers;
    const std::lock_guard lock(mutex);
    std::unique_ptr<Writer> &writer = writers[snapshot];
    if (!writer) {
        writer = std::make_unique<Writer>();
    }
    return *writer;
}

Transaction::Transaction(const DocumentFiles &files)
    : files_{rooted(files.folder), rooted(files.batch), rooted(files.snapshot)},
      writer_(writer_of(files_.snapshot)), lock_(writer_.mutex),
      folder_lock_(lock_path(files_.folder, LOCK_SH))
{
    if (folder_lock_) {
        batch_ = open_file_in(folder_lock_, files_.batch, O_RDWR | O_APPEND | O_CREAT | O_NOFOLLOW,
                              private_mode);
    }
    // A daemon that was killed amid a write may have left half a line. What follows must not become
    // the rest of it.
    if (batch_ && !drop_cut_off_line(batch_.get())) {
        batch_.reset();
    }
    if (batch_) {
        // The place of this file among those of its job, even when no line follows.
        file_calls::fchmod(batch_.get(), private_mode);
        file_calls::set_modified(batch_.get(), next_batch_time());
    }
}

Transaction::~Transaction() = default;

bool Transaction::is_overtaken(int job) const
{
    return writer_.last_job != 0 && is_newer_job(writer_.last_job, job, pth_count);
}

Json Transaction::load(const std::string &path) const
{
    const Fd file = open_file_in(folder_lock_, path, O_RDONLY | O_NOCTTY);
    const auto text = file ? read_descriptor(file.get(), snapshot_bound) : std::nullopt;
    if (!text) {
        if (errno != ENOENT) {
            QORCFG_LOG("cannot read snapshot %s: %s", path.c_str(), std::strerror(errno));
        }
        return {};
    }
    std::string error = "not an object";
    Json document = parse_json(*text, JsonSyntax::strict, &error);
    if (!is_json_object(document.get())) {
        QORCFG_LOG("snapshot %s is damaged (%s) and counts as absent", path.c_str(), error.c_str());
        return {};
    }
    return document;
}

Json Transaction::last_document() const
{
    return load(files_.snapshot);
}

Json Transaction::cut_off_document() const
{
    return load(files_.snapshot + std::string(pending_suffix));
}

bool Transaction::finish(std::string_view lines, json_object *document, std::optional<int> job)
{
    const char *text = json_object_to_json_string_ext(document, JSON_C_TO_STRING_PRETTY);
    AtomicFile snapshot(folder_lock_, files_.snapshot, private_mode, pending_suffix);
    if (text == nullptr || !snapshot.write(text) || !snapshot.prepare()) {
        QORCFG_LOG("cannot write snapshot %s: %s", files_.snapshot.c_str(),
                   std::strerror(snapshot.error()));
        return false;
    }
    const off_t length = ::lseek(batch_.get(), 0, SEEK_END);
    if (length < 0 || !append_all(batch_.get(), lines)) {
        QORCFG_LOG("cannot append to %s: %s", files_.batch.c_str(), std::strerror(errno));
        return false;
    }
    if (!lines.empty()) {
        file_calls::set_modified(batch_.get(), next_batch_time());
    }
    if (!snapshot.commit()) {
        QORCFG_LOG("cannot replace snapshot %s: %s", files_.snapshot.c_str(),
                   std::strerror(snapshot.error()));
        // The next write compares with the old snapshot and carries these lines again.
        file_calls::ftruncate(batch_.get(), length);
        return false;
    }
    print_lines(lines);
    if (job) {
        writer_.last_job = *job;
    }
    return true;
}

void print_lines(std::string_view text)
{
    write_all(STDOUT_FILENO, text);
}

} // namespace qorcfg
