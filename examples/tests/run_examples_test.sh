#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs each example as it is against the simulator, on a bus of its own.
#
# usage: run_examples_test.sh PROGRAM-DIR DATA-DIR
set -euo pipefail
programs=$1
data=$2

if [[ -z ${EXAMPLES_BUS-} ]]; then
    EXAMPLES_BUS=own exec dbus-run-session -- bash "$0" "$@"
fi
export PROCESSDATA_BUS=$DBUS_SESSION_BUS_ADDRESS
work=$(mktemp -d)
children=()
started=0
clean_up() {
    for child in "${children[@]}"; do
        kill "$child" 2>/dev/null || true
        wait "$child" 2>/dev/null || true
    done
    rm -rf "$work"
}
trap clean_up EXIT

fail() {
    echo "FAIL: $*" >&2
    exit 1
}

# start COMMAND…: runs it in the background; its lines come on $lines.
start() {
    local pipe=$work/pipe.$((++started))
    mkfifo "$pipe"
    # stdbuf preloads a library of its own, which AddressSanitizer takes for a mistake.
    ASAN_OPTIONS=${ASAN_OPTIONS-}:verify_asan_link_order=0 stdbuf -oL "$@" >"$pipe" 2>&1 &
    children+=($!)
    exec {lines}<"$pipe"
}

# wait_for TEXT FD
wait_for() {
    local line seen="" end=$((SECONDS + 30))
    while ((SECONDS < end)) && IFS= read -r -t 20 line <&"$2"; do
        seen+=$line$'\n'
        [[ $line != *"$1"* ]] || return 0
    done
    fail "no \"$1\" in: $seen"
}

# Names of its own: other tests may publish the same descriptions at the same time.
module=Examples$$
sed "s/PumpStation/$module/" "$data/pump-station.pdd" >"$work/pump.pdd"
pump=processdata://$module/Pump/1
start "$programs/process-data-simulator" --system-services "$work/pump.pdd"
wait_for ready "$lines"

"$programs/read-once" "$pump/drive/setpoint" | grep -Fx "$pump/drive/setpoint = 1450 1/min" ||
    fail "read-once does not read"
! "$programs/read-once" "$pump/nothing" >"$work/nothing" 2>&1 || fail "read-once finds what is not there"

start "$programs/watch-changes" "$pump/drive/setpoint" "$pump/drive/temperature"
watched=$lines
wait_for 'start 0: 1450, error type 0' "$watched"
sed -i 's/"unit": "°C"/"unit": "K"/' "$work/pump.pdd"
wait_for 'property 1: ' "$watched"
sed -i '/"name": "setpoint"/s/"float64"/"float32"/' "$work/pump.pdd"
wait_for 'description 0: 1450' "$watched"

start "$programs/read-cyclically" "$pump/drive/setpoint" "$pump/nothing" "$pump/drive/enable"
wait_for Z,1450,,true "$lines"

start "$programs/worker-thread" "$pump/drive/setpoint" "$pump/drive/enable"
worker=$lines
wait_for '1450 true' "$worker"
sed -i 's/"maximum": 3000/"maximum": 2900/' "$work/pump.pdd"
wait_for 'changed: 1 selectors' "$worker"
kill "${children[-1]}"
wait "${children[-1]}" || fail "worker-thread does not end well"
unset 'children[-1]'

# What they show is tested with the model; here, that they start and go on.
for window in table-widgets table-quick; do
    [[ -x $programs/$window ]] || continue
    QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software QT_LOGGING_RULES="processdata.*=true" \
        start "$programs/$window" "$pump/drive/setpoint"
    "$programs/selector" watch "$pump/drive/temperature" --count 2 >"$work/watched"
    kill -0 "${children[-1]}" || fail "$window ended"
done

start "$programs/publish-counter"
wait_for publishing "$lines"
"$programs/selector" write processdata://Example/Counter/1/step 7 >"$work/written" 2>&1 ||
    fail "$(cat "$work/written")"
wait_for 'step is now 7' "$lines"
echo "PASS"
