# SPDX-License-Identifier: MIT
# Makes every executable of a cross build startable here. Handed over as CMAKE_PROJECT_INCLUDE.
#
# Tests start programs, which start programs. So it is not ctest that knows of the emulator, but each
# executable: the linker's output moves aside, and a script takes its place that runs it under qemu-user.
include_guard(GLOBAL)

if(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
    find_program(SELECTORHANDLER_EMULATOR qemu-aarch64-static REQUIRED)
else()
    find_program(SELECTORHANDLER_EMULATOR qemu-arm-static REQUIRED)
endif()

set(shim ${PROJECT_BINARY_DIR}/emulator-shim.o)
execute_process(
    COMMAND ${CMAKE_CXX_COMPILER} --sysroot=${CMAKE_SYSROOT} -std=c++17 -O1 -fPIC -Wall -Wextra -Werror
        -c ${CMAKE_CURRENT_LIST_DIR}/emulator-shim.cpp -o ${shim}
    COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
    ${CMAKE_CURRENT_LIST_DIR}/emulator-shim.cpp ${CMAKE_CURRENT_LIST_DIR}/emulated-executable)
string(REPLACE "<OBJECTS>" "<OBJECTS> ${shim}" CMAKE_CXX_LINK_EXECUTABLE "${CMAKE_CXX_LINK_EXECUTABLE}")
list(APPEND CMAKE_CXX_LINK_EXECUTABLE
    "${CMAKE_CURRENT_LIST_DIR}/emulated-executable <TARGET> ${SELECTORHANDLER_EMULATOR} ${CMAKE_SYSROOT}")
