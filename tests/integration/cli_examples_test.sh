#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs every example of the command-line client: of docs/cli.md, its man pages and helps.
#
# usage: cli_examples_test.sh SOURCE-DIR BUILD-DIR
#
# They run as written but for the name of the module, which is one of this test's own, so that a demo
# on the same machine does not mix in.
set -euo pipefail
source_dir=$1 build_dir=$2
if [[ -z ${CLI_EXAMPLES_BUS-} ]]; then
    exec env CLI_EXAMPLES_BUS=1 dbus-run-session -- bash "$0" "$@"
fi
export PROCESSDATA_BUS=$DBUS_SESSION_BUS_ADDRESS PATH=$build_dir/bin:$PATH
module=PumpStation$$
work=$(mktemp -d "${TMPDIR:-/tmp}/cli-examples.XXXXXX")
simulator=
finish() {
    [[ -z $simulator ]] || { kill "$simulator" && wait "$simulator"; } || true
    rm -rf "$work"
}
trap finish EXIT
mkdir "$work/run"
cd "$work/run"

# named: the text of standard input with the module's own name.
named() {
    sed "s/PumpStation/$module/g"
}

# blocks: each ```sh block of standard input into a file of its own, blocks/NN.
blocks() {
    awk -v folder="$1" '
        /^```sh$/ { name = sprintf("%s/%02d", folder, ++count); inside = 1; next }
        /^```$/ { inside = 0 }
        inside { print > name }'
}

# page_examples PAGE: what stands below EXAMPLES of a man page, as a reader would type it.
page_examples() {
    sed -n '/^\.SH EXAMPLES$/,/^\.fi$/{/^\./d;p}' "$1" | sed -e 's/\\(aq/'"'"'/g' -e 's/\\e/\\/g' -e 's/\\-/-/g'
}

count=0
failures=0
# run NAME FILE: all lines of the file in one shell, the first that fails ends it.
run() {
    local status=0
    count=$((count + 1))
    named <"$2" >"$work/example"
    bash -euo pipefail "$work/example" >"$work/output" 2>&1 </dev/null || status=$?
    if ((status != 0)); then
        printf 'FAILED (%d): %s\n' "$status" "$1"
        cat "$work/example" "$work/output"
        failures=$((failures + 1))
    else
        printf 'ok: %s\n' "$1"
    fi
}

named <"$source_dir/examples/data/pump-station.pdd" >"$work/pump-station.pdd"
process-data-simulator --system-services "$work/pump-station.pdd" >"$work/simulator" 2>&1 &
simulator=$!
# Selectors that move have their first value by then.
timeout 20 bash -c "until selector modules -q 2>/dev/null | grep -qx $module &&
    selector watch -q --until 'speed>1' --timeout 10 processdata://$module/Pump/1/drive/speed >/dev/null 2>&1
do :; done" || {
    echo "FAILED: the simulator does not come up"
    cat "$work/simulator"
    exit 1
}

mapfile -t commands < <(selector --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
# left_out FILE: whether it shows commands that a build without the history does not have.
left_out() {
    [[ " ${commands[*]} " != *" record "* ]] && grep -qE 'selector (record|history)' "$1"
}

mkdir "$work/blocks"
blocks "$work/blocks" <"$source_dir/docs/cli.md"
for block in "$work"/blocks/*; do
    left_out "$block" || run "docs/cli.md, block ${block##*/}" "$block"
done
ran_of_document=$count

# The files that pages and helps speak of are there from the recipes above, and these.
cp -r updated now
for page in "$source_dir"/tools/selector/man/*.1; do
    page_examples "$page" >"$work/page"
    left_out "$work/page" || run "${page##*/}" "$work/page"
done
for command in "${commands[@]}"; do
    selector "$command" --help | sed -n '/^Example: /,$p' | sed 's/^Example: //' >"$work/help"
    run "selector $command --help" "$work/help"
    [[ -s $work/help ]] || { echo "FAILED: the help of $command has no example"; failures=$((failures + 1)); }
    grep -rqw "selector $command" "$work/blocks" || {
        echo "FAILED: docs/cli.md has no example of $command"
        failures=$((failures + 1))
    }
done

echo "$count examples, $failures failures"
((failures == 0 && ran_of_document >= 10 && ${#commands[@]} >= 13))
