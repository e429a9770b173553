#include "tools/commit.h"

#include "platform/file.h"
#include "platform/path_root.h"
#include "platform/qor_platform.h"
#include "platform/reference/notifier.h"
#include "tools/jobs.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/file.h>

namespace qorcfg {

namespace {

using std::chrono::milliseconds;
using Kind = CommitResult::Kind;

/// Keeps commits of several processes apart, whose keys would mix into each other's jobs. Nothing
/// depends on it, so a user who may not take the lock goes without.
Fd lock_commits()
{
    const std::string path = rooted("/tmp/cache/qorcfg/commit.lock");
    constexpr mode_t private_mode = 0600;
    open_file(path, O_WRONLY | O_CREAT | O_NOFOLLOW, private_mode);
    return lock_path(path, LOCK_EX);
}

/// How to send a commit: with a deadline it is also waited for that the daemon takes it.
SendOptions commit_options(const std::optional<WaitClock::time_point> &deadline)
{
    SendOptions options;
    if (deadline) {
        // No limit at all would be for ever.
        constexpr milliseconds least{100};
        const auto left = std::chrono::ceil<milliseconds>(*deadline - WaitClock::now());
        options = {std::max(left, least), true};
    }
    return options;
}

/// Sends the announcements of a group; `sent` counts them.
SendResult announce(const AnnouncementGroup &group, std::size_t &sent)
{
    for (const Announcement &each : group.announcements) {
        if (SendResult result = send_message(each.action, each.id); !result.ok()) {
            return result;
        }
        ++sent;
    }
    return {};
}

CommitResult save_without_daemon(const std::vector<MarkedKey> &keys, const std::string &reason)
{
    if (::config_commit() != 0) {
        return {Kind::failed, "the store could not be made persistent"};
    }
    if (std::string error = store_clear_marks(keys); !error.empty()) {
        return {Kind::failed, std::move(error)};
    }
    return {Kind::unheard, reason + "; saved, but nobody was told: the daemon writes everything "
                                    "when it starts next"};
}

CommitResult announce_and_commit(const std::vector<MarkedKey> &keys,
                                 const std::optional<WaitClock::time_point> &deadline)
{
    std::size_t sent = 0;
    std::size_t carried = 0;
    for (const AnnouncementGroup &group : plan_announcements(keys)) {
        SendResult result = announce(group, sent);
        if (sent == 0 && result.no_daemon()) {
            return save_without_daemon(keys, result.text);
        }
        if (result.ok()) {
            result = send_message(commit_action, 0, commit_options(deadline));
        }
        if (!result.ok()) {
            return {Kind::failed, result.text +
                                      "; still marked: " + std::to_string(keys.size() - carried) +
                                      " of " + std::to_string(keys.size()) + " keys"};
        }
        if (std::string error = store_clear_marks(group.completed); !error.empty()) {
            return {Kind::failed, std::move(error)};
        }
        carried += group.completed.size();
    }
    return {Kind::announced, ""};
}

} // namespace

CommitResult commit_changes(std::optional<milliseconds> wait)
{
    std::optional<WaitClock::time_point> deadline;
    {
        const Fd lock = lock_commits();
        std::vector<MarkedKey> keys;
        if (std::string error = store_marked_keys(keys); !error.empty()) {
            return {Kind::failed, std::move(error)};
        }
        if (keys.empty()) {
            return {Kind::nothing, ""};
        }
        if (wait) {
            deadline = WaitClock::now() + *wait;
        }
        CommitResult result = announce_and_commit(keys, deadline);
        if (result.kind != Kind::announced) {
            return result;
        }
    }
    if (deadline) {
        if (std::string error = wait_for_jobs(*deadline); !error.empty()) {
            return {Kind::failed, std::move(error)};
        }
    }
    return {Kind::announced, ""};
}

} // namespace qorcfg
