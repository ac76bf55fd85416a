# SPDX-License-Identifier: MIT
# What the tests of installed packages share; sourced, never run.
# shellcheck shell=bash

# shellcheck disable=SC2034 # the sourcing scripts use these
source_dir=$1 build_dir=$2
work=$(mktemp -d "${TMPDIR:-/tmp}/package-test.XXXXXX")
trap 'rm -rf "$work"' EXIT

# check WHAT COMMAND…: the output of the check before is in $work/previous.
check() {
    local what=$1
    shift
    [[ ! -e $work/log ]] || mv "$work/log" "$work/previous"
    if ! "$@" >"$work/log" 2>&1; then
        printf 'FAILED: %s\n  %s\n' "$what" "$*"
        cat "$work/log"
        exit 1
    fi
    printf 'ok: %s\n' "$what"
}

absent() {
    ! grep "$@"
}

# Shared objects that a file needs, one a line.
needed() {
    readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'
}

# expect_needed FILE ALLOWED: each needed object matches the extended regular expression.
expect_needed() {
    local others
    others=$(needed "$1" | grep -vE "^($2)\$" || true)
    if [[ -n $others ]]; then
        printf '%s also needs: %s\n' "$1" "$others"
        return 1
    fi
}
