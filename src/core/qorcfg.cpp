#include "core/qorcfg.h"

#include "core/base/globals.h"
#include "core/base/hooks.h"
#include "core/base/log.h"
#include "core/change_queue.h"
#include "core/component_table.h"
#include "core/control_server.h"
#include "core/job_board.h"
#include "core/startup.h"
#include "core/stop_signal.h"
#include "engine/systeminfo.h"
#include "platform/path_root.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <string>
#include <unistd.h>

namespace qorcfg {

namespace {

constexpr const char *init_hook = "/etc/qorcfg.d/init.sh";

bool open_socket(ControlServer &server)
{
    const ControlServer::Opened opened = server.open();
    const char *step = nullptr;
    switch (opened) {
    case ControlServer::Opened::yes:
        return true;
    case ControlServer::Opened::no_socket:
        step = "socket";
        break;
    case ControlServer::Opened::not_bound:
        step = "bind";
        break;
    case ControlServer::Opened::not_listening:
        step = "listen";
        break;
    }
    const int reason = errno;
    QORCFG_LOG(" %s error !!!", step);
    std::fprintf(stderr, "qorcfg: %s %s: %s\n", step, rooted(control_socket).c_str(),
                 std::strerror(reason));
    return false;
}

/// One heap for all threads. A heap for each, as glibc makes them, keeps what it once needed:
/// memory would grow with the number of workers that ever overlapped.
void share_one_heap()
{
#ifdef M_ARENA_MAX
    ::mallopt(M_ARENA_MAX, 1);
#endif
}

void start_up(const std::string &component_list)
{
    enable_listed_components(component_list);
    init_all_systeminfo();
    qorcfg_change_is_trigger = 1;
    QORCFG_LOG("register() -  wireless %d", 1);
    run_startup_pass();
    qorcfg_change_is_trigger = 0;
    run_hook_script(init_hook, 0);
}

} // namespace

int run_daemon(int argc, char **argv)
{
    share_one_heap();
    ignore_write_signals();
    const int stop = watch_stop_signals();
    qorcfg_change_is_trigger = 1;
    is_base = read_is_base();
    ControlServer server;
    if (!open_socket(server)) {
        return 1;
    }
    job_board().publish();
    start_up(argc >= 2 ? argv[1] : rooted(default_component_list));
    ChangeQueue changes;
    server.serve(stop, [&](const ControlMessage &message) { changes.handle(message); });
    if (!job_board().wait_for_callbacks()) {
        // A worker still waits for its hook script. The script goes on by itself; ending through
        // the static objects under that worker's feet would not be clean.
        std::fflush(nullptr);
        ::_exit(0);
    }
    return 0;
}

} // namespace qorcfg
