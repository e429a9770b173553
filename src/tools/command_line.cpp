#include "tools/command_line.h"

#include "platform/job_number.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>

namespace qorcfg {

namespace {

// Cannot occur in an argument, and means nothing to the parser.
constexpr char shield = '\0';

/// Arguments in a form in which the parser takes none for its own that is not: it has a meaning for
/// "++" and for square brackets, and does not take every argument behind "--" as it is.
std::vector<std::string> shielded(std::vector<std::string> arguments)
{
    const auto mark = std::find(arguments.begin(), arguments.end(), "--");
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (argument > mark || *argument == "++" || argument->substr(0, 1) == "[") {
            argument->insert(argument->begin(), shield);
        }
    }
    if (mark != arguments.end()) {
        arguments.erase(mark);
    }
    return arguments;
}

/// One argument as it was before `shielded`.
std::string unshielded(std::string argument)
{
    if (!argument.empty() && argument.front() == shield) {
        argument.erase(0, 1);
    }
    return argument;
}

std::string root_fault(const std::string &root)
{
    // The empty root is the device's own.
    std::error_code ignored;
    const bool usable = root.empty() || std::filesystem::is_directory(root, ignored);
    return usable ? "" : "no such folder: " + shown_name(root);
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

} // namespace

CommandLine::CommandLine(const char *description, const std::string &footer)
    : app_(std::make_unique<CLI::App>(description, "qorctl"))
{
    app_->footer(footer);
    app_->add_option("--root", root_, "Folder in front of every built-in path")
        ->option_text("DIR")
        ->transform(unshielded)
        ->check(root_fault);
    app_->require_subcommand(1);
    app_->get_formatter()->label("SUBCOMMAND", "VERB");
}

CommandLine::~CommandLine() = default;

std::optional<int> CommandLine::read(const std::vector<std::string> &arguments, Session &session)
{
    std::vector<std::string> rest(arguments.begin() + (arguments.empty() ? 0 : 1), arguments.end());
    rest = shielded(std::move(rest));
    std::reverse(rest.begin(), rest.end()); // the parser takes them from the end
    try {
        app_->parse(std::move(rest));
    } catch (const CLI::Success &asked) {
        return app_->exit(asked, session.out, session.err);
    } catch (const CLI::ParseError &error) {
        return session.misuse(usage_fault(*app_, error));
    }
    return std::nullopt;
}

CLI::App *add_verb(CLI::App &app, const char *name, const char *description, const char *example)
{
    CLI::App *verb = app.add_subcommand(name, description);
    verb->group("Verbs");
    verb->footer(std::string("Example:\n") + example);
    return verb;
}

void choose(CLI::App &verb, Session &session, std::function<int(Session &)> action)
{
    verb.callback([&session, action = std::move(action)] {
        session.action = [&session, action] { return action(session); };
    });
}

void add_argument(CLI::App &verb, const char *name, std::string &value, const char *description)
{
    verb.add_option(name, value, description)->required()->transform(unshielded)->option_text(" ");
}

void add_arguments(CLI::App &verb, const char *name, std::vector<std::string> &values,
                   const char *description)
{
    verb.add_option(name, values, description)
        ->required()
        ->transform(unshielded)
        ->option_text("...");
}

void add_optional_argument(CLI::App &verb, const char *name, std::optional<std::string> &value,
                           const char *description)
{
    verb.add_option(name, value, description)->transform(unshielded)->option_text(" ");
}

void add_flag(CLI::App &verb, const char *name, bool &flag, const char *description,
              std::initializer_list<const char *> excluded)
{
    CLI::Option *option = verb.add_flag(name, flag, description);
    for (const char *other : excluded) {
        option->excludes(verb.get_option(other));
    }
}

void add_json_flag(CLI::App &verb, bool &json)
{
    add_flag(verb, "--json", json, "Print as JSON");
}

void add_no_announce_flag(CLI::App &verb, bool &no_announce)
{
    add_flag(verb, "--no-announce", no_announce, "Leave the keys unmarked: commit tells nobody");
}

void add_number_option(CLI::App &verb, const char *name, int &number, const char *description)
{
    verb.add_option(name, number, description)->option_text("N");
}

void add_seconds_option(CLI::App &verb, const char *name, std::optional<int> &seconds,
                        const char *usual, const char *description)
{
    constexpr int longest = 86400;
    verb.add_option(name, seconds, description)
        ->expected(0, 1)
        ->default_str(usual)
        ->check(CLI::Range(1, longest))
        ->option_text("[=SECONDS]");
}

std::optional<int> job_number(const std::string &text)
{
    int job = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, job);
    const bool good = error == std::errc() && stop == end && job >= 1 && job <= last_job_number;
    return good ? std::optional(job) : std::nullopt;
}

} // namespace qorcfg
