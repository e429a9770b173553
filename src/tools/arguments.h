#pragma once

#include "tools/session.h"

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace qorcfg {

/// A verb of the command line; its help ends with `example`, whole lines as one would type them.
CLI::App *add_verb(CLI::App &app, const char *name, const char *description, const char *example);

/// Makes `action` what the session runs when the command line names the verb. The action owns the
/// variables that the verb's options were bound to.
void choose(CLI::App &verb, Session &session, std::function<int(Session &)> action);

/// A required argument, and a required list of them. Both take every byte as it is.
void add_argument(CLI::App &verb, const char *name, std::string &value, const char *description);
void add_arguments(CLI::App &verb, const char *name, std::vector<std::string> &values,
                   const char *description);
/// An argument that may be missing; an empty one is there.
void add_optional_argument(CLI::App &verb, const char *name, std::optional<std::string> &value,
                           const char *description);

/// The job number that an argument names; nothing for anything else.
std::optional<int> job_number(const std::string &text);

/// A flag; `excluded` are the arguments that cannot stand beside it.
void add_flag(CLI::App &verb, const char *name, bool &flag, const char *description,
              std::initializer_list<const char *> excluded = {});
/// The flag --json of the verbs whose output is data.
void add_json_flag(CLI::App &verb, bool &json);
/// The flag --no-announce of the verbs that write settings.
void add_no_announce_flag(CLI::App &verb, bool &no_announce);

/// An option with a number behind it.
void add_number_option(CLI::App &verb, const char *name, int &number, const char *description);
/// An option for a time of 1 s to a day; `usual` are the seconds of one that names none.
void add_seconds_option(CLI::App &verb, const char *name, std::optional<int> &seconds,
                        const char *usual, const char *description);

/// Arguments in a form in which the parser takes none for its own that is not: it has a meaning for
/// "++" and for square brackets, and does not take every argument behind "--" as it is.
/// `unshielded` undoes it for one; the argument functions above use it.
std::vector<std::string> shielded(std::vector<std::string> arguments);
std::string unshielded(std::string argument);

} // namespace qorcfg
