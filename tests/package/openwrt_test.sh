#!/bin/bash
# openwrt_test.sh BUILD: runs the install part of the OpenWrt package with the build system's few
# definitions that it uses, and its init script with procd's functions recorded.
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/common.sh"
build=$1

# The build system, as far as the package speaks to it.
mkdir -p "$scratch/include"
cat >"$scratch/rules.mk" <<'END'
INCLUDE_DIR:=$(TOPDIR)/include
INSTALL_DIR:=install -d -m0755
INSTALL_BIN:=install -m0755
INSTALL_CONF:=install -m0600
CP:=cp -fpR
PKG_BUILD_DIR:=$(TOPDIR)/source
PKG_INSTALL_DIR:=$(TOPDIR)/staged
END
: >"$scratch/include/cmake.mk"
cat >"$scratch/include/package.mk" <<'END'
define BuildPackage
prepare: ; $$(call Build/Prepare)
install: ; $$(call Package/$(1)/install,$$(TOPDIR)/image)
show: ; @echo '$$(CMAKE_OPTIONS)'
version: ; @echo '$$(PKG_VERSION)'
conffiles: ; @: $$(info $$(Package/$(1)/conffiles))
endef
END
in_feed() {
    make -s -C "$top/packaging/openwrt" TOPDIR="$scratch" "$@" || fail "make $* failed"
}

options=$(in_feed show)
for option in -DQORCFG_UCI=system -DQORCFG_PLATFORM=external; do
    [[ $options == *"$option"* ]] || fail "no $option in: $options"
done
version=$(sed -n 's/^project(qorcfg VERSION \([0-9.]*\).*/\1/p' "$top/CMakeLists.txt")
expect "the version" "$version" "$(in_feed version)"
# An upgrade keeps what the device's maker or an administrator has put in their place.
expect "the configuration files" "$(cat "$top/packaging/deb/conffiles")" "$(in_feed conffiles)"

# What is copied to be built holds everything that the install rules name.
in_feed prepare
while read -r file; do
    [ -f "$scratch/source/$file" ] || fail "not in the source: $file"
done < <(grep -ohE '(hooks|packaging|docs)/[a-zA-Z0-9./-]+' "$top/cmake/Packaging.cmake")

DESTDIR=$scratch/staged cmake --install "$build" --prefix /usr >"$scratch/install.log" ||
    fail "$(cat "$scratch/install.log")"
in_feed install
expect "the image" "755 /etc/init.d/qorcfg
755 /etc/qorcfg.d/commit.sh
755 /etc/qorcfg.d/init.sh
755 /etc/qorcfg.d/nvram.sh
755 /etc/qorcfg.d/reload.sh
600 /etc/qorcfg/qorcfg.conf
755 /usr/sbin/qorcfg
755 /usr/sbin/qorctl" \
    "$(cd "$scratch/image" && find . -type f -printf '%m %p\n' | sed 's, \.,,; s,/, /,' | sort -k2)"

# What the init script asks of procd. A shell of its own stands for rc.common.
start() {
    QORCFG_ROOT=$scratch/image sh -c '
        for name in open_instance set_param close_instance; do
            eval "procd_$name() { echo \"$name \$*\"; }"
        done
        . "$1"
        [ "$USE_PROCD" = 1 ] && [ -n "$START" ] && start_service' sh \
        "$scratch/image/etc/init.d/qorcfg"
}
list=$scratch/image/tmp/cache/qorcfg/qorcfg.conf
expect "the instance" "open_instance 
set_param command /usr/sbin/qorcfg
set_param respawn 3600 5 5
set_param limits core=0
set_param stderr 1
close_instance " "$(start)"
cmp "$list" "$top/packaging/qorcfg.conf" || fail "the default list is not in place"
for name in ucicfg.d nvramcfg.d; do
    [ -d "$scratch/image/tmp/cache/qorcfg/$name" ] || fail "no folder $name"
done
echo ietf_debug=1 >"$list"
start >"$scratch/second"
expect "the list that boot had made" ietf_debug=1 "$(cat "$list")"
