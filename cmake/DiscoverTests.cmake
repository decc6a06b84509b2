# SPDX-License-Identifier: GPL-3.0-or-later
# Read by ctest, from a file that tessera_test writes for each program.
#
# tessera_discover(PREFIX PROGRAM FILTERS TOGETHER ENVIRONMENT LABELS TIMEOUT)
#
# Makes a test of ctest, PREFIX.SUITE.TEST, of each test of the program that one of the filters of
# GoogleTest lets through; each filter must let one through. All values of a test with parameters run
# in one process, since starting a program costs more than most of them, and so does each of the
# suites that TOGETHER lists.

# ctest reads this without the project's policies.
cmake_policy(VERSION 3.25)

function(tessera_discover prefix program filters together environment labels timeout)
    if(NOT EXISTS "${program}")
        add_test(${prefix}_NOT_BUILT ${prefix}_NOT_BUILT)
        return()
    endif()
    set(list ${CMAKE_CURRENT_BINARY_DIR}/${prefix}_tests.txt)
    if(NOT EXISTS "${list}" OR "${program}" IS_NEWER_THAN "${list}"
            OR "${CMAKE_CURRENT_LIST_FILE}" IS_NEWER_THAN "${list}")
        set(tests "")
        foreach(filter IN LISTS filters)
            execute_process(COMMAND "${program}" --gtest_list_tests "--gtest_filter=${filter}"
                OUTPUT_VARIABLE output RESULT_VARIABLE result TIMEOUT 60)
            # What is behind '#' tells the value of a parameter.
            string(REGEX REPLACE " +#[^\n]*" "" output "${output}")
            if(NOT result STREQUAL 0 OR NOT output MATCHES "\n  ")
                message(FATAL_ERROR "${program} lists no test ${filter}: ${result}\n${output}")
            endif()
            string(APPEND tests "${output}")
        endforeach()
        file(WRITE "${list}" "${tests}")
    endif()

    file(STRINGS "${list}" lines)
    foreach(line IN LISTS lines)
        if(NOT line MATCHES "^  ")
            string(REGEX REPLACE "\\.$" "" suite ${line})
            continue()
        endif()
        string(REGEX REPLACE "^  ([^/]+).*" "\\1" test ${line})
        string(REGEX REPLACE "^  ([^/]+/?).*" "\\1" pattern ${line})
        string(REGEX REPLACE "/$" "/*" pattern ${suite}.${pattern})
        set(name ${suite}.${test})
        if(suite IN_LIST together)
            set(name ${suite})
        endif()
        list(APPEND names ${name})
        list(APPEND patterns_${name} ${pattern})
    endforeach()
    list(REMOVE_DUPLICATES names)

    foreach(name IN LISTS names)
        set(test ${prefix}.${name})
        list(REMOVE_DUPLICATES patterns_${name})
        list(JOIN patterns_${name} : filter)
        add_test(${test} "${program}" --gtest_filter=${filter})
        # A test without a failure whose last words are the list of what was skipped.
        set_tests_properties(${test} PROPERTIES
            SKIP_REGULAR_EXPRESSION "\n\\[  PASSED  \\] [^\n]*(\n\\[  SKIPPED \\][^\n]*)+\n*$"
            ENVIRONMENT "${environment}"
            LABELS "${labels}"
            TIMEOUT ${timeout})
    endforeach()
endfunction()
