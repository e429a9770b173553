#include "apply/apply.h"

#include "apply/apply_report.h"
#include "apply/nvram_batch.h"
#include "apply/package_preview.h"
#include "apply/uci_batch.h"
#include "platform/file.h"
#include "platform/path_root.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <set>
#include <sys/file.h>
#include <utility>

namespace qorcfg {

namespace {

/// Calls `use` with the selected files, in order, while no other run is at work.
template <typename Use>
void with_files(const BatchSelection &selection, ApplyReport &report, Use use)
{
    const std::string lock_file = rooted("/tmp/cache/qorcfg/apply.lock");
    constexpr mode_t private_mode = 0600;
    if (!open_file(lock_file, O_RDWR | O_CREAT | O_NOFOLLOW, private_mode) && errno == ENOENT) {
        return; // without this folder there are no batch files either
    }
    const Fd lock = lock_path(lock_file, LOCK_EX);
    std::vector<BatchFile> files;
    std::string error;
    if (!lock) {
        report.fault(lock_file + ": " + std::strerror(errno));
    } else if (!find_batch_files(files, error)) {
        report.fault(error);
    } else {
        use(in_order(std::move(files), selection));
    }
}

} // namespace

bool apply_batches(const BatchSelection &selection, std::ostream &err)
{
    ApplyReport report(err);
    with_files(selection, report, [&](const std::vector<BatchFile> &files) {
        std::set<std::pair<BatchFile::Side, std::string>> waiting;
        for (const BatchFile &file : files) {
            const std::pair target(file.side, file.target);
            if (waiting.count(target) != 0) {
                continue;
            }
            const auto run =
                file.side == BatchFile::Side::uci ? apply_uci_batch : hand_over_nvram_batch;
            if (run(file, report) == BatchEnd::waits) {
                waiting.insert(target);
            }
        }
    });
    return !report.failed();
}

bool preview_batches(const BatchSelection &selection, std::ostream &out, std::ostream &err)
{
    ApplyReport report(err);
    with_files(selection, report, [&](const std::vector<BatchFile> &files) {
        PackagePreview preview(report);
        for (const BatchFile &file : files) {
            preview.add(file);
        }
        preview.print(out);
    });
    return !report.failed();
}

} // namespace qorcfg
