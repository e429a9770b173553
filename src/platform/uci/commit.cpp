#include "platform/uci/context.h"
#include "platform/uci/delta.h"
#include "platform/uci/export.h"
#include "platform/uci/lookup.h"

#include "platform/file.h"
#include "platform/file_calls.h"

#include <climits>
#include <cstdlib>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace qorcfg::uci {

namespace {

/// The file behind symbolic links: it is what a commit replaces, not the link.
std::string resolved(const std::string &path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                           &std::free);
    return real ? real.get() : path;
}

/// A configuration file held for a commit. One that had to be made goes again unless `keep` is
/// called.
class HeldConfig {
public:
    explicit HeldConfig(const std::string &path)
        : path_(path), file_(open_locked(path, Access::create, 0600))
    {
    }
    HeldConfig(const HeldConfig &) = delete;
    HeldConfig &operator=(const HeldConfig &) = delete;
    ~HeldConfig()
    {
        if (file_.created && !kept_) {
            file_calls::unlink(path_.c_str());
        }
    }

    const LockedFile &file() const { return file_; }
    bool replace(std::string_view text)
    {
        kept_ = replace_file(resolved(path_), text, 0600);
        return kept_;
    }

private:
    std::string path_;
    LockedFile file_;
    bool kept_ = false;
};

int replay_file(Package &package, const LockedFile &file, bool keep)
{
    const auto text = file ? read_whole(file) : std::nullopt;
    return text ? replay(package, *text, keep) : 0;
}

std::string change_path(const char *folder, const Package &package)
{
    return std::string(folder) + "/" + std::string(package.name());
}

} // namespace

int Context::replay_searched(Package &package)
{
    int applied = 0;
    const uci_element *e = nullptr;
    uci_foreach_element(&delta_path, e)
    {
        if (savedir_ != e->name) {
            applied +=
                replay_file(package, open_locked(change_path(e->name, package), Access::read),
                            (flags & UCI_FLAG_SAVED_DELTA) != 0);
        }
    }
    return applied;
}

int Context::replay_saved(Package &package)
{
    return replay_file(package, open_locked(change_path(savedir, package), Access::read),
                       (flags & UCI_FLAG_SAVED_DELTA) != 0);
}

LockedFile Context::open_changes(const Package &package)
{
    file_calls::mkdir(savedir, mode_of(confdir, 0700));
    return open_locked(change_path(savedir, package), Access::create,
                       mode_of(confdir_ + "/" + std::string(package.name()), 0600));
}

int Context::save(Package &package)
{
    if (!package.has_delta) {
        return commit_as_it_stands(package);
    }
    if (uci_list_empty(&package.delta)) {
        return UCI_OK;
    }
    std::string lines;
    const uci_element *e = nullptr;
    uci_foreach_element(&package.delta, e)
    {
        lines += change_line(package.name(), *uci_to_delta(e));
    }
    const LockedFile file = open_changes(package);
    // Half a line, left by a writer that was killed, would take the first of these with it.
    if (!file || !drop_cut_off_line(file.fd.get()) || !append_all(file.fd.get(), lines)) {
        return UCI_ERR_IO;
    }
    package.unsaved().clear();
    return UCI_OK;
}

int Context::commit(Package *&package, bool overwrite)
{
    if (package->path == nullptr) {
        if (!overwrite) {
            return UCI_ERR_INVAL;
        }
        package->set_path(config_path(std::string(package->name())));
    }
    return package->has_delta && !overwrite ? commit_changes(package)
                                            : commit_as_it_stands(*package);
}

int Context::commit_changes(Package *&package)
{
    if (const int result = save(*package); result != UCI_OK) {
        return result;
    }
    HeldConfig held(package->path);
    if (!held.file()) {
        return UCI_ERR_IO;
    }
    // Others may have written the package since it was loaded.
    auto fresh = std::make_unique<Package>(*this, std::string(package->name()));
    if (const int result = read_config(held.file(), *fresh); result != UCI_OK) {
        return result;
    }
    const LockedFile changes = open_locked(change_path(savedir, *fresh), Access::write);
    const int applied = replay_searched(*fresh) + replay_file(*fresh, changes, false);
    fresh->saved().clear();
    if (applied > 0) {
        // The changes go only after the file that holds them stands: a full disk costs nothing.
        if (!held.replace(export_text(*fresh, {})) || (changes && !shorten_to(changes, {}))) {
            return UCI_ERR_IO;
        }
    }
    fresh->set_path(package->path);
    fresh->has_delta = true;
    Package &old = *std::exchange(package, &packages_.append(std::move(fresh)));
    packages_.remove(old);
    return UCI_OK;
}

bool Context::readable(const std::string &text, const Package &package)
{
    Package copy(*this, std::string(package.name()));
    return Parser(text, &copy, {}).run() == UCI_OK;
}

int Context::commit_as_it_stands(Package &package)
{
    const std::string text = export_text(package, {});
    // Names are not checked when they are set. Here they would go straight into a file that nobody
    // could load any more.
    if (!readable(text, package)) {
        return UCI_ERR_INVAL;
    }
    HeldConfig held(package.path);
    if (!held.file()) {
        return UCI_ERR_IO;
    }
    const LockedFile changes = package.has_delta
                                   ? open_locked(change_path(savedir, package), Access::write)
                                   : LockedFile();
    if (!held.replace(text) || (changes && !shorten_to(changes, {}))) {
        return UCI_ERR_IO;
    }
    package.unsaved().clear();
    package.saved().clear();
    return UCI_OK;
}

int Context::revert(uci_ptr &ptr)
{
    if (const int result = expand(this, ptr, false); result != UCI_OK) {
        return result;
    }
    Package &old = package_of(ptr);
    if (!old.has_delta) {
        return UCI_ERR_INVAL;
    }
    if (const int result = save(old); result != UCI_OK) {
        return result;
    }
    const std::string name(old.name());
    const std::string section = ptr.section != nullptr ? ptr.section : "";
    const std::string option = ptr.option != nullptr ? ptr.option : "";
    if (const LockedFile changes = open_locked(change_path(savedir, old), Access::write)) {
        const auto text = read_whole(changes);
        const Undo undo{name, ptr.section != nullptr ? &section : nullptr,
                        ptr.option != nullptr ? &option : nullptr};
        const std::string kept = text ? without(*text, undo) : std::string();
        if (!text || (kept != *text && !shorten_to(changes, kept))) {
            return UCI_ERR_IO;
        }
    }
    unload(old);
    ptr = {};
    Package *package = nullptr;
    const int result = load(name, package);
    if (result == UCI_OK) {
        ptr.p = package;
        ptr.package = package->e.name;
        ptr.last = &package->e;
    }
    return result;
}

} // namespace qorcfg::uci
