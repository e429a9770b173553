#include "tools/verbs.h"

#include "platform/key_id.h"
#include "platform/reference/notifier.h"
#include "tools/command_line.h"

#include <memory>

namespace qorcfg {

namespace {

struct AnnounceOptions {
    std::vector<std::string> keys;
    int action = static_cast<int>(KeyChange::changed);
};

int announce(Session &session, const AnnounceOptions &options)
{
    if (options.action == commit_action) {
        return session.misuse("--action " + std::to_string(commit_action) +
                              " would commit; use the verb commit");
    }
    for (const std::string &key : options.keys) {
        if (key.empty()) {
            return session.misuse("an empty argument is no key");
        }
    }
    for (const std::string &key : options.keys) {
        const SendResult sent = send_message(options.action, config_key_id(key.c_str()));
        if (!sent.ok()) {
            return session.fail("not announced: " + shown_name(key) + ": " + sent.text);
        }
    }
    return exit_done;
}

} // namespace

void add_announce_verb(CLI::App &app, Session &session)
{
    const auto options = std::make_shared<AnnounceOptions>();
    CLI::App *verb = add_verb(app, "announce", "Announce keys to the daemon at once, uncommitted",
                              "  qorctl announce endis_ddns --action 2");
    add_arguments(*verb, "KEY", options->keys, "Name of a key");
    add_number_option(*verb, "--action", options->action,
                      "What happened to the keys: 0 created, 1 removed, 2 changed (2)");
    choose(*verb, session, [=](Session &each) { return announce(each, *options); });
}

} // namespace qorcfg
