#include "platform/uci/delta.h"

#include "platform/uci/edit.h"
#include "platform/uci/export.h"
#include "platform/uci/lookup.h"
#include "platform/uci/names.h"
#include "platform/uci/words.h"

#include <array>
#include <cstdlib>
#include <optional>

namespace qorcfg::uci {

namespace {

struct Mark {
    uci_command command;
    char mark;
};

constexpr std::array marks{
    Mark{UCI_CMD_ADD, '+'},     Mark{UCI_CMD_REMOVE, '-'},   Mark{UCI_CMD_RENAME, '@'},
    Mark{UCI_CMD_REORDER, '^'}, Mark{UCI_CMD_LIST_ADD, '|'}, Mark{UCI_CMD_LIST_DEL, '~'},
};

/// Cuts the mark off; a line without one changes a value or a type.
uci_command take_mark(char *&text)
{
    for (const auto &[command, mark] : marks) {
        if (*text == mark) {
            ++text;
            return command;
        }
    }
    return UCI_CMD_CHANGE;
}

bool has_its_parts(uci_command command, const uci_ptr &ptr)
{
    if (ptr.section == nullptr || (ptr.flags & uci_ptr::UCI_LOOKUP_EXTENDED) != 0 ||
        (ptr.value == nullptr && command != UCI_CMD_REMOVE)) {
        return false;
    }
    switch (command) {
    case UCI_CMD_ADD:
    case UCI_CMD_REORDER:
        return ptr.option == nullptr;
    case UCI_CMD_RENAME:
        return is_name(ptr.value);
    case UCI_CMD_LIST_ADD:
    case UCI_CMD_LIST_DEL:
        return ptr.option != nullptr;
    default:
        return true;
    }
}

/// Reads a change file word by word and calls `use` with each sensible change of `package`.
template <class Use> void for_each_change(std::string_view text, std::string_view package, Use use)
{
    TextSource source(text);
    Words words;
    std::string word;
    while (words.next_line(source)) {
        if (!words.word(source, word) || word.empty() || word.find('\0') != std::string::npos) {
            continue;
        }
        char *path = word.data();
        const uci_command command = take_mark(path);
        uci_ptr ptr{};
        if (parse_path(ptr, path) == UCI_OK && ptr.package == package &&
            has_its_parts(command, ptr)) {
            use(command, ptr);
        }
    }
}

int apply(uci_command command, uci_ptr &ptr)
{
    switch (command) {
    case UCI_CMD_ADD: {
        const int result = set(ptr, Log::no);
        if (result == UCI_OK && ptr.s != nullptr) {
            ptr.s->anonymous = true;
        }
        return result;
    }
    case UCI_CMD_CHANGE:
        return set(ptr, Log::no);
    case UCI_CMD_LIST_ADD:
        return add_list(ptr, Log::no);
    case UCI_CMD_LIST_DEL:
        return del_list(ptr, Log::no);
    default:
        break;
    }
    if ((ptr.flags & uci_ptr::UCI_LOOKUP_COMPLETE) == 0) {
        return UCI_ERR_NOTFOUND;
    }
    if (command == UCI_CMD_REMOVE) {
        return remove(ptr, Log::no);
    }
    return command == UCI_CMD_RENAME
               ? rename(ptr, Log::no)
               : reorder(static_cast<Section &>(*ptr.s), std::atoi(ptr.value), Log::no);
}

} // namespace

std::string change_line(std::string_view package, const uci_delta &change)
{
    std::string line;
    for (const auto &[command, mark] : marks) {
        if (change.cmd == command) {
            line += mark;
        }
    }
    line += package;
    if (change.section != nullptr) {
        line.append(".").append(change.section);
    }
    if (change.e.name != nullptr) {
        line.append(".").append(change.e.name);
    }
    if (change.value != nullptr) {
        line += '=';
        append_quoted(line, change.value);
    }
    return line += '\n';
}

int replay(Package &package, std::string_view text, bool keep)
{
    int applied = 0;
    for_each_change(text, package.name(), [&](uci_command command, uci_ptr &ptr) {
        if (keep) {
            package.saved().append(
                std::make_unique<Delta>(command, ptr.section, ptr.option, ptr.value));
        }
        ptr.p = &package;
        if (find_in_package(ptr, false) == UCI_OK && apply(command, ptr) == UCI_OK) {
            ++applied;
        }
    });
    return applied;
}

std::string without(std::string_view text, const Undo &undo)
{
    std::string kept;
    for_each_change(text, undo.package, [&](uci_command command, const uci_ptr &ptr) {
        const bool undone =
            (undo.section == nullptr || *undo.section == ptr.section) &&
            (undo.option == nullptr || (ptr.option != nullptr && *undo.option == ptr.option));
        if (!undone) {
            kept += change_line(undo.package, Delta(command, ptr.section, ptr.option, ptr.value));
        }
    });
    return kept;
}

} // namespace qorcfg::uci
