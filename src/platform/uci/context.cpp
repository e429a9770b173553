#include "platform/uci/context.h"

#include "platform/uci/delta.h"
#include "platform/uci/lookup.h"
#include "platform/uci/names.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>
#include <vector>

namespace qorcfg::uci {

namespace {

constexpr std::array messages{"Success",   "Out of memory", "Invalid argument", "Entry not found",
                              "I/O error", "Parse error",   "Duplicate entry",  "Unknown error"};

} // namespace

Context::Context()
    : uci_context{}, confdir_(UCI_CONFDIR), savedir_(UCI_SAVEDIR), conf2dir_(UCI_CONF2DIR),
      packages_(root), searched_(delta_path)
{
    flags = static_cast<uci_flags>(UCI_FLAG_STRICT | UCI_FLAG_SAVED_DELTA);
    confdir = confdir_.data();
    savedir = savedir_.data();
    conf2dir = conf2dir_.data();
}

int Context::set_confdir(const char *dir)
{
    if (dir == nullptr) {
        return UCI_ERR_INVAL;
    }
    confdir_ = dir;
    confdir = confdir_.data();
    return UCI_OK;
}

int Context::set_savedir(const char *dir)
{
    if (dir == nullptr) {
        return UCI_ERR_INVAL;
    }
    // The old folder is left altogether. Were its changes still read but, at a commit, not emptied,
    // each commit would apply them once more.
    savedir_ = dir;
    savedir = savedir_.data();
    return UCI_OK;
}

int Context::set_conf2dir(const char *dir)
{
    conf2dir_ = dir != nullptr ? dir : "";
    conf2dir = dir != nullptr ? conf2dir_.data() : nullptr;
    return UCI_OK;
}

int Context::add_delta_path(const char *dir)
{
    if (dir == nullptr) {
        return UCI_ERR_INVAL;
    }
    const uci_element *e = nullptr;
    uci_foreach_element(&delta_path, e)
    {
        if (std::string_view(e->name) == dir) {
            return UCI_ERR_DUPLICATE;
        }
    }
    searched_.append(std::make_unique<Folder>(dir));
    return UCI_OK;
}

int Context::fail(int error, const Detail &detail)
{
    detail_ = detail;
    return error;
}

std::string Context::message(const char *prefix) const
{
    std::string text = prefix != nullptr ? std::string(prefix) + ": " : std::string();
    const auto number = static_cast<std::size_t>(err);
    text += messages.at(number < messages.size() ? number : messages.size() - 1);
    if (err == UCI_ERR_PARSE && detail_.reason != nullptr) {
        text.append(" (").append(detail_.reason).append(") at line ");
        text.append(std::to_string(detail_.line)).append(", byte ");
        text.append(std::to_string(detail_.byte));
    }
    return text;
}

Package *Context::find(std::string_view name) const
{
    for (const uci_list *link = root.next; link != &root; link = link->next) {
        Package &package = Package::of(*list_to_element(link));
        if (package.name() == name) {
            return &package;
        }
    }
    return nullptr;
}

std::string Context::config_path(const std::string &name) const
{
    if (!conf2dir_.empty()) {
        std::string overriding = conf2dir_ + "/" + name;
        if (::access(overriding.c_str(), F_OK) == 0) {
            return overriding;
        }
    }
    return confdir_ + "/" + name;
}

int Context::load(const std::string &name, Package *&package)
{
    if (!is_printable_word(name)) {
        return UCI_ERR_INVAL;
    }
    if (find(name) != nullptr) {
        return UCI_ERR_DUPLICATE;
    }
    // Line numbers of arguments count from the last package that was read.
    words_ = {};
    reading_arguments_ = false;
    const bool outside = name.starts_with('/') || name.starts_with("./");
    const auto slash = name.rfind('/');
    if (!outside && (name.starts_with('.') || slash != std::string::npos)) {
        return UCI_ERR_NOTFOUND;
    }
    std::string path = outside ? name : config_path(name);
    const LockedFile file = open_locked(path, Access::read);
    if (!file) {
        return errno == ENOENT || errno == ENOTDIR ? UCI_ERR_NOTFOUND : UCI_ERR_IO;
    }
    auto fresh = std::make_unique<Package>(*this, outside ? name.substr(slash + 1) : name);
    if (const int result = read_config(file, *fresh); result != UCI_OK) {
        return result;
    }
    fresh->set_path(std::move(path));
    fresh->has_delta = !outside;
    if (!outside) {
        replay_searched(*fresh);
        replay_saved(*fresh);
    }
    package = &packages_.append(std::move(fresh));
    return UCI_OK;
}

int Context::read_config(const LockedFile &file, Package &package)
{
    const auto text = read_whole(file);
    if (!text) {
        return UCI_ERR_IO;
    }
    Parser::Settings settings;
    settings.strict = (flags & UCI_FLAG_STRICT) != 0;
    settings.passed_over = [this](const Detail &detail) {
        if ((flags & UCI_FLAG_PERROR) != 0) {
            err = fail(UCI_ERR_PARSE, detail);
            std::fprintf(stderr, "%s\n", message(nullptr).c_str());
        }
    };
    Parser parser(*text, &package, std::move(settings));
    const int result = parser.run();
    return result == UCI_OK ? UCI_OK : fail(result, parser.detail());
}

int Context::import(std::string_view text, const char *name, Package *&package, bool single)
{
    if (name != nullptr && !is_printable_word(name)) {
        return UCI_ERR_INVAL;
    }
    std::vector<std::unique_ptr<Package>> fresh;
    Parser::Settings settings;
    settings.strict = (flags & UCI_FLAG_STRICT) != 0;
    settings.merge = package != nullptr;
    settings.single = single;
    settings.name = name != nullptr ? name : "";
    settings.make_package = [&](const std::string &wanted) -> Package * {
        const bool there = find(wanted) != nullptr ||
                           std::any_of(fresh.begin(), fresh.end(),
                                       [&](const auto &p) { return p->name() == wanted; });
        return there ? nullptr : fresh.emplace_back(std::make_unique<Package>(*this, wanted)).get();
    };
    const auto make_package = settings.make_package;
    Parser parser(text, package, std::move(settings));
    if (const int result = parser.run(); result != UCI_OK) {
        return fail(result, parser.detail());
    }
    if (package != nullptr) {
        return UCI_OK;
    }
    if (fresh.empty() && name != nullptr && make_package(name) == nullptr) {
        return UCI_ERR_DUPLICATE;
    }
    for (auto &one : fresh) {
        package = &packages_.append(std::move(one));
    }
    return UCI_OK;
}

int Context::parse(uci_ptr &ptr, char *text)
{
    const int result = parse_path(ptr, text);
    if (result == UCI_ERR_PARSE && reading_arguments_) {
        // A batch is read: its line is what helps the user.
        return fail(result, {"unknown", words_.line(), 0});
    }
    return result;
}

int Context::look_up(uci_ptr &ptr, bool extended)
{
    if (ptr.p == nullptr && ptr.package == nullptr) {
        return UCI_ERR_INVAL;
    }
    if (ptr.p == nullptr) {
        Package *package = find(ptr.package);
        if (package == nullptr) {
            if (const int result = load(ptr.package, package); result != UCI_OK) {
                ptr.flags = static_cast<decltype(ptr.flags)>(ptr.flags | uci_ptr::UCI_LOOKUP_DONE);
                return result;
            }
        }
        ptr.p = package;
    }
    return find_in_package(ptr, extended);
}

int Context::parse_argument(FILE *stream, char *&rest, char *&word)
{
    StreamSource source(stream);
    if (rest == nullptr) {
        reading_arguments_ = true;
        words_.next_line(source);
    } else if (!words_.go_to(rest)) {
        return UCI_ERR_INVAL;
    }
    if (!words_.word(source, word_)) {
        return fail(UCI_ERR_PARSE, unterminated(words_));
    }
    rest = words_.rest();
    word = word_.data();
    return UCI_OK;
}

} // namespace qorcfg::uci
