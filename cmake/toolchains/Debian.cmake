# SPDX-License-Identifier: MIT
# Cross compilers as Debian packages them; a toolchain file says for which processor, then includes this.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-g++)

# What the device has: headers and libraries of its processor. script/cross-test makes one here.
if(NOT SELECTORHANDLER_SYSROOT)
    set(SELECTORHANDLER_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot/${selectorhandler_architecture})
endif()
cmake_path(ABSOLUTE_PATH SELECTORHANDLER_SYSROOT NORMALIZE OUTPUT_VARIABLE CMAKE_SYSROOT)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES SELECTORHANDLER_SYSROOT)
if(NOT EXISTS ${CMAKE_SYSROOT}/usr/include)
    message(FATAL_ERROR "No sysroot in ${CMAKE_SYSROOT}; script/cross-test makes one, "
        "-DSELECTORHANDLER_SYSROOT=FOLDER names another")
endif()

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
