#!/bin/bash
# deb_test.sh BUILD: packs the build into a .deb, looks at what is in it, installs it into a scratch
# root, lets the daemon and the tool of the package work there, and removes it again. No real path is
# touched.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"
build=$1
PATH=$PATH:/usr/sbin:/sbin # dpkg asks for ldconfig and start-stop-daemon

cd "$scratch"
cpack --config "$build/CPackConfig.cmake" -B "$scratch" >cpack.log 2>&1 || fail "$(cat cpack.log)"
deb=$(echo "$scratch"/qorcfg_*.deb)
[ -f "$deb" ] || fail "cpack made no package: $(cat cpack.log)"

# What is in it: path and mode of each file, and of links and control files.
expect "the content" "-rw-r--r-- /etc/qorcfg/qorcfg.conf
-rw-r--r-- /usr/share/bash-completion/completions/qorctl
-rw-r--r-- /usr/share/doc/qorcfg/copyright
-rw-r--r-- /usr/share/man/man1/qorctl.1
-rw-r--r-- /usr/share/man/man5/qorcfg-batch.5
-rw-r--r-- /usr/share/man/man5/qorcfg.conf.5
-rw-r--r-- /usr/share/man/man8/qorcfg.8
-rwxr-xr-x /etc/qorcfg.d/commit.sh
-rwxr-xr-x /etc/qorcfg.d/init.sh
-rwxr-xr-x /etc/qorcfg.d/nvram.sh
-rwxr-xr-x /etc/qorcfg.d/reload.sh
-rwxr-xr-x /usr/sbin/qorcfg
-rwxr-xr-x /usr/sbin/qorctl" \
    "$(dpkg-deb -c "$deb" | awk '!/^d/ {sub(/^\./, "", $6); print $1, $6}' | sort)"
expect "the owner of the files" "root/root" "$(dpkg-deb -c "$deb" | awk '{print $2}' | sort -u)"
dpkg-deb -e "$deb" control
# No maintainer script: nothing runs when it is installed or removed.
expect "the control files" "conffiles
control
md5sums" "$(ls control)"
expect "the configuration files" "$(dpkg-deb -c "$deb" | awk '!/^d/ {print substr($6, 2)}' |
    grep ^/etc/ | sort)" "$(sort control/conffiles)"

# Its dependencies are the libraries that the programs are linked with, and this machine has them.
depends=$(dpkg-deb -f "$deb" Depends | tr ',' '\n' | awk 'NF {print $1}' | sort)
for library in libc6 libjson-c5 liblmdb0 libstdc++6; do
    grep -qxF "$library" <<<"$depends" || fail "no dependency on $library: $depends"
done
for package in $depends; do
    dpkg-query -W -f='${db:Status-Status}\n' "$package" | grep -x installed >/dev/null || fail "no $package"
done

# Installed into a root whose own database knows none of the libraries.
root=$scratch/r
mkdir -p "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/info"
: >"$root/var/lib/dpkg/status"
package() { dpkg --root="$root" --force-not-root --force-depends --log="$scratch/dpkg.log" "$@"; }
package -i "$deb" >dpkg.out 2>&1 || fail "$(cat dpkg.out)"
package --verify qorcfg >verify.out || fail "$(cat verify.out)"
find "$root" -path "$root/var" -prune -o ! -type d -print | sort >installed
[ -s installed ] || fail "nothing was installed"

# The root becomes a device, and the installed programs and scripts work in it.
device=$top/examples/device/base
cp -a "$device/etc/." "$root/etc/"
cp -a "$device/tmp" "$root/tmp"
mkdir -p "$root/dev" "$root/tmp/.uci" "$root/tmp/cache/wireless" \
    "$root/tmp/cache/qorcfg/ucicfg.d" "$root/tmp/cache/qorcfg/nvramcfg.d"
cp "$root/etc/qorcfg/qorcfg.conf" "$root/tmp/cache/qorcfg/qorcfg.conf"
export QORCFG_ROOT="$root" PATH="$root/usr/sbin:$PATH"
unset QORCTL
expect "the tool" "$root/usr/sbin/qorctl" "$(command -v qorctl)"
for settings in "$device"/defaults.d/*.conf; do
    qorctl import --no-announce "$settings"
done
qorcfg >daemon.out 2>daemon.err &
daemon=$!
for ((tries = 0; tries < 600; tries++)); do
    # The start-up hook has run when every batch file of the start is gone.
    if [ -S "$root/tmp/cache/qorcfg/server.socket" ] && [ -s "$root/etc/config/ddns" ] &&
        ! compgen -G "$root/tmp/cache/qorcfg/ucicfg.d/*uci_update*" >/dev/null; then
        break
    fi
    kill -0 "$daemon" 2>/dev/null || fail "the daemon ended: $(cat daemon.err)"
    sleep 0.05
done
[ "$tries" -lt 600 ] || fail "the daemon did not start: $(cat daemon.err)"
qorctl set endis_ddns=1 sysDNSProviderlist=ZELTRAX sysDNSUser_5=packaged
qorctl commit --wait
grep -q packaged "$root/etc/config/ddns" || fail "not applied: $(cat "$root/etc/config/ddns")"
expect "the status" "1" "$(cat "$root/tmp/cache/qorcfg/GUI_apply_result")"
kill "$daemon"
ended=0
wait "$daemon" || ended=$?
daemon=
expect "the daemon's exit status" 0 "$ended"

# Removing keeps what an administrator may have changed; purging takes that too.
package -r qorcfg >dpkg.out 2>&1 || fail "$(cat dpkg.out)"
[ ! -e "$root/usr/sbin/qorcfg" ] || fail "removed, but /usr/sbin/qorcfg is there"
[ -e "$root/etc/qorcfg.d/init.sh" ] || fail "removed, and the configuration with it"
package -P qorcfg >dpkg.out 2>&1 || fail "$(cat dpkg.out)"
while read -r file; do
    [ ! -e "$file" ] || fail "purged, but $file is there"
done <installed
echo "package: $(basename "$deb"), $(stat -c %s "$deb") bytes"
