# SPDX-License-Identifier: MIT
# Tests of shared memory, and the program that they run as other processes.

add_executable(BufferHelper BufferHelper.cpp)
target_link_platform_objects(BufferHelper)
target_include_directories(BufferHelper PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
target_link_libraries(BufferHelper PRIVATE SelectorHandlerOptions)
target_compile_options(BufferHelper PRIVATE -UQT_NO_CAST_FROM_ASCII)

function(add_buffer_test name source)
    add_platform_test(${name} ${source})
    target_compile_definitions(platform_test_${name} PRIVATE BUFFER_HELPER="$<TARGET_FILE:BufferHelper>")
    add_dependencies(platform_test_${name} BufferHelper)
endfunction()

add_buffer_test(buffer-attach BufferAttachTest.cpp)
add_buffer_test(buffer-create BufferCreateTest.cpp)
add_buffer_test(buffer-files BufferFilesTest.cpp)
add_buffer_test(buffer-life BufferLifeTest.cpp)
add_buffer_test(buffer-name BufferNameTest.cpp)
add_buffer_test(buffer-publish BufferPublishTest.cpp)
add_buffer_test(buffer-squat BufferSquatTest.cpp)
add_buffer_test(last-value LastValueTest.cpp)
add_buffer_test(liveness LivenessTest.cpp)
add_buffer_test(manager-tree ManagerTreeTest.cpp)
add_buffer_test(manager-values ManagerValuesTest.cpp)
add_buffer_test(slot SlotTest.cpp)
add_buffer_test(truncation TruncationTest.cpp)
add_buffer_test(writers WritersTest.cpp)
