#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the library alone against another platform's CMake package: the tests' scripted platform.
#
# usage: other_platform_test.sh SOURCE-DIR BUILD-DIR PLATFORM-LIBRARY [COMPILE-FLAG…]
set -euo pipefail
# shellcheck source=tests/integration/package/common.bash
source "$(dirname "${BASH_SOURCE[0]}")/common.bash"
platform_library=$3
flags=("${@:4}")

vendor=$work/vendor
mkdir -p "$vendor/include" "$vendor/lib/cmake/ProcessDataPlatform"
cp "$source_dir"/platform/*.h "$vendor/include"
cp "$platform_library" "$vendor/lib" # keeps its name: that is its soname
cat >"$vendor/lib/cmake/ProcessDataPlatform/ProcessDataPlatformConfig.cmake" <<CONFIG
find_package(Qt5 REQUIRED COMPONENTS Core)
add_library(ProcessDataPlatform::ProcessDataPlatform SHARED IMPORTED)
set_target_properties(ProcessDataPlatform::ProcessDataPlatform PROPERTIES
    IMPORTED_LOCATION $vendor/lib/${platform_library##*/}
    INTERFACE_INCLUDE_DIRECTORIES $vendor/include
    INTERFACE_LINK_LIBRARIES Qt5::Core)
CONFIG

check "the library configures" cmake -G Ninja -S "$source_dir" -B "$work/build" \
    -DSELECTORHANDLER_PLATFORM=system -DBUILD_TESTING=OFF -DCMAKE_PREFIX_PATH="$vendor" \
    -DCMAKE_INSTALL_PREFIX="$work/prefix" -DCMAKE_CXX_FLAGS="${flags[*]}"
check "the library builds" cmake --build "$work/build" --parallel 2
check "nothing below platform/ is on any command line" \
    absent -rF "$source_dir/platform" "$work/build/compile_commands.json"
check "only the library was built" test ! -e "$work/build/bin/selector"
check "the library installs" cmake --install "$work/build"
check "no header of a platform is installed with it" test ! -e "$work/prefix/include/processdataplatform"
library=$(find "$work/prefix" -name libSelectorHandler.so.1)
needed "$library" >"$work/needed"
check "the library needs that platform" grep -qFx "${platform_library##*/}" "$work/needed"
check "the library needs no other platform" absent -q libProcessDataPlatform "$work/needed"

cat >"$work/main.cpp" <<'MAIN'
#include <SelectorHandlerProcessValue.h>
int main()
{
    SelectorHandlerProcessValue handler(QVector<QString>(), nullptr);
    return handler.getValues().isEmpty() ? 0 : 1;
}
MAIN
cat >"$work/CMakeLists.txt" <<'CLIENT'
cmake_minimum_required(VERSION 3.16)
project(client LANGUAGES CXX)
find_package(SelectorHandler REQUIRED)
add_executable(client main.cpp)
target_link_libraries(client PRIVATE SelectorHandler::SelectorHandler)
CLIENT
check "a client configures" cmake -G Ninja -S "$work" -B "$work/client" \
    -DCMAKE_PREFIX_PATH="$work/prefix;$vendor" -DCMAKE_CXX_FLAGS="${flags[*]}"
check "a client builds" cmake --build "$work/client"
export LD_LIBRARY_PATH=$vendor/lib:${library%/*}
check "a client runs on the other platform" "$work/client/client"
