#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Asks the completion as bash would.
#
# usage: completion_test.sh COMPLETION-SCRIPT
set -euo pipefail
# shellcheck source=/dev/null
source "$1"
# shellcheck disable=SC2317 # called by the completion; bash has its own only while it completes
compopt() { :; }
failed=0

# expect "WORDS ON THE LINE" "COMPLETIONS": the last word is the one to complete.
expect() {
    IFS=' ' read -r -a COMP_WORDS <<<"$1"
    [[ $1 != *' ' ]] || COMP_WORDS+=("")
    COMP_LINE=$1 COMP_POINT=${#1}
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _selector
    if [[ ${COMPREPLY[*]} != "$2" ]]; then
        echo "FAIL: '$1' gives '${COMPREPLY[*]}', not '$2'"
        failed=1
    fi
}

expect "selector " "modules browse read write watch properties explain doctor check snapshot diff apply complete --help --version"
expect "selector w" "write watch"
expect "selector read --fo" "--format"
expect "selector read --format " "table json csv"
expect "selector read --format c" "csv"
expect "selector modules --type D" "DigitalSelector"
expect "selector modules --t" "--timeout --type"
expect "selector browse --file" ""
expect "selector watch --co" "--count"
expect "selector check --ag" "--against"
expect "selector apply --d" "--dry-run"
expect "selector watch --u" "--until"
expect "selector watch --until " ""
expect "selector watch --count " ""
expect "selector properties --pr" "--property"
expect "selector properties --property un" "unit"
expect "selector ex" "explain"
expect "selector explain --pr" "--property"
expect "selector read --q" "--quiet"
expect "selector write --q" ""
expect "selector write --es" "--escapes"
expect "selector diff --no" "--no-legend"
expect "selector doctor --w" "--with-values"
expect "selector doctor --cl" "--clean"
# The system has one name; what the command would refuse is not offered.
# shellcheck disable=SC2317 # called by the completion
selector() { echo "live:$2"; }
COMP_WORDBREAKS=' '
expect "selector read " "live:url"
expect "selector read -q a" "live:url"
expect "selector read a b" "live:url"
expect "selector read x=a" ""
expect "selector watch x=a" "live:url"
expect "selector watch --until changed --count 3 a b" "live:url"
expect "selector modules " ""
expect "selector browse " "live:place"
expect "selector browse --timeout 3 " "live:place"
expect "selector browse a " ""
expect "selector explain " "live:url"
expect "selector explain --property unit a" "live:url"
expect "selector explain a " ""
expect "selector write a" "live:url"
expect "selector write a " ""
expect "selector write a 1 b" "live:url"
expect "selector write -f list a 1 b 2" ""
expect "selector snapshot a b" "live:place"
expect "selector doctor " "live:module"
expect "selector doctor a b" "live:module"
expect "selector check a " ""
expect "selector apply --verify a " ""
expect "selector diff a b " ""
expect "selector complete p" "place"
expect "selector complete place a" ""
exit "$failed"
