# SPDX-License-Identifier: GPL-3.0-or-later
# corvane_export_host_functions(target [function...])
#
# Makes an executable export exactly the host's functions for plugins, as they stand in
# plugin/host_function_names.inc, and nothing else: names that come in with libraries stay in.
# The executable links corvane_session, where the functions are. With functions named, only those are
# exported.

function(corvane_export_host_functions target)
    set(list ${PROJECT_SOURCE_DIR}/plugin/host_function_names.inc)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
    file(STRINGS ${list} calls REGEX "^HOST_CALL\\(")
    set(functions ${ARGN})
    if(NOT functions)
        foreach(call IN LISTS calls)
            string(REGEX MATCH "zq[A-Za-z]+" name "${call}")
            list(APPEND functions ${name})
        endforeach()
    endif()
    set(script "{\nglobal:\n")
    foreach(name IN LISTS functions)
        string(APPEND script "    ${name};\n")
        # Nothing in the program calls them, so that they must be asked for.
        target_link_options(${target} PRIVATE "LINKER:--undefined=${name}")
    endforeach()
    string(APPEND script "local:\n    *;\n};\n")

    if(NOT WIN32) # there, dllexport alone decides
        set(map ${CMAKE_CURRENT_BINARY_DIR}/${target}_exports.map)
        file(CONFIGURE OUTPUT ${map} CONTENT "${script}" @ONLY)
        set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON)
        target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
    endif()
endfunction()
