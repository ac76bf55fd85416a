# SPDX-License-Identifier: MIT
# 64-bit ARM.

set(selectorhandler_architecture arm64)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/Debian.cmake)
