# SPDX-License-Identifier: MIT
# The tests of one room in one program, each run by ctest in a process of its own. Every program of its
# own costs a link and a run of moc.

find_package(Qt5 5.15 REQUIRED COMPONENTS Test)
set(test_room_directory ${PROJECT_SOURCE_DIR}/tests/room)

# Main functions of the rooms, each with the flags of its tests, whose precompiled header it has.
foreach(room TestRoom SystemTestRoom)
    add_library(${room} OBJECT ${test_room_directory}/TestRoom.cpp)
    set_target_properties(${room} PROPERTIES AUTOMOC OFF)
    target_include_directories(${room} PUBLIC ${test_room_directory})
    target_link_libraries(${room} PRIVATE Qt5::Test)
    precompile_headers(${room} ${test_room_directory}/TestRoom.h)
endforeach()
target_link_libraries(TestRoom PRIVATE SelectorHandlerOptions)
target_compile_options(TestRoom PRIVATE -UQT_NO_CAST_FROM_ASCII)
target_link_libraries(SystemTestRoom PRIVATE SelectorHandlerWarnings)

# add_test_room(program TestRoom|SystemTestRoom): a program that add_room_test fills.
function(add_test_room program kind)
    add_executable(${program} $<TARGET_OBJECTS:${kind}>)
    set_target_properties(${program} PROPERTIES AUTOMOC OFF LINKER_LANGUAGE CXX TEST_ROOM ${kind})
    target_link_libraries(${program} PRIVATE Qt5::Test)
endfunction()

# test_source(plot_frame variable): the file PlotFrameTest.cpp.
function(test_source name variable)
    string(REPLACE "_" ";" words ${name})
    set(source "")
    foreach(word IN LISTS words)
        string(SUBSTRING ${word} 0 1 first)
        string(SUBSTRING ${word} 1 -1 rest)
        string(TOUPPER ${first} first)
        string(APPEND source ${first}${rest})
    endforeach()
    set(${variable} ${source}Test.cpp PARENT_SCOPE)
endfunction()

# add_room_test(program target test main-source other-source…): the test "test" runs the main function of
# main-source. Target holds its objects and takes definitions, directories and libraries of its own.
function(add_room_test program target test main_source)
    get_target_property(kind ${program} TEST_ROOM)
    cmake_path(GET main_source STEM name)
    set(moc_directory ${CMAKE_CURRENT_BINARY_DIR}/${target}_moc)
    file(MAKE_DIRECTORY ${moc_directory})
    add_custom_command(OUTPUT ${moc_directory}/${name}.moc
        COMMAND Qt5::moc ${CMAKE_CURRENT_SOURCE_DIR}/${main_source} -o ${moc_directory}/${name}.moc
        DEPENDS ${main_source} VERBATIM)
    add_library(${target} OBJECT ${main_source} ${ARGN} ${moc_directory}/${name}.moc)
    set_target_properties(${target} PROPERTIES AUTOMOC OFF)
    target_include_directories(${target} PRIVATE ${moc_directory})
    target_link_libraries(${target} PRIVATE Qt5::Test)
    if(SELECTORHANDLER_PRECOMPILE)
        target_precompile_headers(${target} REUSE_FROM ${kind})
    else()
        target_compile_options(${target} PRIVATE "SHELL:-include ${test_room_directory}/TestRoom.h")
    endif()
    target_link_libraries(${program} PRIVATE ${target})
    add_test(NAME ${test} COMMAND ${program} ${name})
endfunction()
