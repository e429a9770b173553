# shellcheck shell=bash
# For the tests of packages: a scratch folder that goes with the script, and one way to fail.
set -euo pipefail
export LC_ALL=C

# shellcheck disable=SC2034 # for the scripts
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
scratch=$(mktemp -d /tmp/qorpkg.XXXXXX)
daemon=
clean_up() {
    if [ -n "$daemon" ]; then
        kill "$daemon" 2>/dev/null || true
        wait "$daemon" 2>/dev/null || true
    fi
    rm -rf "$scratch"
}
trap clean_up EXIT

fail() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# expect WHAT WANTED FOUND
expect() {
    [ "$2" = "$3" ] || fail "$1 differs (wanted, found):"$'\n'"$(diff <(echo "$2") <(echo "$3") || true)"
}
