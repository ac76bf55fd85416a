#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The library with a virtual operation inserted: the gate must refuse it, and say what was inserted.
#
# usage: mutant_test.sh SOURCE-DIR MUTANT-DIR
set -euo pipefail
source_dir=$1 mutant_dir=$2

code=0
report=$("$source_dir/script/abi" --build-dir "$mutant_dir" SelectorHandler 2>&1) || code=$?
printf '%s\n' "$report"
if ((code != 1)); then
    echo "FAILED: ended with $code, not 1, for a library with an inserted virtual"
    exit 1
fi
for words in "insertedByTheTest" "virtual at voffset" "incompatible with the baseline"; do
    if [[ $report != *"$words"* ]]; then
        echo "FAILED: the report does not say: $words"
        exit 1
    fi
done
