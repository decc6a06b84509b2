# SPDX-License-Identifier: GPL-3.0-or-later
# tessera_test(NAME SOURCES file... LINK target... [LABELS label...] [TIMEOUT seconds]
#              [OWN_MAIN | CORE_MAIN | GUI_MAIN] [OPTIMIZED | INLINED] [TOGETHER suite...]
#              [AT_SCALE factor... SCALED test...])
#
# One test program with GoogleTest. Each of its tests becomes a test of ctest, see
# DiscoverTests.cmake; one that calls GTEST_SKIP is reported as skipped. Tests run on Qt's offscreen
# platform with a home folder of their own, so that no test sees or changes a user's settings.
# Matrices of different sizes do not count as equal in them, see tests/support/eigen_checks.h.
#
# CORE_MAIN takes the main function for tests of programs without windows, tests/core_main.cpp,
# GUI_MAIN that for tests with widgets, tests/gui_main.cpp. AT_SCALE 2 runs the tests that SCALED
# names, in words of --gtest_filter, once more with two pixels per point, under the name
# NAME_at_scale_2: those that paint, or look where things stand in a picture. TOGETHER names suites
# whose tests run in one process, since they share what is dear to make.
#
# Sources of tests are most of what is compiled, and a test runs once: in a release build and under the
# sanitizers they are compiled without optimization. OPTIMIZED is for those that compute much, or need
# the inline functions of Eigen as they ship. INLINED is for those with so many of these functions that a
# release build without inlining takes longer: the linker for Windows needs minutes for them.

if(CMAKE_CROSSCOMPILING)
    include(CrossGoogleTest)
else()
    find_package(GTest REQUIRED)
endif()
find_package(Qt5 5.15 REQUIRED COMPONENTS Test)

set(eigen_checks ${PROJECT_SOURCE_DIR}/tests/support/eigen_checks.h)
set(plain_code $<$<CONFIG:Release,RelWithDebInfo>:-O0>)
set(inlined_code $<$<CONFIG:Release>:-O1> $<$<CONFIG:RelWithDebInfo>:-O0>)
# In the environment of each test. A bus error is the system's to end a program with, also where a
# sanitizer would tell of it.
set(sanitizer_options
    ASAN_OPTIONS=detect_leaks=1:handle_sigbus=0
    LSAN_OPTIONS=print_suppressions=0:suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp
    UBSAN_OPTIONS=print_stacktrace=1
    TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/tsan.supp)

# tessera_test_main(NAME SOURCE LINK target... HEADERS header...): a library with a main function. The
# headers are precompiled, for it and for the test programs that take it.
function(tessera_test_main name source)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "LINK;HEADERS")
    add_library(${name} STATIC ${source})
    target_compile_options(${name} PRIVATE ${plain_code})
    target_link_libraries(${name} PUBLIC ${arg_LINK} GTest::gmock PRIVATE tessera_flags)
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_precompile_headers(${name} PRIVATE ${eigen_checks} <gmock/gmock.h> ${arg_HEADERS})
endfunction()

# tessera_test_library(NAME SOURCES file... LINK target...): what several programs with GUI_MAIN share.
function(tessera_test_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
    add_library(${name} STATIC ${arg_SOURCES})
    target_compile_options(${name} PRIVATE ${plain_code})
    target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE tessera_flags)
    tessera_take_main(${name} tessera_gui_main)
endfunction()

function(tessera_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "OWN_MAIN;CORE_MAIN;GUI_MAIN;OPTIMIZED;INLINED" "TIMEOUT"
        "SOURCES;LINK;LABELS;TOGETHER;AT_SCALE;SCALED")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE tessera_flags ${arg_LINK} GTest::gmock)
    if(arg_INLINED)
        target_compile_options(${name} PRIVATE ${inlined_code})
    elseif(NOT arg_OPTIMIZED)
        target_compile_options(${name} PRIVATE ${plain_code})
    endif()
    if(arg_GUI_MAIN)
        tessera_take_main(${name} tessera_gui_main)
    elseif(arg_CORE_MAIN)
        tessera_take_main(${name} tessera_core_main)
    else()
        target_compile_options(${name} PRIVATE -include ${eigen_checks})
        if(arg_OWN_MAIN)
            target_link_libraries(${name} PRIVATE GTest::gtest)
        else()
            target_link_libraries(${name} PRIVATE GTest::gtest_main)
        endif()
    endif()
    if((arg_GUI_MAIN OR "gui" IN_LIST arg_LABELS) AND NOT TESSERA_BUILD_GUI_TESTS)
        set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
        return()
    endif()
    if(CMAKE_CROSSCOMPILING) # tests/windows runs it
        return()
    endif()

    set(home ${CMAKE_CURRENT_BINARY_DIR}/home_${name})
    file(MAKE_DIRECTORY ${home})
    set(environment
        QT_QPA_PLATFORM=offscreen
        QT_HASH_SEED=0
        HOME=${home}
        XDG_CONFIG_HOME=${home}/.config
        ${sanitizer_options})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300)
    endif()
    if(TESSERA_SANITIZE AND TESSERA_SANITIZERS STREQUAL "thread") # takes ten times as long
        math(EXPR arg_TIMEOUT "4 * ${arg_TIMEOUT}")
    endif()
    set(calls "include(${PROJECT_SOURCE_DIR}/cmake/DiscoverTests.cmake)\n")
    tessera_discovery(${name} * "${environment}")
    foreach(factor IN LISTS arg_AT_SCALE)
        tessera_discovery(${name}_at_scale_${factor} "${arg_SCALED}"
            "${environment};QT_SCALE_FACTOR=${factor}")
    endforeach()
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${name}_tests.cmake)
    file(GENERATE OUTPUT ${script} CONTENT "${calls}")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${script})
endfunction()

# One more call in the script that ctest reads; reads the arguments of tessera_test.
macro(tessera_discovery prefix filters environment)
    string(APPEND calls "tessera_discover(${prefix} \"$<TARGET_FILE:${name}>\" \"${filters}\"\n"
        "    \"${arg_TOGETHER}\" \"${environment}\" \"${arg_LABELS}\" ${arg_TIMEOUT})\n")
endmacro()

# Links a main function and compiles with the headers that are precompiled for it.
function(tessera_take_main target main)
    target_link_libraries(${target} PRIVATE ${main})
    # Another optimization would need other precompiled headers.
    if(arg_OPTIMIZED)
        target_compile_options(${target} PRIVATE -include ${eigen_checks})
    else()
        target_precompile_headers(${target} REUSE_FROM ${main})
    endif()
endfunction()
