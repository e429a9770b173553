#include "tools/qorctl.h"

#include "core/base/log.h"
#include "platform/path_root.h"
#include "tools/arguments.h"
#include "tools/verbs.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <optional>

namespace qorcfg {

namespace {

#ifdef QORCFG_PLATFORM_EXTERNAL
constexpr const char *first_example = "qorctl status --watch";
#else
constexpr const char *first_example = "qorctl set endis_ddns=1 && qorctl commit --wait";
#endif

std::string root_fault(const std::string &root)
{
    // The empty root is the device's own.
    std::error_code ignored;
    const bool usable = root.empty() || std::filesystem::is_directory(root, ignored);
    return usable ? "" : "no such folder: " + shown_name(root);
}

void add_verbs(CLI::App &app, Session &session)
{
#ifndef QORCFG_PLATFORM_EXTERNAL
    // The maker's store has tools of its own, and announces its changes itself.
    add_value_verbs(app, session);
    add_exchange_verbs(app, session);
    add_commit_verb(app, session);
    add_announce_verb(app, session);
#endif
    add_id_verb(app, session);
    add_status_verb(app, session);
    add_explain_verb(app, session);
    add_apply_verb(app, session);
    add_component_verbs(app, session);
}

/// The parser's own message tells neither an unknown verb from a missing one nor the argument that
/// kept it from finding a required one.
std::string usage_fault(const CLI::App &app, const CLI::ParseError &error)
{
    const auto kind = static_cast<CLI::ExitCodes>(error.get_exit_code());
    if (kind != CLI::ExitCodes::RequiredError && kind != CLI::ExitCodes::ExtrasError) {
        return error.what();
    }
    const std::vector<std::string> unread = app.remaining(true);
    const bool has_verb = !app.get_subcommands().empty();
    if (unread.empty()) {
        return has_verb ? error.what() : "no verb; see qorctl --help";
    }
    return (has_verb ? "not expected: " : "no such verb: ") +
           shown_name(unshielded(unread.front()));
}

/// Reads the command line into `session`. The exit status when there is nothing left to run.
std::optional<int> parse(CLI::App &app, const std::vector<std::string> &arguments, Session &session)
{
    std::vector<std::string> rest(arguments.begin() + (arguments.empty() ? 0 : 1), arguments.end());
    rest = shielded(std::move(rest));
    std::reverse(rest.begin(), rest.end()); // the parser takes them from the end
    try {
        app.parse(std::move(rest));
    } catch (const CLI::Success &asked) {
        return app.exit(asked, session.out, session.err);
    } catch (const CLI::ParseError &error) {
        return session.misuse(usage_fault(app, error));
    }
    return std::nullopt;
}

int run(Session &session)
{
    try {
        const int status = session.action();
        session.out.flush();
        if (status == exit_done && !session.out) {
            return session.fail("cannot write to standard output");
        }
        return status;
    } catch (const std::exception &error) {
        return session.fail(error.what());
    }
}

} // namespace

int run_qorctl(const std::vector<std::string> &arguments, std::istream &in, std::ostream &out,
               std::ostream &err)
{
    // The log on the console is the daemon's.
    const LogSilence silence;
    Session session{in, out, err, {}};
    CLI::App app("Reads and changes the settings of the device, and tells the configuration daemon",
                 "qorctl");
    app.footer("Example:\n  " + std::string(first_example) +
               "\n\n"
               "\"qorctl VERB --help\" tells more. Exit status: 0 done, 1 failed, 2 wrong usage.\n"
               "Environment: QORCFG_ROOT, a folder in front of every built-in path, as --root.");
    std::optional<std::string> root;
    app.add_option("--root", root, "Folder in front of every built-in path")
        ->option_text("DIR")
        ->transform(unshielded)
        ->check(root_fault);
    app.require_subcommand(1);
    app.get_formatter()->label("SUBCOMMAND", "VERB");
    add_verbs(app, session);
    if (const auto ended = parse(app, arguments, session)) {
        return *ended;
    }
    if (root) {
        set_path_root(*root);
    }
    return run(session);
}

} // namespace qorcfg
