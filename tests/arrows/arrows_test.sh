#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# script/arrows permits what the house permits and names each include that it does not.
#
# usage: arrows_test.sh SOURCE-DIRECTORY
set -euo pipefail
source_directory=$1
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
cd "$tree"

# file PATH INCLUDED…: a file that includes headers.
file() {
    mkdir -p "$(dirname "$1")"
    (($# == 1)) || printf '#include "%s"\n' "${@:2}" >>"$1"
    touch "$1"
}

# expect FINDING…: what is found, and nothing else; without one, that all is well.
expect() {
    local found status=0
    found=$("$source_directory/script/arrows" .) || status=$?
    diff <(printf '%s\n' "$@") <(printf '%s\n' "$found")
    ((status == ($# > 0)))
}

file platform/ProcessValue.h
file include/Handler.h ProcessValue.h
file src/Handler.cpp Handler.h ProcessValue.h
file platform/reference/url/Url.h ProcessValue.h
file platform/reference/bus/Bus.h Url.h
file tools/selector/lists/List.h
file platform/reference/include/Query.h ProcessValue.h
file platform/reference/include/SourceName.h
file tools/selector/buffers/Files.h Query.h SourceName.h
file tools/selector/watch/Watch.h List.h Handler.h SourceName.h Files.h
file tools/selector/main.cpp Watch.h
expect

file src/Reaching.cpp Url.h
file platform/reference/url/Knowing.cpp Handler.h Bus.h
file tools/selector/lists/Back.cpp Watch.h
file tools/selector/lists/Peek.cpp Query.h
file tools/selector/watch/Inside.cpp Bus.h
expect 'platform/reference/url/Knowing.cpp: must not include include/Handler.h' \
    'platform/reference/url/Knowing.cpp: must not include platform/reference/bus/Bus.h' \
    'src/Reaching.cpp: must not include platform/reference/url/Url.h' \
    'tools/selector/lists/Back.cpp: must not include tools/selector/watch/Watch.h' \
    'tools/selector/lists/Peek.cpp: must not include platform/reference/include/Query.h' \
    'tools/selector/watch/Inside.cpp: must not include platform/reference/bus/Bus.h'

rm src/Reaching.cpp platform/reference/url/Knowing.cpp tools/selector/lists/Back.cpp tools/selector/lists/Peek.cpp tools/selector/watch/Inside.cpp
file src/Url.h
expect 'src/Url.h: platform/reference/url/Url.h has the same name, and includes name no folder'
