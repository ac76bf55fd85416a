# SPDX-License-Identifier: MIT
# Installation: libraries, headers, CMake packages, pkg-config files, D-Bus policies, groups.

include(CMakePackageConfigHelpers)

# install_package(NAME … TARGET … HEADER_DIR … PC … DESCRIPTION … REQUIRES … HEADERS …): installs a
# library with all that a client needs to build against it.
function(install_package)
    cmake_parse_arguments(arg "" "NAME;TARGET;HEADER_DIR;PC;DESCRIPTION;REQUIRES" "HEADERS" ${ARGN})
    set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${arg_NAME})
    set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/${arg_HEADER_DIR})

    install(TARGETS ${arg_TARGET} EXPORT ${arg_NAME}Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
        NAMELINK_COMPONENT development)
    install(FILES ${arg_HEADERS} DESTINATION ${header_dir} COMPONENT development)
    set_property(GLOBAL APPEND PROPERTY INSTALLED_HEADERS ${arg_HEADERS})

    install(EXPORT ${arg_NAME}Targets NAMESPACE ${arg_NAME}::
        DESTINATION ${cmake_dir} COMPONENT development)
    configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/package/${arg_NAME}Config.cmake.in
        ${PROJECT_BINARY_DIR}/${arg_NAME}Config.cmake
        INSTALL_DESTINATION ${cmake_dir} NO_SET_AND_CHECK_MACRO)
    write_basic_package_version_file(${PROJECT_BINARY_DIR}/${arg_NAME}ConfigVersion.cmake
        COMPATIBILITY SameMajorVersion)
    install(FILES ${PROJECT_BINARY_DIR}/${arg_NAME}Config.cmake
            ${PROJECT_BINARY_DIR}/${arg_NAME}ConfigVersion.cmake
        DESTINATION ${cmake_dir} COMPONENT development)

    set(pc_name ${arg_NAME})
    set(pc_description "${arg_DESCRIPTION}")
    set(pc_requires "${arg_REQUIRES}")
    set(pc_header_dir ${arg_HEADER_DIR})
    # Relative to the file, so that an installed tree can be moved or staged.
    file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/package/package.pc.in
        ${PROJECT_BINARY_DIR}/${arg_PC}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${arg_PC}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

set(include_dir ${PROJECT_SOURCE_DIR}/include)
install_package(NAME SelectorHandler TARGET SelectorHandler HEADER_DIR selectorhandler
    PC selectorhandler DESCRIPTION "Live process data by selector URL"
    REQUIRES "processdataplatform Qt5Core >= 5.15"
    HEADERS
        ${include_dir}/SelectorHanderDefinitions.h
        ${include_dir}/SelectorHandlerConvenienceFunctions.h
        ${include_dir}/SelectorHandlerExport.h
        ${include_dir}/SelectorHandlerProcessValue.h
        ${include_dir}/SelectorSharedMemoryHandler.h)

# The component Testing. Its libProcessDataPlatform stands apart, where only tests look for it.
if(TARGET SelectorHandlerTesting)
    set(testing_dir ${CMAKE_INSTALL_LIBDIR}/selectorhandler-testing)
    get_property(scripted_headers GLOBAL PROPERTY PROCESSDATA_SCRIPTED_HEADERS)
    install(TARGETS ScriptedPlatform SelectorHandlerTesting EXPORT SelectorHandlerTestingTargets
        LIBRARY DESTINATION ${testing_dir} COMPONENT development)
    install(FILES ${scripted_headers}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/selectorhandler-testing COMPONENT development)
    install(EXPORT SelectorHandlerTestingTargets NAMESPACE SelectorHandler::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/SelectorHandler COMPONENT development)
endif()

if(SELECTORHANDLER_PLATFORM STREQUAL "reference")
    get_property(contract_headers GLOBAL PROPERTY PROCESSDATA_CONTRACT_HEADERS)
    set(reference_dir ${PROJECT_SOURCE_DIR}/platform/reference)
    install_package(NAME ProcessDataPlatform TARGET ProcessDataPlatform HEADER_DIR processdataplatform
        PC processdataplatform DESCRIPTION "Process data over D-Bus and POSIX shared memory"
        REQUIRES "Qt5Core >= 5.15"
        HEADERS ${contract_headers}
            ${reference_dir}/include/BusQueryResult.h
            ${reference_dir}/include/CallDeadline.h
            ${reference_dir}/include/InstanceListClient.h
            ${reference_dir}/include/ServiceOwnerClient.h
            ${reference_dir}/include/BufferInspection.h
            ${reference_dir}/include/ProviderListClient.h
            ${reference_dir}/include/ProcessDataPublisher.h
            ${reference_dir}/include/ProviderRegistryService.h
            ${reference_dir}/include/SystemStatusService.h)
    file(GLOB bus_policies CONFIGURE_DEPENDS ${reference_dir}/dbus/*.conf)
    install(FILES ${bus_policies}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/system.d COMPONENT runtime)
    install(FILES ${reference_dir}/users/processdata.conf
        DESTINATION lib/sysusers.d COMPONENT runtime)
    file(GLOB bus_interfaces CONFIGURE_DEPENDS ${reference_dir}/dbus/*.xml)
    install(FILES ${bus_interfaces}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/interfaces COMPONENT development)
endif()

# All that cmake --install takes, for trees in which not everything is built.
add_custom_target(installed)
foreach(target SelectorHandler ProcessDataPlatform ScriptedPlatform SelectorHandlerTesting selector
        selector-man process-data-simulator)
    if(TARGET ${target})
        add_dependencies(installed ${target})
    endif()
endforeach()

# For script/abi: what an installed header declares is part of the binary interface.
get_property(interface_headers GLOBAL PROPERTY INSTALLED_HEADERS)
list(TRANSFORM interface_headers REPLACE "^.*/|\\.h$" "")
list(JOIN interface_headers | interface_headers)
configure_file(${PROJECT_SOURCE_DIR}/abi/interface.abignore.in
    ${PROJECT_BINARY_DIR}/abi/interface.abignore @ONLY)
