#include "apply/apply.h"
#include "platform/job_number.h"
#include "tools/command_line.h"
#include "tools/jobs.h"
#include "tools/verbs.h"

#include <memory>
#include <optional>

namespace qorcfg {

namespace {

struct ApplyOptions {
    std::optional<std::string> job;
    bool startup = false;
    bool dry_run = false;
};

/// The latest job that the daemon has numbered since its start. Before the first one there is none:
/// what lies there is from an earlier run, of whose numbers nothing is known.
std::optional<int> latest_job()
{
    const auto state = read_jobs();
    const bool good = state && state->last >= 1 && state->last <= last_job_number;
    return good ? std::optional(state->last) : std::nullopt;
}

int apply(Session &session, const ApplyOptions &options)
{
    BatchSelection selection;
    if (options.startup) {
        if (options.job) {
            return session.misuse("a job number and --startup exclude each other");
        }
        selection.kind = BatchSelection::Kind::startup;
    } else if (options.job) {
        const auto job = job_number(*options.job);
        if (!job) {
            return session.misuse("no job number from 1 to " + std::to_string(last_job_number) +
                                  ": " + shown_name(*options.job));
        }
        selection = {BatchSelection::Kind::job, *job};
    }
    selection.latest_job = latest_job;
    const bool done = options.dry_run ? preview_batches(selection, session.out, session.err)
                                      : apply_batches(selection, session.err);
    return done ? exit_done : exit_failed;
}

} // namespace

void add_apply_verb(CLI::App &app, Session &session)
{
    const auto options = std::make_shared<ApplyOptions>();
    CLI::App *verb = add_verb(app, "apply",
                              "Apply batch files: those of a job and of older ones, of the "
                              "start-up, or all that lie there",
                              "  qorctl apply 12\n"
                              "  qorctl apply --startup\n"
                              "  qorctl apply --dry-run        (print what would change)");
    add_optional_argument(*verb, "JOB", options->job, "Number of a job");
    add_flag(*verb, "--startup", options->startup,
             "Apply what earlier runs of the daemon left, then the start-up files");
    add_flag(*verb, "--dry-run", options->dry_run, "Print what would change, and change nothing");
    choose(*verb, session, [=](Session &each) { return apply(each, *options); });
}

} // namespace qorcfg
