#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs script/demo on built programs: it must end in time, show what it promises and leave nothing.
#
# usage: demo_test.sh SOURCE-DIR BUILD-DIR
set -euo pipefail
demo=$1/script/demo build_dir=$2
work=$(mktemp -d "${TMPDIR:-/tmp}/demo-test.XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir "$work/tmp"
export TMPDIR=$work/tmp # what the demo puts aside must be gone afterwards
export DEMO_TEST=$work  # marks every process that the demo starts

failures=0
check() {
    local what=$1
    shift
    if "$@"; then
        printf 'ok: %s\n' "$what"
    else
        printf 'FAILED: %s\n' "$what"
        failures=$((failures + 1))
    fi
}

# Processes that were started with the mark. The list of files is made before grep starts.
marked_processes() {
    local environment
    for environment in /proc/[0-9]*/environ; do
        if grep -qzxF "DEMO_TEST=$work" "$environment" 2>/dev/null; then
            tr '\0' ' ' <"${environment%environ}cmdline" 2>/dev/null
            echo
        fi
    done
}

nothing_is_left() {
    local left
    left=$(marked_processes)
    left+=$(find "$TMPDIR" -mindepth 1)
    left+=$(find /dev/shm -name "processdata.*" -newer "$work/start" \( -name '*.PumpStation*_*' -o \
        -name '*.TankFarm_*' -o -name '*.HeatingPlant_*' \))
    [[ -z $left ]] || printf '%s\n' "$left"
    [[ -z $left ]]
}

touch "$work/start"
status=0
"$demo" --build-dir "$build_dir" >"$work/output" 2>&1 </dev/null || status=$?
cat "$work/output"
check "the demo succeeds" test "$status" -eq 0
check "it takes less than 30 seconds" test $SECONDS -lt 30
for text in PumpStation 'NoError' 'nonsense.*no such leaf' '2100' 'processDataDescriptionChanged.*1, 2' \
    SourceLost 'nothing is left behind'; do
    check "it shows: $text" grep -q -- "$text" "$work/output"
done
check "nothing is left" nothing_is_left

# Interrupted in the middle it cleans up as well.
: >"$work/interrupted" # the reader may come before the demo's shell makes it
"$demo" --build-dir "$build_dir" >>"$work/interrupted" 2>&1 </dev/null &
demo_pid=$!
timeout 20 grep -q -m 1 'Watching' < <(env -u DEMO_TEST tail --pid="$demo_pid" -n +1 -f "$work/interrupted")
kill -TERM "$demo_pid"
status=0
wait "$demo_pid" || status=$?
check "terminated, it says so" test "$status" -eq 143
check "nothing is left after that" nothing_is_left

# The shell for trying things by hand has the programs and the bus.
status=0
"$demo" --shell --build-dir "$build_dir" >"$work/shell" 2>&1 \
    <<<'selector read processdata://PumpStation/Pump/1/plate/name' || status=$?
check "the shell ends well" test "$status" -eq 0
check "a command in the shell reads a value" grep -q 'Pump station' "$work/shell"
check "nothing is left after the shell" nothing_is_left
check "and it says so" grep -q 'nothing is left behind' "$work/shell"

# What is killed, changed or left running in the shell goes with it. The shell's parent is the demo.
in_shell() {
    status=0
    "$demo" --shell --build-dir "$build_dir" >"$work/shell" 2>&1 || status=$?
    cat "$work/shell"
    check "the shell ends well" test "$status" -eq 0
    check "nothing is left" nothing_is_left
    check "it says so" grep -q 'nothing is left behind' "$work/shell"
}
# What its greeting promises.
in_shell <<'SHELL'
line='selector read PumpStation/Pump/1/plate/na'
COMP_LINE=$line COMP_POINT=${#line} COMP_CWORD=2 COMP_WORDS=(${line}) COMP_WORDBREAKS=' '
$(complete -p selector | sed 's/.*-F \([^ ]*\).*/\1/')
echo "completed: ${COMPREPLY[*]}"
for page in selector selector-read process-data-simulator; do
    [[ -r ${MANPATH%%:*}/man1/$page.1 ]] && echo "page: $page"
done
! command -v man >/dev/null || man -w selector-read
process-data-simulator --run 'vanish PumpStation, return PumpStation'
selector browse -r
selector read -q PumpStation/Pump/1/plate/name
selector watch --table PumpStation/Pump/1/drive/setpoint PumpStation/Pump/1/drive/speed --count 2
selector explain PumpStation/Pump/1/drive/nonsense
selector doctor
SHELL
for text in 'selector modules' 'selector browse -r' 'selector read PumpStation/' 'selector explain' 'selector doctor' \
    'selector watch --table' 'completed: PumpStation/Pump/1/plate/name' 'page: selector-read' \
    'page: selector$' 'page: process-data-simulator' 'return PumpStation: done' 'Pump station' '^ *speed .*float64' 'drive/setpoint .*1450' \
    'leaf .*failed' '3 instances with'; do
    check "the shell shows: $text" grep -q -- "$text" "$work/shell"
done

in_shell <<'SHELL'
kill -KILL $(pgrep -P $PPID -f process-data-simulator)
SHELL
check "it removed what the killed simulator left" grep -q 'removed 3 buffers that killed' "$work/shell"

in_shell <<'SHELL'
folder=$(dirname "$(tr '\0' '\n' <"/proc/$(pgrep -P $PPID -f process-data-simulator)/cmdline" | grep pump-station)")
sed -i '/"name": "temperature"/,+1d' "$folder/pump-station.pdd"
for _ in {1..400}; do
    selector read -q processdata://PumpStation/Pump/1/drive/temperature >/dev/null 2>&1 || break
done
kill -KILL $(pgrep -P $PPID -f process-data-simulator)
SHELL
check "it removed the buffer that came with a change too" grep -q 'removed 3 buffers' "$work/shell"

in_shell <<'SHELL'
sed 's/PumpStation/PumpStation2/' "$(tr '\0' '\n' <"/proc/$(pgrep -P $PPID -f process-data-simulator)/cmdline" |
    grep pump-station)" >"$DEMO_TEST/second.pdd"
process-data-simulator "$DEMO_TEST/second.pdd" >"$DEMO_TEST/second" 2>&1 &
disown
timeout 20 grep -q -m 1 ready < <(tail --pid=$! -n +1 -f "$DEMO_TEST/second")
SHELL
check "it ended what the shell left running" grep -q 'ending what is still running: process-data-sim' "$work/shell"
((failures == 0))
