# SPDX-License-Identifier: MIT
# Headers that most files take, read once. A build without shows what a file forgot to include.

# precompile_headers(target header): target makes the precompiled header that others reuse.
function(precompile_headers target header)
    if(SELECTORHANDLER_PRECOMPILE)
        target_precompile_headers(${target} PRIVATE ${header})
    endif()
endfunction()

# reuse_headers(owner target…): takes the same definitions and flags as owner has, or more of them.
function(reuse_headers owner)
    if(SELECTORHANDLER_PRECOMPILE)
        foreach(target IN LISTS ARGN)
            target_precompile_headers(${target} REUSE_FROM ${owner})
        endforeach()
    endif()
endfunction()

if(SELECTORHANDLER_PRECOMPILE)
    add_library(CommonHeaders OBJECT ${CMAKE_CURRENT_LIST_DIR}/CommonHeaders.cpp)
    set_target_properties(CommonHeaders PROPERTIES AUTOMOC OFF)
    target_link_libraries(CommonHeaders PRIVATE SelectorHandlerOptions Qt5::Core)
    precompile_headers(CommonHeaders ${CMAKE_CURRENT_LIST_DIR}/CommonHeaders.h)
endif()
