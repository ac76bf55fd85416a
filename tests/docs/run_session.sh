#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs the commands of one page as its reader would: installed packages, a bus of their own.
#
# usage: run_session.sh SOURCE-DIR BUILD-DIR PAGE [COMPILE-FLAG…]
set -euo pipefail
source_dir=$1 build_dir=$2 page=$3
if [[ -z ${DOCS_BUS-} ]]; then
    exec env DOCS_BUS=own dbus-run-session -- bash "$0" "$@"
fi
work=$(mktemp -d "${TMPDIR:-/tmp}/docs-prefix.XXXXXX")
trap 'rm -rf "$work"' EXIT
PATH=$build_dir/bin:$PATH
# Only who compiles needs headers and packages, and the flags without which nothing links to this build.
if grep -qE '^(\$ |<!-- run: )?(cmake|c\+\+) ' "$page"; then
    cmake --install "$build_dir" --prefix "$work" >"$work/log" || { cat "$work/log"; exit 1; }
    libdir=$(dirname "$(find "$work" -name libSelectorHandler.so.1)")
    export CMAKE_PREFIX_PATH=$work PKG_CONFIG_PATH=$libdir/pkgconfig LD_LIBRARY_PATH=$libdir
    export CXXFLAGS="${*:4}" LDFLAGS="${*:4}" PATH=$work/bin:$PATH
    printf '#!/bin/sh\nexec %s %s "$@"\n' "${CXX:-/usr/bin/c++}" "${*:4}" >"$work/bin/c++"
    chmod +x "$work/bin/c++"
fi
export SELECTORHANDLER_SOURCE=$source_dir PAGE=$page
# Long enough for a loaded machine; what hangs on purpose is waited for.
export PROCESSDATA_DBUS_TIMEOUT_MS=8000
export PROCESSDATA_BUS=$DBUS_SESSION_BUS_ADDRESS NO_COLOR=1 LC_ALL=C.UTF-8
python3 "$source_dir/tests/docs/session.py" "$page" "$source_dir/examples/data" \
    PumpStation TankFarm HeatingPlant Boiler Greenhouse
