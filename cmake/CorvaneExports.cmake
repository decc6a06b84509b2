# SPDX-License-Identifier: GPL-3.0-or-later
# corvane_export_host_functions(target [function...])
#
# Makes an executable export exactly the host's functions for plugins, as they stand in
# plugin/host_function_names.inc, and nothing else: names that come in with libraries stay in.
# The executable links corvane_session, where the functions are. With functions named, only those
# are exported.

function(corvane_export_host_functions target)
    set(functions ${ARGN})
    if(NOT functions)
        set(list ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../plugin/host_function_names.inc)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
        file(STRINGS ${list} calls REGEX "^HOST_CALL\\(")
        foreach(call IN LISTS calls)
            string(REGEX MATCH "zq[A-Za-z]+" name "${call}")
            list(APPEND functions ${name})
        endforeach()
    endif()
    set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON)

    if(WIN32) # nothing in the program is marked for export: a definition file alone decides
        list(JOIN functions "\n    " names)
        set(definition ${CMAKE_CURRENT_BINARY_DIR}/${target}_exports.def)
        file(CONFIGURE OUTPUT ${definition} CONTENT "EXPORTS\n    ${names}\n" @ONLY)
        target_sources(${target} PRIVATE ${definition})
        # Programs of one name would make one library of imports, which nobody needs.
        set_target_properties(${target} PROPERTIES
            ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/${target}_imports)
        return()
    endif()

    list(JOIN functions ";\n    " names)
    set(map ${CMAKE_CURRENT_BINARY_DIR}/${target}_exports.map)
    file(CONFIGURE OUTPUT ${map} CONTENT "{\nglobal:\n    ${names};\nlocal:\n    *;\n};\n" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
    # Nothing in the program calls them, so that they must be asked for.
    list(TRANSFORM functions PREPEND "LINKER:--undefined=" OUTPUT_VARIABLE undefined)
    target_link_options(${target} PRIVATE ${undefined})
endfunction()
