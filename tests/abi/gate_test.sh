#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Changes a small library in one way at a time: the gate refuses what breaks programs, nothing else.
#
# usage: gate_test.sh SOURCE-DIR QT-INCLUDE-DIR…
set -euo pipefail
source_dir=$1
IFS=';' read -ra qt_dirs <<<"$2"
includes=("${qt_dirs[@]/#/-I}")
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/abi-gate.XXXXXX")
trap 'rm -rf "$work"' EXIT
failures=0
update=()

# build VARIANT [NUMBER]: the small library with one change, laid out as a build tree.
build() {
    local tree=$work/$1 number=${2:-1}
    mkdir -p "$tree/lib" "$tree/abi"
    sed 's/@interface_headers@/Sample/' "$source_dir/abi/interface.abignore.in" \
        >"$tree/abi/interface.abignore"
    "${CXX:-c++}" -std=c++17 -shared -fPIC -g -fvisibility=hidden -D"$1" "${includes[@]}" \
        "$here/Sample.cpp" -o "$tree/lib/libSample.so.$number" -Wl,-soname,"libSample.so.$number"
}

# expect CODE WORDS VARIANT: compares with the baseline; ends with CODE and says WORDS.
expect() {
    local code=0 report
    report=$("$source_dir/script/abi" "${update[@]}" --build-dir "$work/$3" \
        --baseline "$work/baseline" Sample 2>&1) || code=$?
    if ((code == $1)) && [[ $report == *"$2"* ]]; then
        printf 'ok: %s\n' "$3"
    else
        printf 'FAILED: %s ended with %s, not %s, or did not say "%s":\n%s\n' "$3" "$code" "$1" "$2" "$report"
        failures=$((failures + 1))
    fi
}

build UNCHANGED
expect 1 "no baseline" UNCHANGED
update=(--update)
expect 0 "baseline written" UNCHANGED
update=()

refused=("VIRTUAL_INSERTED|Sample::inserted" "VIRTUAL_APPENDED|Sample::appended" "MEMBER_INSERTED|size changed"
    "MEMBER_RETYPED|name" "RESULT_CHANGED|return type changed" "PARAMETER_CHANGED|rename"
    "FUNCTION_REMOVED|clear" "ENUMERATOR_INSERTED|Paused")
accepted=("UNCHANGED|holds" "FUNCTION_ADDED|new, not in the baseline" "INSIDE_CHANGED|holds"
    "ENUMERATOR_APPENDED|holds")
for row in "${refused[@]}" "${accepted[@]}"; do
    build "${row%%|*}"
done
build NUMBER_MOVED 2

for row in "${refused[@]}"; do
    expect 1 "${row#*|}" "${row%%|*}"
done
for row in "${accepted[@]}"; do
    expect 0 "${row#*|}" "${row%%|*}"
done
expect 1 "libSample.so.2" NUMBER_MOVED

# Renewing: a root of its own, where this library has been released.
released=$work/released
mkdir -p "$released/abi"
cp -r "$source_dir/script" "$released"
cp "$source_dir/abi/accepted.abignore" "$released/abi"
printf '## 1.0.0\n' >"$released/CHANGELOG.md"
source_dir=$released update=(--update)
expect 1 "refused" VIRTUAL_INSERTED
expect 0 "baseline written" NUMBER_MOVED
printf '## Unreleased\n' >"$released/CHANGELOG.md"
expect 0 "baseline written" FUNCTION_REMOVED
((failures == 0))
