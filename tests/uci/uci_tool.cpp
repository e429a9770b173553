#include "uci/uci_tool.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <strings.h>

namespace qorcfg {

namespace {

using Stream = std::unique_ptr<FILE, int (*)(FILE *)>;

/// A line of a batch holds a verb and at most two arguments.
constexpr std::size_t most_words = 3;
constexpr int unknown_command = 255;

std::string quoted(const std::string &text)
{
    std::string out = "'";
    for (const char c : text) {
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return out + "'";
}

std::string verb_of(const std::string &word)
{
    std::string verb = word;
    std::transform(verb.begin(), verb.end(), verb.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return verb == "del" ? "delete" : verb == "ren" ? "rename" : verb;
}

bool holds_a_blank(const char *text)
{
    return std::strpbrk(text, " \t\r\n") != nullptr;
}

} // namespace

UciTool::Run UciTool::batch(const std::string &text)
{
    run_ = {};
    const Stream input(std::tmpfile(), &std::fclose);
    if (!input || std::fwrite(text.data(), 1, text.size(), input.get()) != text.size()) {
        run_.status = -1;
        return run_;
    }
    std::rewind(input.get());
    while (std::feof(input.get()) == 0 && batch_line(input.get())) {
        while (!uci_list_empty(&ctx_->root)) {
            uci_unload(ctx_.get(), uci_to_package(list_to_element(ctx_->root.next)));
        }
    }
    return run_;
}

bool UciTool::batch_line(FILE *input)
{
    Words words;
    char *rest = nullptr;
    for (;;) {
        char *word = nullptr;
        if (uci_parse_argument(ctx_.get(), input, &rest, &word) != UCI_OK) {
            complain();
            return true;
        }
        if (*word == '\0') {
            break;
        }
        if (words.size() == most_words) {
            run_.err += "Too many arguments\n";
            return true;
        }
        words.emplace_back(word);
    }
    if (words.empty()) {
        return true;
    }
    if (::strcasecmp(words.front().c_str(), "exit") == 0) {
        return false;
    }
    if (command(words) == unknown_command) {
        run_.err += "Unknown command\n";
    }
    return true;
}

UciTool::Run UciTool::show(const std::string &package, bool names)
{
    run_ = {};
    names_ = names;
    run_.status = command({"show", package});
    return run_;
}

UciTool::Run UciTool::export_package(const std::string &package)
{
    run_ = {};
    run_.status = command({"export", package});
    return run_;
}

UciTool::Run UciTool::commit(const std::string &package)
{
    run_ = {};
    run_.status = command({"commit", package});
    return run_;
}

int UciTool::complain()
{
    run_.err += uci_message(ctx_.get(), "uci") + "\n";
    return 1;
}

int UciTool::command(const Words &words)
{
    const std::string verb = verb_of(words.front());
    if (verb == "add") {
        return words.size() == 3 ? add(words[1], words[2]) : unknown_command;
    }
    if (words.size() != 2) {
        return unknown_command;
    }
    constexpr std::array on_packages{"show", "export", "commit", "changes", "revert"};
    if (std::find(on_packages.begin(), on_packages.end(), verb) != on_packages.end()) {
        return package_command(verb, words);
    }
    constexpr std::array on_sections{"get",    "set",    "delete",  "add_list",
                                     "rename", "revert", "reorder", "del_list"};
    if (std::find(on_sections.begin(), on_sections.end(), verb) != on_sections.end()) {
        return section_command(verb, words[1]);
    }
    return unknown_command;
}

int UciTool::add(const std::string &package, const std::string &type)
{
    uci_package *p = nullptr;
    uci_section *section = nullptr;
    int result = uci_load(ctx_.get(), package.c_str(), &p);
    if (result == UCI_OK) {
        result = uci_add_section(ctx_.get(), p, type.c_str(), &section);
    }
    if (result == UCI_OK) {
        result = uci_save(ctx_.get(), p);
    }
    if (result != UCI_OK) {
        complain();
        return result;
    }
    run_.out += std::string(section->e.name) + "\n";
    return 0;
}

int UciTool::package_command(const std::string &verb, const Words &words)
{
    std::string path = words[1];
    uci_ptr ptr{};
    if (uci_lookup_ptr(ctx_.get(), &ptr, path.data(), true) != UCI_OK) {
        return complain();
    }
    if (verb == "export") {
        return export_to_output(ptr.p);
    }
    if (verb == "changes") {
        print_changes(*ptr.p);
        return 0;
    }
    if (verb == "revert") {
        return uci_revert(ctx_.get(), &ptr) == UCI_OK ? 0 : complain();
    }
    if (verb == "commit") {
        return uci_commit(ctx_.get(), &ptr.p, false) == UCI_OK ? 0 : complain();
    }
    if ((ptr.flags & uci_ptr::UCI_LOOKUP_COMPLETE) == 0) {
        ctx_->err = UCI_ERR_NOTFOUND;
        return complain();
    }
    if (ptr.o != nullptr) {
        const std::string section = std::string(ptr.p->e.name) + "." + ptr.s->e.name;
        print_option(*ptr.o, section + "." + ptr.o->e.name);
    } else if (ptr.s != nullptr) {
        print_section(*ptr.s, ptr.s->e.name);
    } else {
        print_package(*ptr.p);
    }
    return 0;
}

int UciTool::export_to_output(uci_package *package)
{
    const Stream stream(std::tmpfile(), &std::fclose);
    if (!stream || uci_export(ctx_.get(), stream.get(), package, true) != UCI_OK) {
        return complain();
    }
    std::rewind(stream.get());
    for (int c = std::getc(stream.get()); c != EOF; c = std::getc(stream.get())) {
        run_.out += static_cast<char>(c);
    }
    return 0;
}

int UciTool::section_command(const std::string &verb, const std::string &text)
{
    std::string path = text;
    uci_ptr ptr{};
    if (uci_lookup_ptr(ctx_.get(), &ptr, path.data(), true) != UCI_OK) {
        return complain();
    }
    if (verb == "get") {
        return ptr.value != nullptr ? 1 : print_value(ptr);
    }
    if (verb == "reorder" && (ptr.s == nullptr || ptr.value == nullptr)) {
        ctx_->err = UCI_ERR_NOTFOUND;
        return complain();
    }
    int item = 0;
    if (verb == "delete" && ptr.value != nullptr && std::sscanf(ptr.value, "%d", &item) != 1) {
        return 1;
    }
    if (apply(verb, ptr) != UCI_OK || uci_save(ctx_.get(), ptr.p) != UCI_OK) {
        return complain();
    }
    return 0;
}

int UciTool::apply(const std::string &verb, uci_ptr &ptr)
{
    if (verb == "reorder" && ptr.value != nullptr) {
        return uci_reorder_section(ctx_.get(), ptr.s, std::atoi(ptr.value));
    }
    const std::map<std::string, int (*)(uci_context *, uci_ptr *)> changes{
        {"set", uci_set},           {"delete", uci_delete}, {"add_list", uci_add_list},
        {"del_list", uci_del_list}, {"rename", uci_rename},
    };
    return changes.at(verb)(ctx_.get(), &ptr);
}

int UciTool::print_value(const uci_ptr &ptr)
{
    if ((ptr.flags & uci_ptr::UCI_LOOKUP_COMPLETE) == 0) {
        ctx_->err = UCI_ERR_NOTFOUND;
        return complain();
    }
    if (ptr.o == nullptr) {
        run_.out += ptr.s != nullptr ? std::string(ptr.s->type) + "\n" : std::string();
        return 0;
    }
    if (ptr.o->type == UCI_TYPE_STRING) {
        run_.out += std::string(ptr.o->v.string) + "\n";
        return 0;
    }
    std::string line;
    uci_element *item = nullptr;
    uci_foreach_element(&ptr.o->v.list, item)
    {
        line += line.empty() ? "" : " ";
        line += holds_a_blank(item->name) ? quoted(item->name) : item->name;
    }
    run_.out += line + "\n";
    return 0;
}

void UciTool::print_changes(const uci_package &package)
{
    for (const uci_list *list : {&package.saved_delta, &package.delta}) {
        uci_element *e = nullptr;
        uci_foreach_element(list, e)
        {
            const uci_delta &change = *uci_to_delta(e);
            const std::map<uci_command, std::string> marks{
                {UCI_CMD_REMOVE, "-"}, {UCI_CMD_RENAME, "@"}, {UCI_CMD_REORDER, "^"}};
            const auto mark = marks.find(change.cmd);
            run_.out += mark != marks.end() ? mark->second : "";
            run_.out += std::string(package.e.name) + "." + change.section;
            run_.out += change.e.name != nullptr ? std::string(".") + change.e.name : "";
            if (change.cmd != UCI_CMD_REMOVE) {
                run_.out += change.cmd == UCI_CMD_LIST_ADD   ? "+="
                            : change.cmd == UCI_CMD_LIST_DEL ? "-="
                                                             : "=";
                run_.out += quoted(change.value);
            }
            run_.out += "\n";
        }
    }
}

void UciTool::print_package(const uci_package &package)
{
    std::map<std::string, int> counts;
    uci_element *e = nullptr;
    uci_foreach_element(&package.sections, e)
    {
        const uci_section &section = *uci_to_section(e);
        const int index = counts[section.type]++;
        const std::string position =
            std::string("@") + section.type + "[" + std::to_string(index) + "]";
        print_section(section, section.anonymous && !names_ ? position : section.e.name);
    }
}

void UciTool::print_section(const uci_section &section, const std::string &name)
{
    const std::string path = std::string(section.package->e.name) + "." + name;
    run_.out += path + "=" + section.type + "\n";
    uci_element *e = nullptr;
    uci_foreach_element(&section.options, e)
    {
        print_option(*uci_to_option(e), path + "." + e->name);
    }
}

void UciTool::print_option(const uci_option &option, const std::string &path)
{
    run_.out += path + "=";
    if (option.type == UCI_TYPE_STRING) {
        run_.out += quoted(option.v.string);
    } else {
        bool first = true;
        uci_element *item = nullptr;
        uci_foreach_element(&option.v.list, item)
        {
            run_.out += first ? "" : " ";
            run_.out += quoted(item->name);
            first = false;
        }
    }
    run_.out += "\n";
}

} // namespace qorcfg
