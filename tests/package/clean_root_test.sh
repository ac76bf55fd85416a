#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# In a new Debian, as root: installs the packages, tries them, removes them, looks that nothing is left.
# needs: cmake,dbus-daemon,g++,make,pkgconf,qtbase5-dev
#
# usage: clean_root_test.sh FOLDER-OF-PACKAGES     script/package --check calls it
set -euo pipefail
folder=$1
export LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive TMPDIR=/tmp HOME=/root

fail() {
    printf 'FAILED: %s\n' "$*"
    exit 1
}

# All that is there, but for what dpkg and the linker note about their own work.
snapshot() {
    find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path "$folder" \) -prune -o \
        ! -path '/var/lib/dpkg/status*' ! -path '/var/lib/dpkg/lock*' ! -path '/var/lib/dpkg/triggers/*' \
        ! -path '/var/log/*' ! -path '/var/cache/ldconfig/*' ! -path /etc/ld.so.cache \
        -printf '%p %y %m %u:%g\n' | sort
}

names=()
for file in "$folder"/*.deb; do
    names+=("$(dpkg-deb -f "$file" Package)")
done
printf 'packages: %s\n' "${names[*]}"

before=$(snapshot)
dpkg --install "$folder"/*.deb
for path in /usr/bin/selector /usr/bin/process-data-simulator \
    /usr/share/dbus-1/system.d/com.orvalis.ProcessData.conf \
    /usr/share/dbus-1/system.d/com.orvalis.SystemServices.conf \
    /usr/share/dbus-1/interfaces/com.orvalis.ProcessDescription1.xml \
    /usr/share/bash-completion/completions/selector \
    /usr/share/zsh/vendor-completions/_selector \
    /usr/share/fish/vendor_completions.d/selector.fish \
    /usr/share/selector/schema/selector.read.1.json; do
    [[ -e $path ]] || fail "no $path"
done
[[ -z $(dpkg --audit) ]] || fail "dpkg finds faults: $(dpkg --audit)"
altered=$(dpkg --verify "${names[@]}")
[[ -z $altered ]] || fail "not as packed: $altered"

sh "$folder/client"
selector --version
dpkg --purge "${names[@]}"
after=$(snapshot)
[[ $before == "$after" ]] ||
    fail "left after removal: $(diff <(echo "$before") <(echo "$after") | grep '^[<>]')"
echo "ok: installed, tried and removed without a trace"
