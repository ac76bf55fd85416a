# SPDX-License-Identifier: MIT

# The bus library libdbus as the target DBus::DBus. Without pkg-config, which would find this machine's when
# building for another processor: one of the headers differs.
find_path(DBus_INCLUDE_DIR dbus/dbus.h PATH_SUFFIXES dbus-1.0)
find_library(DBus_LIBRARY dbus-1)
cmake_path(GET DBus_LIBRARY PARENT_PATH dbus_library_dir)
find_path(DBus_ARCHITECTURE_INCLUDE_DIR dbus/dbus-arch-deps.h
    HINTS ${dbus_library_dir} ${dbus_library_dir}/${CMAKE_LIBRARY_ARCHITECTURE}
    PATH_SUFFIXES dbus-1.0/include)
mark_as_advanced(DBus_INCLUDE_DIR DBus_LIBRARY DBus_ARCHITECTURE_INCLUDE_DIR)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(DBus
    REQUIRED_VARS DBus_LIBRARY DBus_INCLUDE_DIR DBus_ARCHITECTURE_INCLUDE_DIR)
if(DBus_FOUND AND NOT TARGET DBus::DBus)
    add_library(DBus::DBus UNKNOWN IMPORTED)
    set_target_properties(DBus::DBus PROPERTIES IMPORTED_LOCATION ${DBus_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES "${DBus_INCLUDE_DIR};${DBus_ARCHITECTURE_INCLUDE_DIR}")
endif()
