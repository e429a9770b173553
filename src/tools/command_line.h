#pragma once

#include "tools/session.h"

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace qorcfg {

/// The command line of the tool: the option --root, and one verb of those that are added to `app`.
class CommandLine {
public:
    /// The help begins with `description` and ends with `footer`.
    CommandLine(const char *description, const std::string &footer);
    ~CommandLine();
    CommandLine(const CommandLine &) = delete;
    CommandLine &operator=(const CommandLine &) = delete;

    CLI::App &app() { return *app_; }
    /// Reads the arguments, the first of which is the program's name; what the verb does is then
    /// the session's action. The exit status when there is nothing left to run: help was asked
    /// for, or the arguments are wrong and the session has said so.
    std::optional<int> read(const std::vector<std::string> &arguments, Session &session);
    /// The folder of --root, where it was given.
    const std::optional<std::string> &root() const { return root_; }

private:
    std::unique_ptr<CLI::App> app_;
    std::optional<std::string> root_;
};

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

} // namespace qorcfg
