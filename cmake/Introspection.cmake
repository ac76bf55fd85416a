# SPDX-License-Identifier: MIT

# embed_introspection(target xml): gives the target's sources <interface>.h, which holds what the
# interface's XML file says of it, without comments, as introspectionXml.
function(embed_introspection target xml)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${xml})
    file(READ ${xml} text)
    string(REGEX REPLACE "\n *<!--([^-]|-[^-])*-->" "" text "${text}")
    string(REGEX MATCH "  <interface.*</interface>\n" text "${text}")
    get_filename_component(interface ${xml} NAME_WLE)
    file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/introspection/${interface}.h @ONLY
        CONTENT "constexpr char introspectionXml[] = R\"(@text@)\";\n")
    target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/introspection)
endfunction()
