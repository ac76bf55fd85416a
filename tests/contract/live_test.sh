#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs the live test of a platform on a private bus, with a simulated pump station as its system.
#
# usage: live_test.sh LIVE-TEST SIMULATOR DESCRIPTION
set -euo pipefail
if [[ ${4-} != session ]]; then
    exec dbus-run-session -- "$0" "$@" session
fi
live_test=$1 simulator=$2 description=$3
export PROCESSDATA_BUS=$DBUS_SESSION_BUS_ADDRESS
work=$(mktemp -d "${TMPDIR:-/tmp}/contract-live.XXXXXX")
module=Contract$$ # no other test shares its memory
sed "s/\"PumpStation\"/\"$module\"/" "$description" >"$work/station.pdd"

mkfifo "$work/output"
"$simulator" --system-services "$work/station.pdd" >"$work/output" 2>&1 &
process=$!
trap 'kill "$process"; wait "$process" || true; rm -rf "$work"' EXIT
exec {output}<"$work/output"
line=
while [[ $line != ready ]]; do
    read -r -t 60 line <&"$output" || {
        echo "the simulator did not get ready: $line"
        exit 1
    }
done
CONTRACT_URL=processdata://$module/Pump/1/drive/setpoint "$live_test"
