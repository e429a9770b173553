#!/bin/sh
# init.sh: runs once after the daemon's start-up pass, which has written the whole configuration.
# Environment: QORCTL, the program to call where it is not in PATH; QORCFG_ROOT, as for the daemon.
"${QORCTL:-qorctl}" apply --startup
status=$?
"${0%/*}/reload.sh"
exit "$status"
