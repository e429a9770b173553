#include "tools/arguments.h"

#include "platform/job_number.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

namespace qorcfg {

namespace {

// Cannot occur in an argument, and means nothing to the parser.
constexpr char shield = '\0';

} // namespace

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

std::string unshielded(std::string argument)
{
    if (!argument.empty() && argument.front() == shield) {
        argument.erase(0, 1);
    }
    return argument;
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
