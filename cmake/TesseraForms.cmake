# SPDX-License-Identifier: GPL-3.0-or-later

# Lets a changed form reach a target in the same build. Ninja does not know the header that is made
# of a form and would compile what includes it only in the next build: such a source depends on the
# form itself, too. Called when the target has all its sources.
function(tessera_depend_on_forms target)
    get_target_property(sources ${target} SOURCES)
    set(forms ${sources})
    list(FILTER forms INCLUDE REGEX "\\.ui$")
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    foreach(form IN LISTS forms)
        get_filename_component(form ${form} ABSOLUTE)
        get_filename_component(name ${form} NAME_WE)
        foreach(source IN LISTS sources)
            file(STRINGS ${source} includes REGEX "^#include \"ui_${name}\\.h\"")
            if(includes)
                set_property(SOURCE ${source} TARGET_DIRECTORY ${target}
                    APPEND PROPERTY OBJECT_DEPENDS ${form})
            endif()
        endforeach()
    endforeach()
endfunction()
