#include "apply/uci_batch.h"

#include "apply/batch_claim.h"
#include "apply/batch_editor.h"
#include "apply/package_file.h"
#include "platform/file.h"

#include <cerrno>
#include <cstring>

namespace qorcfg {

namespace {

/// One batch file on its way into its package.
class UciBatch {
public:
    UciBatch(BatchFile file, ApplyReport &report) : file_(std::move(file)), report_(report) {}

    BatchEnd apply()
    {
        if (file_.state == BatchState::ready && !has_prepared_version(file_.target)) {
            return remove(); // the new package stands
        }
        const bool claimed = file_.state == BatchState::waiting
                                 ? claim(file_)
                                 : change_state(file_, BatchState::claimed);
        if (!claimed) {
            return wait(std::string("cannot be claimed: ") + std::strerror(errno));
        }
        const auto text = read_file(file_.path(), batch_bound);
        if (!text) {
            const int error = errno;
            const std::string reason = std::string("cannot be read: ") + std::strerror(error);
            return error == EFBIG ? fail(reason) : wait(reason); // it does not get smaller
        }
        if (!is_package_name(file_.target)) {
            return fail("no package has such a name");
        }
        if (text->empty() && !PackageFile::has_staged_changes(file_.target)) {
            return remove();
        }
        constexpr int attempts = 100;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            if (const auto end = apply_text(*text)) {
                return *end;
            }
        }
        return wait("the package is changed by others all the time");
    }

private:
    /// Nothing when others have changed the package in between.
    std::optional<BatchEnd> apply_text(const std::string &text)
    {
        PackageFile target(file_.target);
        switch (target.open()) {
        case PackageFile::Opened::damaged:
            return fail(target.error());
        case PackageFile::Opened::failed:
            return wait(target.error());
        case PackageFile::Opened::done:
            break;
        }
        const auto faults = BatchEditor(target.package()).apply(text, file_.target);
        if (!target.prepare()) {
            return wait(target.error());
        }
        switch (target.hold()) {
        case PackageFile::Held::changed:
            return std::nullopt;
        case PackageFile::Held::failed:
            return wait(target.error());
        case PackageFile::Held::done:
            break;
        }
        if (!faults.empty() && !keep_failed_copy(file_)) {
            return wait(file_.failed_path() + ": " + std::strerror(errno));
        }
        return finish(target, faults);
    }

    BatchEnd finish(PackageFile &target, const std::vector<BatchFault> &faults)
    {
        if (!change_state(file_, BatchState::ready)) {
            return wait(std::string("cannot be renamed: ") + std::strerror(errno));
        }
        if (!target.replace()) {
            // While the prepared package is there, this is known as not applied.
            change_state(file_, BatchState::claimed);
            return wait(target.error());
        }
        target.drop_staged_changes();
        for (const BatchFault &fault : faults) {
            report_.line_fault(name(), fault.line, fault.reason);
        }
        if (!faults.empty()) {
            report_.fault(name() + ": kept as " + file_.failed_path());
        }
        return remove();
    }

    BatchEnd remove()
    {
        if (!remove_batch(file_)) {
            report_.fault(file_.path() + ": cannot be removed: " + std::strerror(errno));
            return BatchEnd::waits;
        }
        return BatchEnd::settled;
    }

    BatchEnd wait(const std::string &reason)
    {
        report_.fault(name() + ": " + reason + "; nothing is changed, kept as " + file_.path() +
                      " for the next run");
        return BatchEnd::waits;
    }

    BatchEnd fail(const std::string &reason)
    {
        const bool aside = put_aside(file_);
        report_.fault(name() + ": " + reason + "; nothing is changed, kept as " +
                      (aside ? file_.failed_path() : file_.path()));
        return aside ? BatchEnd::settled : BatchEnd::waits;
    }

    std::string name() const { return file_.path(BatchState::waiting); }

    BatchFile file_;
    ApplyReport &report_;
};

} // namespace

BatchEnd apply_uci_batch(BatchFile file, ApplyReport &report)
{
    return UciBatch(std::move(file), report).apply();
}

} // namespace qorcfg
