#include "engine/nvram_commit.h"

#include "core/base/explanation.h"
#include "core/base/log.h"
#include "engine/append_line.h"
#include "engine/paths.h"
#include "engine/transaction.h"
#include "engine/writes_held.h"

#include <string>

namespace qorcfg {

namespace {

std::string update_base()
{
    return std::string(nvram_folder) + "/nvram_update";
}

bool is_scalar(json_object *value)
{
    switch (json_object_get_type(value)) {
    case json_type_string:
    case json_type_int:
    case json_type_double:
    case json_type_boolean:
        return true;
    default:
        return false;
    }
}

/// Calls `visit(package, name, option, value)` for each setting of a document in its order;
/// `option` is null for a plain one.
template <typename Visit> void for_each_setting(json_object *doc, Visit visit)
{
    for_each_member(doc, [&](const char *package, json_object *names) {
        for_each_member(names, [&](const char *name, json_object *value) {
            if (is_scalar(value)) {
                visit(package, name, nullptr, value);
            }
            for_each_member(value, [&](const char *option, json_object *option_value) {
                if (is_scalar(option_value)) {
                    visit(package, name, option, option_value);
                }
            });
        });
    });
}

void append_setting(std::string &lines, const char *package, const char *name, const char *option,
                    json_object *value)
{
    if (option == nullptr) {
        append_line(lines, {"set ", package, ".", name, "=", json_value_text(value)});
    } else {
        append_line(lines, {"set ", package, ".", name, ".", option, "=", json_value_text(value)});
    }
}

/// Whether a setting has another value than in the last document. One whose package was no group
/// of settings there counts as unchanged.
bool is_changed(json_object *last, const char *package, const char *name, const char *option,
                json_object *value)
{
    json_object *names = nullptr;
    if (json_object_object_get_ex(last, package, &names) == 0) {
        return true;
    }
    if (!is_json_object(names)) {
        return false;
    }
    json_object *old = json_get_member(names, name);
    if (option != nullptr) {
        old = json_get_member(old, option);
    }
    return old == nullptr || json_value_text(old) != json_value_text(value);
}

std::string full_lines(json_object *doc)
{
    std::string lines;
    for_each_setting(
        doc, [&](const char *package, const char *name, const char *option, json_object *value) {
            append_setting(lines, package, name, option, value);
        });
    return lines;
}

std::string changed_lines(json_object *last, json_object *doc)
{
    std::string lines;
    if (last == nullptr) {
        return lines;
    }
    for_each_setting(
        doc, [&](const char *package, const char *name, const char *option, json_object *value) {
            if (is_changed(last, package, name, option, value)) {
                append_setting(lines, package, name, option, value);
            }
        });
    return lines;
}

} // namespace

void commit_nvram_document(const Document &doc, std::string_view name, int trigger, int job)
{
    const std::string document(name);
    if (!is_file_name(document)) {
        QORCFG_LOG("refused a document named '%s'", document.c_str());
        return;
    }
    const std::string snapshot = std::string(nvram_folder) + "/nvram-" + document + ".json";
    if (WritesHeld::now()) {
        WritesHeld::tell({"", snapshot});
        return;
    }
    const bool whole = trigger == 1;
    const std::string number = whole ? "" : std::to_string(job);
    Transaction transaction({nvram_folder, update_base() + number + "." + document, snapshot});
    if (!transaction.is_open()) {
        print_lines("Failed to open " + update_base() + (whole ? "\n" : " \n"));
        Explanation::write("", document, WriteOutcome::failed);
        return;
    }
    if (whole) {
        transaction.finish(full_lines(doc.get()), doc.get(), {});
    } else if (transaction.is_overtaken(job)) {
        Explanation::write("", document, WriteOutcome::overtaken);
    } else {
        const Json last = transaction.last_document();
        const std::string lines = changed_lines(last.get(), doc.get());
        if (transaction.finish(lines, doc.get(), job)) {
            Explanation::write("", document, WriteOutcome::written, lines);
        } else {
            Explanation::write("", document, WriteOutcome::failed);
        }
    }
}

} // namespace qorcfg
