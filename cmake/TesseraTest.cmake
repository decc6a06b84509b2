# SPDX-License-Identifier: GPL-3.0-or-later
# tessera_test(NAME SOURCES file... LINK target... [LABELS label...] [TIMEOUT seconds]
#              [OWN_MAIN | GUI_MAIN] [AT_SCALE factor...])
#
# GUI_MAIN takes the main function for tests with widgets, tests/gui_main.cpp. AT_SCALE 1.5 runs all
# tests of the program once more with one and a half pixels per point, under the name
# NAME_at_scale_1.5.
#
# One test program with GoogleTest. Each of its tests becomes a test of ctest; one that calls
# GTEST_SKIP is reported as skipped. Tests run on Qt's offscreen platform with a home folder of
# their own, so that no test sees or changes a user's settings. Matrices of different sizes do not
# count as equal in them, see tests/support/eigen_checks.h.

include(GoogleTest)
find_package(GTest REQUIRED)
find_package(Qt5 5.15 REQUIRED COMPONENTS Test)

function(tessera_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "OWN_MAIN;GUI_MAIN" "TIMEOUT" "SOURCES;LINK;LABELS;AT_SCALE")
    add_executable(${name} ${arg_SOURCES})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_compile_options(${name} PRIVATE
        -include ${PROJECT_SOURCE_DIR}/tests/support/eigen_checks.h)
    target_link_libraries(${name} PRIVATE tessera_flags ${arg_LINK} GTest::gmock)
    if(arg_GUI_MAIN)
        find_package(Qt5 REQUIRED COMPONENTS Test)
        target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/gui_main.cpp)
        target_link_libraries(${name} PRIVATE Qt5::Test)
    endif()
    if(arg_OWN_MAIN OR arg_GUI_MAIN)
        target_link_libraries(${name} PRIVATE GTest::gtest)
    else()
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300)
    endif()
    if((arg_GUI_MAIN OR "gui" IN_LIST arg_LABELS) AND NOT TESSERA_BUILD_GUI_TESTS)
        set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
        return()
    endif()
    set(home ${CMAKE_CURRENT_BINARY_DIR}/home_${name})
    file(MAKE_DIRECTORY ${home})
    set(environment
        QT_QPA_PLATFORM=offscreen
        QT_HASH_SEED=0
        HOME=${home}
        XDG_CONFIG_HOME=${home}/.config
        ASAN_OPTIONS=detect_leaks=1
        LSAN_OPTIONS=print_suppressions=0:suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp
        UBSAN_OPTIONS=print_stacktrace=1)
    tessera_discover(${name} ${name} "${environment}")
    foreach(factor IN LISTS arg_AT_SCALE)
        tessera_discover(${name} ${name}_at_scale_${factor} "${environment};QT_SCALE_FACTOR=${factor}")
    endforeach()
endfunction()

# Makes a test of ctest of each test in a program; reads the arguments of tessera_test.
#
# Environment and labels are set in a file of its own that ctest reads behind the list of tests:
# among the PROPERTIES of gtest_discover_tests a list falls apart, and only its first entry is set.
macro(tessera_discover name prefix environment)
    gtest_discover_tests(${name}
        TEST_PREFIX "${prefix}."
        TEST_LIST ${prefix}_tests
        NO_PRETTY_VALUES
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES
            TIMEOUT ${arg_TIMEOUT})
    set(properties_file ${CMAKE_CURRENT_BINARY_DIR}/${prefix}_properties.cmake)
    file(WRITE ${properties_file}
        "if(${prefix}_tests)\n"
        "    set_tests_properties(\${${prefix}_tests} PROPERTIES\n"
        "        ENVIRONMENT \"${environment}\"\n"
        "        LABELS \"${arg_LABELS}\")\n"
        "endif()\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${properties_file})
endmacro()
