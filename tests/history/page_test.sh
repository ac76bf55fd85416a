#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs the command that docs/history.md shows on a history of this test's own.
#
# usage: page_test.sh HISTORY-PROCESS PAGE
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
# Ends with the first line that nobody reads any more.
"$1" write h.db 0 | grep -m 1 'stored 20' || true
command=$(awk '/tested by: history.page/ { getline; getline; print; exit }' "$2")
[[ $command == sqlite3* ]] || { printf '%s: no command found\n' "$2" >&2 && exit 1; }
output=$(bash -c "$command")
expected=$'0|0|0\n1|1|0\n2|2|0'
[[ $output == "$expected" ]] || { printf 'expected:\n%s\ngot:\n%s\n' "$expected" "$output" >&2 && exit 1; }
