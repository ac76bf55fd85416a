# SPDX-License-Identifier: MIT
# Tests of what others may do to the system: answers, storms, users without permission, nothing left.

add_integration_test(hostilebus)
add_integration_test(storm)
target_include_directories(integration_storm_test PRIVATE ${PROJECT_SOURCE_DIR}/tests/unit/support)

# A client in a process of its own, as another user or starved.
add_executable(integration-client client/main.cpp)
target_include_directories(integration-client PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/support)
target_link_libraries(integration-client PRIVATE SelectorHandler::SelectorHandler Qt5::Core)

foreach(name permissions exhaustion)
    add_integration_test(${name})
    target_include_directories(integration_${name}_test PRIVATE ${PROJECT_SOURCE_DIR}/tests/platform)
    target_compile_definitions(integration_${name}_test PRIVATE
        INTEGRATION_CLIENT="$<TARGET_FILE:integration-client>")
    add_dependencies(integration_${name}_test integration-client)
endforeach()
target_compile_definitions(integration_exhaustion_test PRIVATE $<$<BOOL:${SELECTORHANDLER_SANITIZE}>:SANITIZED>)
