# SPDX-License-Identifier: MIT
# Tests of what others may do to the system: answers, storms, users without permission, nothing left.

add_integration_test(hostilebus HostileBusTest.cpp)
add_integration_test(stoppedclient StoppedClientTest.cpp)
# Fills a bus daemon six times until it drops messages: minutes under a sanitizer.
set_property(TEST integration.stoppedclient PROPERTY TIMEOUT 600)
set_property(TEST integration.stoppedclient APPEND PROPERTY LABELS slow)
add_executable(integration-reader client/reader.cpp)
target_link_libraries(integration-reader PRIVATE SelectorHandler::SelectorHandler Qt5::Core)
target_compile_definitions(integration_stoppedclient_test PRIVATE
    INTEGRATION_READER="$<TARGET_FILE:integration-reader>")
target_link_libraries(integration_stoppedclient_test PRIVATE Qt5::DBus)
add_dependencies(integration_stoppedclient_test integration-reader)
add_integration_test(storm)
add_integration_test(hostilecalls HostileCallsTest.cpp)
add_integration_test(sharedconnection SharedConnectionTest.cpp)
target_include_directories(integration_storm_test PRIVATE ${PROJECT_SOURCE_DIR}/tests/unit/support)

# A client in a process of its own, as another user or starved.
add_executable(integration-client client/main.cpp)
target_include_directories(integration-client
    PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/support ${PROJECT_SOURCE_DIR}/tests/support)
target_link_libraries(integration-client PRIVATE SelectorHandler::SelectorHandler Qt5::Core)

foreach(name permissions trust exhaustion)
    add_integration_test(${name})
    target_compile_definitions(integration_${name}_test PRIVATE
        INTEGRATION_CLIENT="$<TARGET_FILE:integration-client>")
    add_dependencies(integration_${name}_test integration-client)
endforeach()
target_compile_definitions(integration_exhaustion_test PRIVATE $<$<BOOL:${SELECTORHANDLER_SANITIZE}>:SANITIZED>)
target_compile_definitions(integration_hostilecalls_test PRIVATE $<$<BOOL:${SELECTORHANDLER_SANITIZE}>:SANITIZED>)
