#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the build into an empty prefix and builds clients and tests of clients against it.
#
# usage: installed_package_test.sh SOURCE-DIR BUILD-DIR PUBLISHER [COMPILE-FLAG…]
set -euo pipefail
source_dir=$1 build_dir=$2 publisher=$3
flags=("${@:4}")
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

prefix=$work/prefix
check "the build installs" cmake --install "$build_dir" --prefix "$prefix"
libdir=$(dirname "$(find "$prefix" -name libSelectorHandler.so.1)")
testing=$libdir/selectorhandler-testing
runtime='libQt5Core\.so\.5|ld-linux[a-z0-9_-]*\.so\.[0-9]+|lib(stdc\+\+|c|m|gcc_s|asan|ubsan)\.so\.[0-9]+'
check "the library needs Qt Core, the platform and the C++ runtime alone" \
    expect_needed "$libdir/libSelectorHandler.so.1" "libProcessDataPlatform\\.so\\.1|$runtime"
check "the scripted platform needs Qt Core and the C++ runtime alone" \
    expect_needed "$testing/libProcessDataPlatform.so.1" "$runtime"
check "no installed text names the build or source tree" \
    absent -rIl -e "$build_dir" -e "$source_dir" "$prefix"
for file in share/dbus-1/system.d/com.orvalis.{ProcessData,SystemServices}.conf lib/sysusers.d/processdata.conf; do
    check "$file is installed and names the publishers' group" \
        grep -q processdata-publisher "$prefix/$file"
done
for header in "$prefix"/include/*/*.h; do
    printf '#include <%s>\n' "${header##*/}"
done >"$work/all_headers.cpp"

# Every command that the client lists has a page of its own.
pages_are_installed() {
    local name names
    mapfile -t names < <("$build_dir/bin/selector" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
    ((${#names[@]} >= 13)) || return 1
    for name in "${names[@]}"; do
        [[ -f $prefix/share/man/man1/selector-$name.1 ]] || { echo "no page of $name"; return 1; }
    done
}
check "every command has an installed page" pages_are_installed

# Moved, so that nothing can hold on to the place of installation.
mv "$prefix" "$work/moved"
prefix=$work/moved
libdir=${libdir/prefix/moved} testing=${testing/prefix/moved}
export PKG_CONFIG_PATH=$libdir/pkgconfig LD_LIBRARY_PATH=$libdir

example=$source_dir/examples/read-once
check "a client configures by CMake" cmake -G Ninja -S "$example" -B "$work/client" \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_FLAGS="${flags[*]}"
check "a client builds by CMake" cmake --build "$work/client"
read -ra compile_flags < <(pkg-config --cflags selectorhandler)
read -ra link_flags < <(pkg-config --libs selectorhandler)
check "a client builds by pkg-config" "${CXX:-c++}" -std=c++17 -fPIC "${flags[@]}" \
    "$example/main.cpp" -o "$work/by-pkg-config" "${compile_flags[@]}" "${link_flags[@]}"
check "every installed header compiles" "${CXX:-c++}" -std=c++17 -fPIC -fsyntax-only \
    -DQT_NO_KEYWORDS -Wall -Wextra -Werror "$work/all_headers.cpp" "${compile_flags[@]}" \
    -I "$prefix/include/selectorhandler-testing"

# LD_LIBRARY_PATH names the directory of the platform with the bus: tests must not take that one.
example=$source_dir/examples/test-an-application
check "an application and its test configure" cmake -G Ninja -S "$example" -B "$work/application" \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_FLAGS="${flags[*]}"
check "an application and its test build" cmake --build "$work/application"
check "the application's test passes without a bus" env PROCESSDATA_BUS=unix:path=/nonexistent \
    "$work/application/pump-guard-test"
check "none of its tests is left out" grep -F "9 passed, 0 failed, 0 skipped" "$work/previous"
check "the test's libraries resolve" ldd "$work/application/pump-guard-test"
check "the test takes the scripted platform" grep -F " $testing/libProcessDataPlatform.so.1 " "$work/previous"
for name in publish-counter read-cyclically table-model watch-changes worker-thread; do
    example=$source_dir/examples/$name
    check "$name configures" cmake -G Ninja -S "$example" -B "$work/$name" \
        -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_FLAGS="${flags[*]}"
    check "$name builds" cmake --build "$work/$name"
done
mkdir "$work/unknown"
cat >"$work/unknown/CMakeLists.txt" <<'UNKNOWN'
cmake_minimum_required(VERSION 3.16)
project(unknown LANGUAGES CXX)
find_package(SelectorHandler COMPONENTS Tasting)
message("found ${SelectorHandler_FOUND}: ${SelectorHandler_NOT_FOUND_MESSAGE}")
find_package(SelectorHandler REQUIRED COMPONENTS Testing)
UNKNOWN
check "an unknown component is asked for" cmake -G Ninja -S "$work/unknown" -B "$work/unknown/build" \
    -DCMAKE_PREFIX_PATH="$prefix"
check "an unknown component is named" grep -F 'no component "Tasting"' "$work/previous"

# The bus daemon ends with its child; each test has its own.
module=Package$$
cat >"$work/serve" <<SERVE
#!/usr/bin/env bash
set -euo pipefail
export PROCESSDATA_BUS=\$DBUS_SESSION_BUS_ADDRESS
coproc publisher { "$publisher"; }
publisher_process=\$publisher_PID # bash forgets it when the process ends
answer() {
    local line
    read -r -t 20 line <&"\${publisher[0]}"
    [[ \$line == "\$1" ]] || { echo "publisher: \$line"; exit 1; }
}
answer ready
printf '%s' '{"do":"create","module":"$module","object":"Controller","instance":"1","description":{' \
    '"format":"process-data-description/1","elements":[' \
    '{"name":"speed","type":"float64","unit":"1/min"}]}}' >&"\${publisher[1]}"
echo >&"\${publisher[1]}"
answer ok
echo '{"do":"publish","path":"speed","value":1450.5}' >&"\${publisher[1]}"
answer ok
"\$1" processdata://$module/Controller/1/speed
exec {publisher[1]}>&-
wait "\$publisher_process"
SERVE
for client in "$work/client/read-once" "$work/by-pkg-config"; do
    check "${client##*/} runs" dbus-run-session -- bash "$work/serve" "$client"
    check "${client##*/} reads the published value" \
        grep -Fx "processdata://$module/Controller/1/speed = 1450.5 1/min" "$work/previous"
done
