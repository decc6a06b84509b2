# SPDX-License-Identifier: GPL-3.0-or-later
# tessera_test(NAME SOURCES file... LINK target... [LABELS label...] [TIMEOUT seconds])
#
# One test program with GoogleTest. Each of its tests becomes a test of ctest; one that calls
# GTEST_SKIP is reported as skipped. Tests run on Qt's offscreen platform with a home folder of
# their own, so that no test sees or changes a user's settings.

include(GoogleTest)
find_package(GTest REQUIRED)

function(tessera_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "OWN_MAIN" "TIMEOUT" "SOURCES;LINK;LABELS")
    add_executable(${name} ${arg_SOURCES})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_link_libraries(${name} PRIVATE tessera_flags ${arg_LINK} GTest::gmock)
    if(arg_OWN_MAIN)
        target_link_libraries(${name} PRIVATE GTest::gtest)
    else()
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()
    target_compile_definitions(${name} PRIVATE "TESSERA_DATA_DIR=\"${TESSERA_DATA_DIR}\"")
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300)
    endif()
    set(home ${CMAKE_CURRENT_BINARY_DIR}/home_${name})
    file(MAKE_DIRECTORY ${home})
    gtest_discover_tests(${name}
        TEST_PREFIX "${name}."
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES
            TIMEOUT ${arg_TIMEOUT}
            LABELS "${arg_LABELS}"
            ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_HASH_SEED=0;HOME=${home};XDG_CONFIG_HOME=${home}/.config;ASAN_OPTIONS=detect_leaks=1;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp;UBSAN_OPTIONS=print_stacktrace=1")
endfunction()
