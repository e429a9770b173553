#include "tools/verbs.h"

#include "core/explained_jobs.h"
#include "platform/file.h"
#include "platform/file_calls.h"
#include "platform/job_number.h"
#include "platform/path_root.h"
#include "tools/command_line.h"
#include "tools/explain.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace qorcfg {

namespace {

int switch_on(Session &session)
{
    constexpr mode_t private_mode = 0600;
    const std::string path = rooted(explain_switch);
    if (!open_file(path, O_WRONLY | O_CREAT | O_NOFOLLOW, private_mode)) {
        return session.fail("cannot make " + path + ": " + std::strerror(errno));
    }
    return exit_done;
}

/// The switch goes first: a job that ends now finds it gone, and takes back what it published.
int switch_off(Session &session)
{
    for (const char *file : {explain_switch, explain_file}) {
        const std::string path = rooted(file);
        if (file_calls::unlink(path.c_str()) != 0 && errno != ENOENT) {
            return session.fail("cannot remove " + path + ": " + std::strerror(errno));
        }
    }
    return exit_done;
}

std::string why_nothing()
{
    const bool on = ::access(rooted(explain_switch).c_str(), F_OK) == 0;
    return on ? "no job has ended since explaining was switched on"
              : "explaining is off; see qorctl explain --help";
}

std::string unknown_job(int job, const std::vector<ExplainedJob> &jobs)
{
    std::string text = "job " + std::to_string(job) + " is not among the explained ones:";
    for (const ExplainedJob &each : jobs) {
        text += " " + std::to_string(each.job);
    }
    return text;
}

int explain(Session &session, std::optional<int> number)
{
    const Explanations read = read_explanations();
    if (!read.error.empty()) {
        return session.fail(read.error);
    }
    if (read.jobs.empty()) {
        return session.fail(why_nothing());
    }
    auto job = std::prev(read.jobs.end());
    if (number) {
        job = std::find_if(read.jobs.begin(), read.jobs.end(),
                           [&](const auto &each) { return each.job == *number; });
        if (job == read.jobs.end()) {
            return session.fail(unknown_job(*number, read.jobs));
        }
    }
    KeyNames names;
    print_explanation(session.out, *job, names);
    return exit_done;
}

int run(Session &session, const std::optional<std::string> &what)
{
    if (!what) {
        return explain(session, std::nullopt);
    }
    if (*what == "on") {
        return switch_on(session);
    }
    if (*what == "off") {
        return switch_off(session);
    }
    if (const auto job = job_number(*what)) {
        return explain(session, job);
    }
    return session.misuse("neither on, off nor a job number from 1 to " +
                          std::to_string(last_job_number) + ": " + shown_name(*what));
}

} // namespace

void add_explain_verb(CLI::App &app, Session &session)
{
    const auto what = std::make_shared<std::optional<std::string>>();
    CLI::App *verb = add_verb(app, "explain",
                              "Print why a job wrote what it wrote: the one that ended last, or "
                              "another of the last ones",
                              "  qorctl explain on         (from the next job on)\n"
                              "  qorctl explain\n"
                              "  qorctl explain 12\n"
                              "  qorctl explain off        (and forget what was told)");
    add_optional_argument(*verb, "JOB|on|off", *what, "Number of a job, or the switch");
    choose(*verb, session, [=](Session &each) { return run(each, *what); });
}

} // namespace qorcfg
