#include "engine/uci_commit.h"

#include "core/base/explanation.h"
#include "core/base/globals.h"
#include "core/base/log.h"
#include "engine/diff.h"
#include "engine/paths.h"
#include "engine/transaction.h"
#include "engine/uci_lines.h"
#include "engine/writes_held.h"
#include "platform/file.h"
#include "platform/path_root.h"

#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace qorcfg {

namespace {

constexpr const char *target_folder = "/tmp/etc/config";

std::string batch_base()
{
    return std::string(uci_folder) + "/uci_update";
}

/// UCI tools cannot add to a package whose file does not exist.
void make_target_file(const std::string &package)
{
    const std::string path = bounded_path(std::string(target_folder) + "/" + package);
    if (::access(rooted(path).c_str(), R_OK) == 0) {
        return;
    }
    constexpr mode_t mode = 0644;
    if (!open_file(rooted(path), O_WRONLY | O_CREAT | O_TRUNC, mode)) {
        QORCFG_LOG("create %s failed!", path.c_str());
    }
}

std::string full_lines(const Transaction &transaction, std::string_view package, json_object *doc)
{
    const Json old = transaction.last_document();
    const Json cut_off = transaction.cut_off_document();
    std::string lines;
    append_full_deletion_lines(lines, package, old.get(), cut_off.get());
    append_setting_lines(lines, package, doc);
    return lines;
}

std::string difference_lines(const Transaction &transaction, std::string_view package,
                             json_object *doc, Granularity granularity)
{
    const auto difference = granularity == Granularity::options ? diff_options : diff_sections;
    const Json old = transaction.last_document();
    const Json removed = difference(doc, old.get());
    const Json added = difference(old.get(), doc);
    std::string lines;
    append_deletion_lines(lines, package, removed.get(), granularity);
    append_setting_lines(lines, package, added.get());
    return lines;
}

void commit_document(const Document &doc, std::string_view package_name,
                     std::string_view section_name, int trigger, int job, Granularity granularity)
{
    const std::string package(package_name);
    const std::string section(section_name);
    if (!is_file_name(package) || !is_file_name(section)) {
        QORCFG_LOG("refused a document named '%s' '%s'", package.c_str(), section.c_str());
        return;
    }
    const std::string snapshot =
        bounded_path(std::string(uci_folder) + "/uci-" + package + "-" + section + ".json");
    if (WritesHeld::now()) {
        WritesHeld::tell({package, snapshot});
        return;
    }
    const bool whole = trigger == 1;
    if (whole) {
        make_target_file(package);
    }
    const std::string base = batch_base();
    const std::string number = whole ? "" : std::to_string(job);
    Transaction transaction(
        {uci_folder, bounded_path(base + number + "." + package + "." + section), snapshot});
    if (!transaction.is_open()) {
        print_lines("Failed to open " + base + "\n");
        Explanation::write(package, section, WriteOutcome::failed);
        return;
    }
    if (whole) {
        transaction.finish(full_lines(transaction, package, doc.get()), doc.get(), {});
    } else if (transaction.is_overtaken(job)) {
        Explanation::write(package, section, WriteOutcome::overtaken);
    } else {
        const std::string lines = difference_lines(transaction, package, doc.get(), granularity);
        if (transaction.finish(lines, doc.get(), job)) {
            Explanation::write(package, section, WriteOutcome::written, lines);
        } else {
            Explanation::write(package, section, WriteOutcome::failed);
        }
    }
}

} // namespace

void commit_uci_section(const Document &doc, std::string_view package, std::string_view section,
                        int trigger, int job)
{
    commit_document(doc, package, section, trigger, job, Granularity::sections);
}

void commit_uci_options(const Document &doc, std::string_view package, std::string_view section,
                        int trigger, int job)
{
    commit_document(doc, package, section, trigger, job, Granularity::options);
}

int commit(const Document &doc, std::string_view package, std::string_view section, int job)
{
    if (!doc.complete()) {
        return -1;
    }
    commit_uci_section(doc, package, section, qorcfg_change_is_trigger, job);
    return 0;
}

} // namespace qorcfg
