#include "tools/qorctl.h"

#include "core/base/log.h"
#include "platform/path_root.h"
#include "tools/command_line.h"
#include "tools/verbs.h"

#include <exception>

namespace qorcfg {

namespace {

#ifdef QORCFG_PLATFORM_EXTERNAL
constexpr const char *first_example = "qorctl status --watch";
#else
constexpr const char *first_example = "qorctl set endis_ddns=1 && qorctl commit --wait";
#endif

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
    CommandLine line(
        "Reads and changes the settings of the device, and tells the configuration daemon",
        "Example:\n  " + std::string(first_example) +
            "\n\n"
            "\"qorctl VERB --help\" tells more. Exit status: 0 done, 1 failed, 2 wrong usage.\n"
            "Environment: QORCFG_ROOT, a folder in front of every built-in path, as --root.");
    add_verbs(line.app(), session);
    if (const auto ended = line.read(arguments, session)) {
        return *ended;
    }
    if (line.root()) {
        set_path_root(*line.root());
    }
    return run(session);
}

} // namespace qorcfg
