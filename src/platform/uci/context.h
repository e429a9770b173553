#pragma once

#include "platform/uci/nodes.h"
#include "platform/uci/parser.h"
#include "platform/uci/storage.h"

#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace qorcfg::uci {

/// What stands behind struct uci_context: the folders, the loaded packages and the last failure.
/// Results are those of uci.h; the C functions store them in the context (`call`).
class Context : public uci_context {
public:
    Context();
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;

    static Context &of(uci_context &ctx) { return static_cast<Context &>(ctx); }

    int set_confdir(const char *dir);
    int set_savedir(const char *dir);
    int set_conf2dir(const char *dir);
    int add_delta_path(const char *dir);

    Package *find(std::string_view name) const;
    /// Reads a package, its pending changes with it, and adds it to the loaded ones.
    int load(const std::string &name, Package *&package);
    void unload(Package &package) { packages_.remove(package); }
    int import(std::string_view text, const char *name, Package *&package, bool single);
    /// Cuts up the text of a lookup.
    int parse(uci_ptr &ptr, char *text);
    int look_up(uci_ptr &ptr, bool extended);
    int list_configs(char **&list) const;

    int save(Package &package);
    int revert(uci_ptr &ptr);
    int commit(Package *&package, bool overwrite);

    int parse_argument(FILE *stream, char *&rest, char *&word);

    /// Message of the last failure.
    std::string message(const char *prefix) const;
    void forget_detail() { detail_ = {}; }

private:
    /// Where a package of this name lies.
    std::string config_path(const std::string &name) const;
    int read_config(const LockedFile &file, Package &package);
    /// Applies the pending changes of all folders but the save folder; gives how many.
    int replay_searched(Package &package);
    int replay_saved(Package &package);
    /// The package's change file, made with its folder where there is none.
    LockedFile open_changes(const Package &package);
    int commit_changes(Package *&package);
    int commit_as_it_stands(Package &package);
    bool readable(const std::string &text, const Package &package);
    int fail(int error, const Detail &detail);

    std::string confdir_;
    std::string savedir_;
    std::string conf2dir_;
    Children<Package> packages_;
    Children<Folder> searched_;
    Words words_;
    std::string word_;
    bool reading_arguments_ = false;
    Detail detail_;
};

/// Runs the body of a C function: refuses an absent context, keeps the result in the context, and
/// lets no exception out.
template <class Body> int call(uci_context *ctx, Body body) noexcept
{
    if (ctx == nullptr) {
        return UCI_ERR_INVAL;
    }
    Context &context = Context::of(*ctx);
    context.forget_detail();
    try {
        context.err = body(context);
    } catch (const std::bad_alloc &) {
        context.err = UCI_ERR_MEM;
    } catch (...) {
        context.err = UCI_ERR_UNKNOWN;
    }
    return context.err;
}

} // namespace qorcfg::uci
