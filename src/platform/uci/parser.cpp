#include "platform/uci/parser.h"

#include "platform/uci/edit.h"
#include "platform/uci/names.h"

#include <algorithm>
#include <utility>

namespace qorcfg::uci {

Detail unterminated(const Words &words)
{
    return {words.open_quote() == '"' ? "EOF with unterminated \"" : "EOF with unterminated '",
            words.line(), words.byte()};
}

Parser::Parser(std::string_view text, Package *package, Settings settings)
    : text_(text), source_(text), package_(package), settings_(std::move(settings))
{
}

int Parser::run()
{
    // A file of NUL bytes is what a power cut leaves on some file systems. Read as text it would be
    // an empty package, and the next commit would make that final.
    if (const auto nul = text_.find('\0'); nul != std::string_view::npos) {
        const auto before = text_.substr(0, nul);
        detail_ = {"invalid character", 1, nul - (before.rfind('\n') + 1)};
        detail_.line += static_cast<int>(std::count(before.begin(), before.end(), '\n'));
        return UCI_ERR_PARSE;
    }
    while (words_.next_line(source_)) {
        if (commands()) {
            continue;
        }
        if (settings_.strict || error_ != UCI_ERR_PARSE) {
            return error_;
        }
        if (settings_.passed_over) {
            settings_.passed_over(detail_);
        }
    }
    return UCI_OK;
}

bool Parser::to_package(const std::string &name)
{
    section_ = nullptr;
    package_ = settings_.make_package(name);
    if (package_ == nullptr) {
        error_ = UCI_ERR_DUPLICATE;
    }
    return package_ != nullptr;
}

bool Parser::fail(const char *reason)
{
    detail_ = {reason, words_.line(), words_.byte()};
    return false;
}

bool Parser::commands()
{
    for (;;) {
        const std::string_view keyword = words_.keyword();
        if (keyword.empty()) {
            return true;
        }
        bool good = false;
        if (keyword == "option" || keyword == "o" || keyword == "list" || keyword == "l") {
            if (section_ == nullptr) {
                return fail("option/list command found before the first section");
            }
            const bool list = keyword.front() == 'l';
            words_.skip(keyword);
            good = option_line(list);
        } else if (keyword == "config" || keyword == "c") {
            words_.skip(keyword);
            good = config_line();
        } else if (keyword == "package" || keyword == "p") {
            words_.skip(keyword);
            good = package_line();
        } else {
            return fail("invalid command");
        }
        if (!good) {
            return false;
        }
    }
}

bool Parser::required(std::string &word)
{
    return optional(word) && (!word.empty() || fail("insufficient arguments"));
}

bool Parser::optional(std::string &word)
{
    if (!words_.word(source_, word)) {
        detail_ = unterminated(words_);
        return false;
    }
    return true;
}

bool Parser::end_of_command()
{
    std::string surplus;
    return optional(surplus) && (surplus.empty() || fail("too many arguments"));
}

bool Parser::package_line()
{
    std::string name;
    if (words_.at_end()) {
        return fail("package without name");
    }
    if (!required(name) || (!is_package_name(name) && !fail("invalid character in name field")) ||
        !end_of_command()) {
        return false;
    }
    return settings_.single || to_package(name);
}

bool Parser::config_line()
{
    std::string type;
    std::string name;
    if (words_.at_end()) {
        return fail("config without name");
    }
    if (package_ == nullptr && settings_.name.empty()) {
        return fail("attempting to import a file without a package name");
    }
    if (package_ == nullptr && !to_package(settings_.name)) {
        return false;
    }
    section_ = nullptr;
    if (!required(type) || (!is_printable_word(type) && !fail("invalid character in type field")) ||
        !optional(name) ||
        (!name.empty() && !is_name(name) && !fail("invalid character in name field")) ||
        !end_of_command()) {
        return false;
    }
    Section *section = name.empty() ? nullptr : package_->find(name);
    const bool changed = section == nullptr || section->type != type;
    if (section == nullptr) {
        section = &package_->add_section(type, name.empty() ? nullptr : name.c_str());
    } else if (changed && settings_.strict) {
        return fail("section of different type overwrites prior section with same name");
    } else if (changed) {
        section->set_type(type);
    }
    if (changed && settings_.merge) {
        log_change(*package_, section->anonymous ? UCI_CMD_ADD : UCI_CMD_CHANGE, section->e.name,
                   nullptr, type.c_str());
    }
    section_ = section;
    return true;
}

bool Parser::option_line(bool list)
{
    std::string name;
    std::string value;
    if (words_.at_end()) {
        return fail("option without name");
    }
    if (!required(name) || (!is_name(name) && !fail("invalid character in name field")) ||
        !optional(value) || !end_of_command()) {
        return false;
    }
    if (value.empty() && !list) {
        return true; // a string option is never empty; an earlier value stays
    }
    Option *option = section_->find(name);
    if (option == nullptr) {
        option = &section_->add_option(name);
    } else if (!list && option->type == UCI_TYPE_STRING && option->v.string == value) {
        return true;
    }
    if (settings_.merge) {
        log_change(*package_, list ? UCI_CMD_LIST_ADD : UCI_CMD_CHANGE, section_->e.name,
                   name.c_str(), value.c_str());
    }
    if (list) {
        option->add_item(std::move(value));
    } else {
        option->set_value(std::move(value));
    }
    return true;
}

} // namespace qorcfg::uci
