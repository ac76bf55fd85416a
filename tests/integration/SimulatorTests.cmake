# SPDX-License-Identifier: MIT
# The simulator's scenarios and faults, set off over D-Bus.

add_integration_test(exactlimits ExactLimitsTest.cpp)
add_integration_test(simulator_faults)
add_integration_test(simulator_lock)
add_integration_test(simulator_run)
add_integration_test(simulator_scenario)
foreach(name exactlimits simulator_faults simulator_lock simulator_run simulator_scenario)
    target_link_libraries(integration_${name}_test PRIVATE Qt5::DBus)
    add_dependencies(integration_${name}_test process-data-simulator selector)
endforeach()
target_compile_definitions(integration_simulator_scenario_test
    PRIVATE EXAMPLE_DATA="${PROJECT_SOURCE_DIR}/examples/data")
# It locks a buffer as a foreign process would, so it knows the layout.
target_include_directories(integration_simulator_lock_test PRIVATE
    ${PROJECT_SOURCE_DIR}/platform/reference/memory ${PROJECT_SOURCE_DIR}/platform/reference/model)
