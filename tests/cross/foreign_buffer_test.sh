#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Processes of two processors meet at one buffer: they must refuse each other and say why, and tidy up
# after each other.
#
# usage: foreign_buffer_test.sh HELPER-OF-ONE HELPER-OF-THE-OTHER     each a build's BufferHelper
#
# Publishers run on the machine's own kernel in both directions, so the first helper must be this machine's: only
# its death is marked in the buffer.
set -euo pipefail

ours=$1 theirs=$2
work=$(mktemp -d "${TMPDIR:-/tmp}/foreign.XXXXXX")
modules=()
clean_up() {
    local module
    for module in "${modules[@]}"; do
        rm -f "/dev/shm/processdata.${module}_"*
    done
    rm -rf "$work"
}
trap clean_up EXIT

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

files_of() {
    find /dev/shm -maxdepth 1 -name "processdata.$1_*" -printf '%f\n'
}

# publish HELPER MODULE: leaves the description in $description; the coprocess PUBLISHER publishes until its input
# ends.
publish() {
    modules+=("$2")
    coproc PUBLISHER { exec "$1" publish "$2"; }
    read -r description <&"${PUBLISHER[0]}" || fail "$1 published nothing"
    [[ $description == '{'* ]] || fail "$1 could not publish: $description"
}

# stop: ends the publisher as a service ends.
stop() {
    local number=$PUBLISHER_PID
    eval "exec ${PUBLISHER[1]}>&-"
    wait "$number" || fail "the publisher ended with $?"
}

# use HELPER: what a client of that processor can do with the buffer; what it warned stands in $work/errors.
use() {
    "$1" use <<<"$description" 2>"$work/errors"
}

words='(32|64)-bit words and locks of [0-9]+ bytes'
refusal="its publisher has $words, this process has $words; they cannot share it"

# meet PUBLISHER CLIENT MODULE
meet() {
    local said
    publish "$1" "$3"
    said=$(use "$1")
    [[ $said == "valid readable written" ]] || fail "its own kind got: $said, $(<"$work/errors")"
    said=$(use "$2")
    [[ $said == "invalid unreadable refused" ]] || fail "$2 made of a buffer of $1: $said"
    grep -qE "$refusal" "$work/errors" || fail "$2 was refused without the reason: $(<"$work/errors")"
    grep -oE "$refusal" "$work/errors" | head -n 1
    stop
    [[ -z $(files_of "$3") ]] || fail "left: $(files_of "$3")"
}

meet "$ours" "$theirs" "Meet$$a"
meet "$theirs" "$ours" "Meet$$b"

# A dead publisher's buffer is a leftover for a successor of another word size too, and generations go on.
module=Meet$$c
publish "$ours" "$module"
dead=$(files_of "$module")
number=$PUBLISHER_PID
kill -KILL "$number"
{ wait "$number" || true; } 2>/dev/null
publish "$theirs" "$module"
new=$(files_of "$module")
[[ $new != *$'\n'* && $new != "$dead" ]] || fail "$theirs left the buffer of its dead predecessor: $dead, $new"
((${new##*.} > ${dead##*.})) || fail "generation ${new##*.} after ${dead##*.}"
stop
echo "refused both ways; a dead predecessor's buffer was removed"
