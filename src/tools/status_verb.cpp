#include "tools/verbs.h"

#include "core/job_board.h"
#include "platform/path_root.h"
#include "tools/command_line.h"
#include "tools/status.h"

#include <chrono>
#include <memory>
#include <thread>

namespace qorcfg {

namespace {

struct StatusOptions {
    bool watch = false;
    bool json = false;
};

void pause_between_looks()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

int status(Session &session, const StatusOptions &options)
{
    KeyNames names;
    const std::string line = status_line(options.json, names);
    if (line.empty()) {
        return session.fail("no daemon has ever run here: there is neither " + rooted(status_file) +
                            " nor " + rooted(jobs_file));
    }
    if (options.watch) {
        watch_status(
            session.out, options.json, [] { return false; }, pause_between_looks);
    } else {
        session.out << line << '\n';
    }
    return exit_done;
}

} // namespace

void add_status_verb(CLI::App &app, Session &session)
{
    const auto options = std::make_shared<StatusOptions>();
    CLI::App *verb = add_verb(app, "status", "Print how far the daemon is with its jobs",
                              "  qorctl status\n"
                              "  qorctl status --watch --json");
    add_flag(*verb, "--watch", options->watch, "Print again at every change, until interrupted");
    add_json_flag(*verb, options->json);
    choose(*verb, session, [=](Session &each) { return status(each, *options); });
}

} // namespace qorcfg
