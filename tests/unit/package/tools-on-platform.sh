#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds selector against the installed bare platform, and uses it there.
# usage: tools-on-platform.sh SOURCE_DIR WORK_DIR CXX [LAUNCHER]
set -eu
source_dir=$1
work=$2
cxx=$3
launcher=${4:-}

fail() {
    echo "FAIL: $*" >&2
    exit 1
}

rm -rf "$work"
mkdir -p "$work"
common="-G Ninja -DCMAKE_CXX_COMPILER=$cxx -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DCMAKE_CXX_COMPILER_LAUNCHER=$launcher"

# shellcheck disable=SC2086 # the options are words without blanks
cmake $common -S "$source_dir/tests/unit/package" -B "$work/platform" -DPLATFORM_BODY=bare \
    -DCMAKE_INSTALL_PREFIX="$work/prefix"
cmake --build "$work/platform" --target install

configure() {
    # shellcheck disable=SC2086
    cmake $common -S "$source_dir" -B "$work/tools" -DSELECTORHANDLER_PLATFORM=system \
        -DSELECTORHANDLER_BUILD_TOOLS=ON -DBUILD_TESTING=OFF -DSELECTORHANDLER_WERROR=ON \
        -DCMAKE_PREFIX_PATH="$work/prefix" "$@"
}
if configure 2>"$work/refusal"; then
    fail "configured without the platform's access"
fi
grep -q 'SELECTORHANDLER_PLATFORM_ACCESS is ""' "$work/refusal" ||
    fail "the refusal does not name the option: $(cat "$work/refusal")"
configure -DSELECTORHANDLER_PLATFORM_ACCESS="$work/prefix/share/vendor/BareAccess.cpp"
cmake --build "$work/tools"

# Of the reference platform only texts: names, URLs.
strange=$(grep -o "$source_dir/platform/[^ \"]*" "$work/tools/compile_commands.json" | sort -u |
    grep -vE '/platform/(access|reference/url/(SelectorUrlBuilder|SelectorUrlParser|SourceName)\.cpp)$' || true)
