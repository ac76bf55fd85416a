# SPDX-License-Identifier: MIT
# Tests of the command-line client.

# add_selector_test(name): like add_integration_test, with the programs built first.
function(add_selector_test name)
    add_integration_test(${name})
    add_dependencies(integration_${name}_test selector process-data-simulator)
    target_compile_definitions(integration_${name}_test PRIVATE
        CHECK_SCHEMA="${CMAKE_CURRENT_SOURCE_DIR}/check_schema.py"
        SCHEMA_DIRECTORY="${PROJECT_SOURCE_DIR}/tools/selector/schema"
        COMPLETIONS="${PROJECT_SOURCE_DIR}/tools/selector/completion")
endfunction()

find_package(Qt5 5.15 REQUIRED COMPONENTS DBus)

add_selector_test(selector)
add_selector_test(selector_watch)
add_selector_test(selector_watch_presence)
add_selector_test(selector_terminal)
add_selector_test(selector_contract)
add_selector_test(explain)
add_selector_test(explain_agrees)
add_selector_test(selector_input)
add_selector_test(selector_doctor)
target_link_libraries(integration_selector_doctor_test PRIVATE Qt5::DBus)
add_selector_test(selector_doctor_clean)
add_selector_test(selector_check)
add_selector_test(selector_apply)
add_selector_test(selector_recipe)
target_link_libraries(integration_selector_recipe_test PRIVATE ToolsCommon Qt5::DBus)
add_selector_test(selector_typing)
add_selector_test(selector_completion)
add_selector_test(selector_exit_codes)
target_link_libraries(integration_selector_exit_codes_test PRIVATE Qt5::DBus)
target_compile_definitions(integration_selector_exit_codes_test PRIVATE
    MAN_PAGES="${PROJECT_SOURCE_DIR}/tools/selector/man")
add_selector_test(selector_golden)
target_compile_definitions(integration_selector_golden_test PRIVATE
    GOLDEN="${CMAKE_CURRENT_SOURCE_DIR}/golden")
add_selector_test(selector_patterns)
add_selector_test(selector_script)
add_selector_test(selector_values)
add_selector_test(selector_output)

# Every example of the document, the man pages and the helps, run as written.
add_test(NAME integration.cli_examples
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/cli_examples_test.sh ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR})
set_tests_properties(integration.cli_examples PROPERTIES LABELS integration TIMEOUT 120)
# One process after the other for each row: slow under a sanitizer.
set_tests_properties(integration.selector_exit_codes PROPERTIES TIMEOUT 240)
