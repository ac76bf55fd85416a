#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds the library alone against an installed platform package and looks at what came out.
# usage: build-library.sh SOURCE_DIR WORK_DIR BODY CXX [LAUNCHER]
set -eu
source_dir=$1
work=$2
body=$3
cxx=$4
launcher=${5:-}

fail() {
    echo "FAIL: $*" >&2
    exit 1
}

rm -rf "$work"
mkdir -p "$work"
common="-G Ninja -DCMAKE_CXX_COMPILER=$cxx -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DCMAKE_CXX_COMPILER_LAUNCHER=$launcher"

# shellcheck disable=SC2086 # the options are words without blanks
cmake $common -S "$source_dir/tests/unit/package" -B "$work/platform" \
    -DPLATFORM_BODY="$body" -DCONTRACT_HEADERS_DIR="$source_dir/platform" \
    -DCMAKE_INSTALL_PREFIX="$work/prefix"
cmake --build "$work/platform" --target install

# shellcheck disable=SC2086
cmake $common -S "$source_dir" -B "$work/library" \
    -DSELECTORHANDLER_PLATFORM=system -DBUILD_TESTING=OFF -DSELECTORHANDLER_WERROR=ON \
    -DCMAKE_PREFIX_PATH="$work/prefix" -DCMAKE_INSTALL_PREFIX="$work/installed"
cmake --build "$work/library"
cmake --install "$work/library"

library=$(find "$work/library/lib" -name 'libSelectorHandler.so.1')
[ -n "$library" ] || fail "no libSelectorHandler.so.1"
dynamic=$(readelf -d "$library")
echo "$dynamic" | grep -q 'SONAME.*\[libSelectorHandler\.so\.1\]' || fail "wrong SONAME: $dynamic"

needed=$(echo "$dynamic" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p')
case $body in
scripted) platform=libProcessDataPlatform.so.1 ;;
*) platform=libBarePlatform.so ;;
esac
for name in libQt5Core.so.5 "$platform"; do
    echo "$needed" | grep -qxF "$name" || fail "$name is not needed, but: $needed"
    needed=$(echo "$needed" | grep -vxF "$name" || true)
done
others=$(echo "$needed" | grep -vE '^(libstdc\+\+\.so\.6|libgcc_s\.so\.1|libm\.so\.6|libc\.so\.6|)$' || true)
[ -z "$others" ] || fail "also needs: $others"

if grep -F "$source_dir/platform" "$work/library/compile_commands.json"; then
    fail "the library was compiled with something below platform/"
fi
grep -q "$source_dir/src/SelectorHandlerProcessValue.cpp" "$work/library/compile_commands.json" ||
    fail "the list of compilations does not hold the library"
if grep -F "$source_dir/platform/" "$work/library/build.ninja"; then
    fail "the build uses something below platform/"
fi
programs=$(find "$work/library" -path '*/CMakeFiles' -prune -o -type f -perm -u+x ! -name '*.so*' -print)
[ -z "$programs" ] || fail "more than the library was built: $programs"

exported=$(nm -DC --defined-only "$library" | grep -E ' [TVW] ' | grep -vE 'Selector|typeinfo|vtable|std::|Q[A-Z]' || true)
[ -z "$exported" ] || fail "exports what is not its own: $exported"

# The contract's own tests, as a project outside of this tree would run them.
# shellcheck disable=SC2086
cmake $common -S "$source_dir/tests/contract" -B "$work/contract" -DCMAKE_PREFIX_PATH="$work/prefix"
cmake --build "$work/contract"
platform_dir=$(dirname "$(find "$work/prefix" -name '*Platform.so*' | head -n 1)")
LD_LIBRARY_PATH=$platform_dir "$work/contract/platform-form-test" || fail "the contract's form test"
if CONTRACT_URL='' "$work/contract/platform-live-test"; then
    fail "the contract's live test passed without a URL"
fi

if [ "$body" = bare ]; then
    flags=$(pkg-config --cflags --libs Qt5Core)
    # shellcheck disable=SC2086 # a launcher that is not there, and flags
    $launcher "$cxx" -std=c++17 -fPIC "$source_dir/tests/unit/package/error-values-test.cpp" \
        -o "$work/error-values-test" -I "$source_dir/include" -I "$work/prefix/include/vendor" \
        -L "$work/library/lib" -lSelectorHandler -L "$platform_dir" -lBarePlatform $flags
    LD_LIBRARY_PATH=$platform_dir:$work/library/lib "$work/error-values-test" ||
        fail "error values are not made by their constructor"
fi
echo "needed: $(echo "$dynamic" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p' | tr '\n' ' ')"
