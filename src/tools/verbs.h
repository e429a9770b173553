#pragma once

#include "tools/session.h"

namespace CLI {
class App;
} // namespace CLI

// Each adds the verbs of its group to the command line.
namespace qorcfg {

/// get, set, unset
void add_value_verbs(CLI::App &app, Session &session);
/// import, export
void add_exchange_verbs(CLI::App &app, Session &session);
/// commit
void add_commit_verb(CLI::App &app, Session &session);
/// announce
void add_announce_verb(CLI::App &app, Session &session);
/// id
void add_id_verb(CLI::App &app, Session &session);
/// status
void add_status_verb(CLI::App &app, Session &session);
/// explain
void add_explain_verb(CLI::App &app, Session &session);
/// apply
void add_apply_verb(CLI::App &app, Session &session);
/// components, subscribers
void add_component_verbs(CLI::App &app, Session &session);

} // namespace qorcfg
