# SPDX-License-Identifier: MIT

# Clients and publishers on private buses.

function(add_bus_test name)
    add_platform_test(${name} ${ARGN})
    target_compile_definitions(platform_test_${name} PRIVATE
        BUS_SERVICE_HELPER="$<TARGET_FILE:bus-service-helper>")
    add_dependencies(platform_test_${name} bus-service-helper)
endfunction()

add_platform_test(bus-test-main BusTestMainTest.cpp)
add_platform_test(bus-errors BusErrorsTest.cpp)
add_platform_test(answer-queue AnswerQueueTest.cpp)
add_platform_test(bus-link BusLinkTest.cpp)
add_platform_test(loss-watch LossWatchTest.cpp)
add_platform_test(bus-refusal BusRefusalTest.cpp)
add_bus_test(bus-names BusNamesTest.cpp)
add_bus_test(bus-service-table BusServiceTableTest.cpp)
add_bus_test(connector-announcement ConnectorAnnouncementTest.cpp)
add_bus_test(connector-fetch ConnectorFetchTest.cpp)
add_bus_test(connector-pending-reply ConnectorPendingReplyTest.cpp)
add_bus_test(second-fetch SecondFetchTest.cpp)
add_bus_test(connector-restart ConnectorRestartTest.cpp)
add_platform_test(connector-subscriptions ConnectorSubscriptionsTest.cpp)
add_bus_test(connector-status ConnectorStatusTest.cpp)
add_bus_test(system-services SystemServicesTest.cpp)
add_platform_test(fetch-queue FetchQueueTest.cpp)
add_bus_test(fork ForkTest.cpp)
add_bus_test(publisher PublisherTest.cpp)
add_bus_test(publisher-module PublisherModuleTest.cpp)
add_bus_test(publisher-first-values PublisherFirstValuesTest.cpp)
add_bus_test(publisher-replace PublisherReplaceTest.cpp)
add_bus_test(publisher-text PublisherTextTest.cpp)
