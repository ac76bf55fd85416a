#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Holds the simulator against the description files here, and what it serves against the schema.
#
# usage: simulator_test.sh SOURCE-DIR PROGRAM-DIR
set -euo pipefail
source_dir=$1 programs=$2
if [[ -z ${DESCRIPTIONS_BUS-} ]]; then
    exec env DESCRIPTIONS_BUS=own dbus-run-session -- bash "$0" "$@"
fi
export PROCESSDATA_BUS=$DBUS_SESSION_BUS_ADDRESS
corpus=$source_dir/tests/descriptions
work=$(mktemp -d "${TMPDIR:-/tmp}/descriptions.XXXXXX")
simulator=
finish() {
    [[ -z $simulator ]] || { kill "$simulator" && wait "$simulator"; } || true
    rm -rf "$work"
}
trap finish EXIT
failures=0
failed() {
    printf 'FAILED: %s\n' "$*"
    failures=$((failures + 1))
}

# Good files together, each as an instance of its own of a module that no other test has.
module=Described$$
for file in "$corpus"/file/good/*.json; do
    name=$(basename "$file" .json)
    sed -e "s/\"module\": \"Pump\"/\"module\": \"$module\"/" -e "s/\"instance\": \"1\"/\"instance\": \"$name\"/" \
        "$file" >"$work/$name.pdd"
done
for file in "$source_dir"/examples/data/*.pdd; do
    sed "s/\"module\": \"/&$module/" "$file" >"$work/$(basename "$file")"
done
mkfifo "$work/said"
"$programs/process-data-simulator" "$work"/*.pdd >"$work/said" 2>"$work/complaints" &
simulator=$!
read -r -t 50 line <"$work/said" || line=
[[ $line == ready ]] || failed "good files are refused: $(cat "$work/complaints")"

served=()
for file in "$work"/*.pdd; do
    mapfile -t names < <(jq -r '.module, .object, .instance' "$file")
    # Printed as it is but for the line before and the end of the line.
    dbus-send --bus="$PROCESSDATA_BUS" --print-reply=literal --dest="com.orvalis.ProcessData.${names[0]}" \
        "/com/orvalis/ProcessData/${names[1]}" com.orvalis.ProcessDescription1.GetProcessDataDescription \
        string:"${names[2]}" string: >"$file.served" || failed "$file is not served"
    jq -e '.buffer' "$file.served" >/dev/null || failed "$file is served without a buffer"
    served+=("$file.served")
done
python3 "$corpus/check_schema_of_descriptions.py" "$source_dir/docs/description.schema.json" \
    "$source_dir/docs/guides/descriptions.md" "$corpus" "${served[@]}" || failed "what is served breaks the schema"
kill "$simulator"
wait "$simulator" || failed "the simulator ended with $?"
simulator=

count=0
for file in "$corpus"/file/bad/*.json; do
    count=$((count + 1)) code=0
    timeout 20 "$programs/process-data-simulator" "$file" >"$work/out" 2>"$work/complaints" || code=$?
    expected=$(jq -r .expected "$file")
    ((code == 1)) || failed "${file##*/}: exit code $code"
    grep -qF -- "$expected" "$work/complaints" ||
        failed "${file##*/}: expected \"$expected\", found \"$(cat "$work/complaints")\""
done
echo "${#served[@]} served, $count refused, $failures failures"
((failures == 0 && ${#served[@]} >= 10 && count >= 20))
