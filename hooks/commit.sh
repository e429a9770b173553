#!/bin/sh
# commit.sh JOB: runs after the callbacks of each job, which have written their differences.
# Environment: QORCTL, the program to call where it is not in PATH; QORCFG_ROOT, as for the daemon.
if [ $# != 1 ]; then
    echo "usage: commit.sh JOB" >&2
    exit 2
fi
"${QORCTL:-qorctl}" apply "$1"
status=$?
"${0%/*}/reload.sh"
exit "$status"
