# SPDX-License-Identifier: MIT
# 32-bit ARM with hardware floating point.

set(selectorhandler_architecture armhf)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
include(${CMAKE_CURRENT_LIST_DIR}/Debian.cmake)
