#include "tools/verbs.h"

#include "tools/command_line.h"
#include "tools/commit.h"

#include <memory>

namespace qorcfg {

namespace {

struct CommitOptions {
    std::optional<int> wait;
};

int commit(Session &session, const CommitOptions &options)
{
    std::optional<std::chrono::milliseconds> wait;
    if (options.wait) {
        wait = std::chrono::seconds(*options.wait);
    }
    const CommitResult result = commit_changes(wait);
    switch (result.kind) {
    case CommitResult::Kind::nothing:
        session.out << "nothing to commit\n";
        break;
    case CommitResult::Kind::announced:
        break;
    case CommitResult::Kind::unheard:
        session.say(result.text);
        break;
    case CommitResult::Kind::failed:
        return session.fail(result.text);
    }
    return exit_done;
}

} // namespace

void add_commit_verb(CLI::App &app, Session &session)
{
    const auto options = std::make_shared<CommitOptions>();
    CLI::App *verb = add_verb(app, "commit", "Tell the daemon of every changed key and apply them",
                              "  qorctl commit\n"
                              "  qorctl commit --wait=10");
    add_seconds_option(*verb, "--wait", options->wait, "60",
                       "Return when the jobs have ended; an error after SECONDS (60)");
    choose(*verb, session, [=](Session &each) { return commit(each, *options); });
}

} // namespace qorcfg