[ -z "$strange" ] || fail "compiled with $strange"
needed=$(readelf -d "$work/tools/bin/selector" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p')
for name in libSelectorHandler.so.1 libBarePlatform.so; do
    echo "$needed" | grep -qxF "$name" || fail "$name is not needed, but: $needed"
done
if echo "$needed" | grep -i dbus; then
    fail "selector needs a bus"
fi

cd "$work"
cp "$source_dir/tests/unit/package/device.json" .
export BARE_DEVICE="$work/device.json" TZ=UTC-2
zone=processdata://Oven/Zone/1

squeezed() {
    printf '%s\n' "$1" | sed 's/^ *//; s/  */ /g'
}

# expect CODE OUTPUT ARGUMENTS…: of both streams; how wide columns are does not count
expect() {
    code=$1
    output=$(squeezed "$2")
    shift 2
    got=0
    text=$("$work/tools/bin/selector" "$@" 2>&1) || got=$?
    text=$(squeezed "$text")
    [ "$got" = "$code" ] || fail "selector $*: exit code $got, not $code: $text"
    [ "$text" = "$output" ] || fail "selector $*:
$text
--- is not
$output"
}

expect 0 "21.5" read -q $zone/heat/power
expect 1 "url,value,unit,error,time,note,label
$zone/door,true,,SourceLost,2026-01-01T14:00:00.123+02:00,\"the publisher is gone, this is its last value\",
$zone/recipe,,,NoValue,,no value was obtained,
$zone/lid,,,NoValue,,Oven/Zone/1 has no such leaf,
selector: $zone/door: the publisher is gone, this is its last value
selector: $zone/recipe: no value was obtained
selector: $zone/lid: Oven/Zone/1 has no such leaf" read --format csv $zone/door $zone/recipe $zone/lid

expect 0 "$zone/heat/target  180  200.5  °C  written" write --no-legend $zone/heat/target 200.5
expect 0 "200.5" read -q $zone/heat/target
expect 1 "$zone/heat/power  21.5  3  kW  failed  the leaf is read-only
selector: $zone/heat/power: the leaf is read-only" write --no-legend $zone/heat/power 3
expect 1 "$zone/heat/target  200.5  401  °C  failed  \"401\" is above the maximum 400
selector: $zone/heat/target: \"401\" is above the maximum 400" write --no-legend $zone/heat/target 401
expect 0 "kW" properties -q --property unit $zone/heat/power
expect 0 "200.5" watch -q --count 1 $zone/heat/target

printf '%s\n' "$zone/heat/target 210" "$zone/recipe bread" >list.txt
expect 0 "1  $zone/heat/target  ok
2  $zone/recipe       ok" check --no-legend list.txt
expect 0 "1  $zone/heat/target  200.5    210  °C  verified
2  $zone/recipe           -  bread  -   verified" apply --no-legend --verify list.txt
expect 0 "210
bread" read -q $zone/heat/target $zone/recipe

expect 0 "Oven/Zone/1  kept/Oven_Zone_1.bare  4  3" snapshot --no-legend --output kept Oven/Zone/1
expect 0 "" diff --no-legend kept kept
expect 0 "$zone/heat/power   float64  kW  read-only
$zone/heat/target  float64  °C  writable
$zone/door         bool     -   read-only
$zone/recipe       string   -   writable" browse --no-legend Oven/Zone/1

# What this platform cannot list or show.
expect 1 "selector: this platform has no list of running modules" modules
expect 1 "selector: this platform has no list of running modules" browse
expect 1 "Oven  -  -  -  this platform has no list of objects
selector: Oven: this platform has no list of objects" browse --no-legend Oven
expect 0 "step,result,finding,advice,url,label
text,ok,well formed,,$zone/heat/power,
scheme,ok,processdata,,$zone/heat/power,
module,ok,Oven,,$zone/heat/power,
bus,ok,reachable; this platform does not list its modules,,$zone/heat/power,
serviceOwner,ok,module Oven,,$zone/heat/power,
object,ok,\"object \"\"Zone\"\", instance \"\"1\"\"\",,$zone/heat/power,
description,ok,4 leaves,,$zone/heat/power,
bufferFile,ok,this platform does not show its buffers,,$zone/heat/power,
permission,ok,this platform does not show its buffers,,$zone/heat/power,
layout,ok,this platform does not show its buffers,,$zone/heat/power,
liveness,ok,its publisher lives,,$zone/heat/power,
leaf,ok,heat/power,,$zone/heat/power,
property,ok,\"float64, unit kW, read-only\",,$zone/heat/power,
value,ok,\"NoError, of 2026-01-01 14:00:00.123\",,$zone/heat/power," explain --format csv $zone/heat/power
expect 1 "processdata://Oven/Zone/2/a  -  -  NoValue  -  the service gave no description of Oven/Zone/2
selector: processdata://Oven/Zone/2/a: the service gave no description of Oven/Zone/2" \
    read --no-legend processdata://Oven/Zone/2/a
expect 1 "processdata://Kiln/Zone/1/a  -  -  NoValue  -  the service of module Kiln is not running
selector: processdata://Kiln/Zone/1/a: the service of module Kiln is not running" \
    read --no-legend processdata://Kiln/Zone/1/a
version=$("$work/tools/bin/selector" --version)
qt=$(pkg-config --modversion Qt5Core)
expect 1 "severity,check,subject,finding,advice,action
ok,versions,,\"$version, Qt $qt\",,
ok,bus,,reachable; this platform does not list its modules,,
ok,services,,not examined: this platform does not show the system's services,,
error,registry,Kiln,nobody serves it,\"start its service, or fix the name\",
ok,registry,,not examined: this platform has no list of registered modules,,
ok,sources,,Oven is served; its sources are not examined: this platform has no list of objects,,
ok,buffers,,not examined: this platform does not show its buffers,,
selector: Kiln: nobody serves it; start its service, or fix the name" doctor --format csv Oven Kiln
expect 1 "severity,check,subject,finding,advice,action
error,buffers,,nothing can be removed: this platform does not show its buffers,the platform's own tools remove what is left over,
selector: buffers: nothing can be removed: this platform does not show its buffers; the platform's own tools remove what is left over" doctor --format csv --clean --yes

BARE_DEVICE=
expect 3 "selector: The bus is out of reach (PROCESSDATA_BUS chooses the bus)" read $zone/door
