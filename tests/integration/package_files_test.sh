#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Looks at what the installed packages say of themselves: versions, components, pkg-config files, targets.
#
# usage: package_files_test.sh SOURCE-DIR BUILD-DIR VERSION
set -euo pipefail
source_dir=$1 build_dir=$2 version=$3
work=$(mktemp -d "${TMPDIR:-/tmp}/package-files.XXXXXX")
trap 'rm -rf "$work"' EXIT
failures=0

# same WHAT EXPECTED FOUND
same() {
    if [[ $2 == "$3" ]]; then
        printf 'ok: %s\n' "$1"
    else
        printf 'FAILED: %s\n  expected: %s\n  found:    %s\n' "$1" "$2" "$3"
        failures=$((failures + 1))
    fi
}

# quietly COMMAND…: its output only when it fails.
quietly() {
    "$@" >"$work/log" 2>&1 || {
        printf 'FAILED: %s\n' "$*"
        cat "$work/log"
        exit 1
    }
}

files() {
    (cd "$1" && find . ! -type d -printf '%P\n' | sort)
}

# Components: each file belongs to one, and each holds what it is for.
quietly cmake --install "$build_dir" --prefix "$work/all"
for component in runtime development tools; do
    quietly cmake --install "$build_dir" --prefix "$work/$component" --component "$component"
done
same "the three components are the whole" "$(files "$work/all")" \
    "$(for component in runtime development tools; do files "$work/$component"; done | sort)"
same "runtime holds libraries by number, bus policies and groups alone" "" \
    "$(files "$work/runtime" | grep -vE '\.so\.[0-9.]+$|^share/dbus-1/system\.d/|^lib/sysusers\.d/' || true)"
same "development holds no program" "" "$(find "$work/development" -path '*/bin/*')"
same "tools hold no library and no header" "" "$(files "$work/tools" | grep -E '\.so|\.h$' || true)"
same "the API reference covers every installed header" "" \
    "$(find "$work/all/include" -name '*.h' -printf '%f\n' | while read -r header; do
        [[ -f $source_dir/include/$header ]] ||
            grep -qE "^ +platform/(.*/)?$header( \\\\)?$" "$source_dir/docs/doxygen/Doxyfile" || echo "$header"
    done)"

# Moved, so that nothing can hold on to the place of installation.
mv "$work/all" "$work/moved"
libdir=$(dirname "$(find "$work/moved" -name libSelectorHandler.so.1)")
export PKG_CONFIG_PATH=$libdir/pkgconfig

# The version stands in one place; what Debian's tools read cannot take it from there.
major=${version%%.*}
same "debian/changelog has the project's version" "$version" \
    "$(sed -nE '1s/^[^(]*\(([^)-]*)-.*/\1/p' "$source_dir/debian/changelog")"
same "Debian's packages of the libraries carry the shared objects' number" \
    "libprocessdataplatform$major libselectorhandler$major" \
    "$(sed -nE 's/^Package: (lib[a-z]+[0-9]+)$/\1/p' "$source_dir/debian/control" | sort | paste -sd ' ')"
for program in selector process-data-simulator; do
    same "$program tells the version" "$program $version" \
        "$(LD_LIBRARY_PATH=$libdir "$work/moved/bin/$program" --version)"
done

# pkg-config: read as a client's build does, then word by word.
for name in SelectorHandler ProcessDataPlatform; do
    pc=${name,,}
    quietly pkg-config --validate "$pc"
    same "$pc has the project's version" "$version" "$(pkg-config --modversion "$pc")"
    same "$pc names no absolute place" "" "$(grep -nE '(^|[= ])/' "$libdir/pkgconfig/$pc.pc" || true)"
    same "$pc finds its headers where it was moved" "$(realpath "$work/moved/include/$pc")" \
        "$(realpath "$(pkg-config --variable=includedir "$pc")")"
    same "$pc finds its library where it was moved" "$(realpath "$libdir/lib$name.so")" \
        "$(realpath "$(pkg-config --variable=libdir "$pc")/lib$name.so")"
    same "$pc links its library first" "-l$name" "$(pkg-config --libs-only-l "$pc" | cut -d' ' -f1)"
    for other in moc_ QtDBus Qt5DBus; do
        same "$pc says nothing of $other" "" "$(pkg-config --cflags --libs "$pc" | grep -o "$other" || true)"
    done
done
same "selectorhandler asks for the platform and Qt" "processdataplatform Qt5Core >= 5.15" \
    "$(pkg-config --print-requires selectorhandler | paste -sd' ')"
same "processdataplatform asks for Qt" "Qt5Core >= 5.15" "$(pkg-config --print-requires processdataplatform)"

# CMake: a request for the same major version, not newer, is met. The version is 1.0 here or later.
major=${version%%.*}
IFS=. read -r _ minor patch <<<"$version"
met=("$major" "$major.$minor" "$version" "$version EXACT")
refused=("$((major + 1)).0" "$((major - 1)).9" "$major.$((minor + 1))" "$major.$minor.$((patch + 1))")
mkdir "$work/versions"
{
    printf 'cmake_minimum_required(VERSION 3.16)\nproject(versions LANGUAGES CXX)\n'
    for name in SelectorHandler ProcessDataPlatform; do
        for request in "${met[@]}" "${refused[@]}"; do
            # shellcheck disable=SC2016 # CMake fills these in
            printf 'unset(%s_DIR CACHE)\nfind_package(%s %s QUIET)\nmessage("row %s %s: ${%s_FOUND}")\n' \
                "$name" "$name" "$request" "$name" "$request" "$name"
        done
    done
} >"$work/versions/CMakeLists.txt"
quietly cmake -G Ninja -S "$work/versions" -B "$work/versions/build" -DCMAKE_PREFIX_PATH="$work/moved"
for name in SelectorHandler ProcessDataPlatform; do
    for request in "${met[@]}"; do
        same "$name $version serves who asks for $request" "row $name $request: 1" \
            "$(grep -F "row $name $request:" "$work/log" | sed 's/TRUE$/1/')"
    done
    for request in "${refused[@]}"; do
        same "$name $version refuses who asks for $request" "row $name $request: 0" \
            "$(grep -F "row $name $request:" "$work/log" | sed 's/FALSE$/0/')"
    done
done

# The same client as a part of one tree with the library: same names of targets, none of our tests.
mkdir "$work/tree"
cat >"$work/tree/CMakeLists.txt" <<TREE
cmake_minimum_required(VERSION 3.25)
project(tree LANGUAGES CXX)
add_subdirectory($source_dir library)
add_subdirectory($source_dir/examples/read-once client)
foreach(target SelectorHandler::SelectorHandler ProcessDataPlatform::ProcessDataPlatform)
    if(NOT TARGET \${target})
        message(FATAL_ERROR "no target \${target}")
    endif()
endforeach()
TREE
quietly cmake -G Ninja -S "$work/tree" -B "$work/tree/build"
same "a tree around ours runs none of our tests" "Total Tests: 0" \
    "$(ctest --test-dir "$work/tree/build" -N | grep '^Total Tests:')"
((failures == 0))
