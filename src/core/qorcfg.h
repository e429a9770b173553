#pragma once

namespace qorcfg {

/// The daemon: prepares the device facts, opens the control socket, enables the listed components,
/// writes every configuration once, runs the start-up hook and serves until it is told to stop.
/// argv[1], when given, is the component list file; further arguments have no meaning. Returns the
/// exit status: 1 when the socket cannot be set up, 0 after a clean stop.
int run_daemon(int argc, char **argv);

} // namespace qorcfg
