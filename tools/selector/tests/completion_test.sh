#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Asks the completion as bash would; tools.line_completion asks for the rest.
#
# usage: completion_test.sh COMPLETION-SCRIPT SELECTOR
set -euo pipefail
export PROCESSDATA_BUS=unix:path=/nonexistent # no names come from there
program=$2
# shellcheck disable=SC2317 # called by the completion
selector() { "$program" "$@"; }
COMP_WORDBREAKS=' '
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

history=
[[ $("$program" --help) != *"  history "* ]] || history="history record " # where it is built
expect "selector " "modules browse read write watch properties explain doctor check snapshot diff apply ${history}complete help --help --version"
expect "selector w" "write watch"
expect "selector -j w" "write watch"
expect "selector help ex" "explain"
expect "selector read --fo" "--format"
expect "selector read --format " "table json csv pairs"
expect "selector watch --format " "table json csv"
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
expect "selector doctor --with" "--with-values"
expect "selector doctor --cl" "--clean"
# Names of files are the shell's own matter.
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
cd "$folder"
touch list values
expect "selector check l" "list"
expect "selector read -f v" "values"
expect "selector check list l" ""
expect "selector read processdata://" ""
# A module's name is whatever somebody registered, and must stay one harmless word.
# shellcheck disable=SC2016,SC2317 # expands nothing; called by the completion
selector() { printf '%s\n' 'evil$(touch ran) x'; }
expect "selector doctor e" 'evil\$\(touch\ ran\)\ x'
exit "$failed"
