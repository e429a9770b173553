#!/bin/sh
# nvram.sh FILE: merges the "set PATH=VALUE" lines of an update file, nvram_update[JOB].NAME, into
# the settings file NAME: one PATH=VALUE line a setting, the last value of a path wins. The file is
# replaced whole; when that fails the old one stays and the exit status is not 0. Taking the same
# update twice changes nothing.
# Environment: QORCFG_ROOT, a folder in front of every built-in path.
export LC_ALL=C

fail() {
    echo "nvram.sh: $1" >&2
    exit 1
}

if [ $# != 1 ]; then
    echo "usage: nvram.sh FILE" >&2
    exit 2
fi
update=$1
case $update in
/*) ;;
*) update=./$update ;;
esac
name=${update##*/}
name=${name#claimed.}
case $name in
nvram_update*.*) name=${name#*.} ;;
*) fail "not the name of an update file: $1" ;;
esac
case $name in
'' | . | ..) fail "no document name in: $1" ;;
esac
[ -r "$update" ] || fail "cannot read $1"

folder=${QORCFG_ROOT:-}/tmp/etc/nvram
settings=$folder/$name
new=$folder/.$name.new
mkdir -p "$folder" || fail "cannot make $folder"
umask 077 # settings hold passwords
# Whoever called an earlier run may have been killed and left it running.
exec 9<"$folder"
if command -v flock >/dev/null; then
    flock 9 || fail "cannot lock $folder"
fi
rm -f "$new"
old=/dev/null
if [ -e "$settings" ]; then
    old=$settings
    cp -p "$settings" "$new" || { # for owner and mode
        rm -f "$new"
        fail "cannot write $new"
    }
fi

# A value is data to this program, never text to evaluate.
merge() {
    awk '
    function keep(setting,    sign, path) {
        sign = index(setting, "=")
        if (sign < 2)
            return
        path = substr(setting, 1, sign - 1)
        if (!(path in settings))
            order[++count] = path
        settings[path] = setting
    }
    FILENAME == ARGV[1] { keep($0); next }
    /^set / { keep(substr($0, 5)) }
    END {
        for (i = 1; i <= count; i++)
            print settings[order[i]]
    }' "$old" "$update"
}

# BusyBox's awk says nothing when the disk is full, so what was written is compared.
if merge >"$new" && merge | cmp -s - "$new" && mv -f "$new" "$settings"; then
    exit 0
fi
rm -f "$new"
fail "cannot write $settings"
