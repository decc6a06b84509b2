# SPDX-License-Identifier: GPL-3.0-or-later
# Flags that every target of the project shares, carried by one interface target.

add_library(tessera_flags INTERFACE)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(tessera_flags INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion
        # Index arithmetic of Eigen, Qt and the standard library mixes signs by design.
        -Wno-sign-conversion)
    if(TESSERA_WARNINGS_AS_ERRORS)
        target_compile_options(tessera_flags INTERFACE -Werror)
    endif()
endif()

# The compiler spends a tenth of its time on collecting garbage in memory that every machine has.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(tessera_flags INTERFACE --param=ggc-min-heapsize=524288)
endif()

# Log lines carry no file, line or function, in every build.
target_compile_definitions(tessera_flags INTERFACE
    QT_NO_MESSAGELOGCONTEXT QT_NO_CAST_TO_ASCII QT_NO_FOREACH)

if(TESSERA_SANITIZE)
    add_compile_options(-fsanitize=${TESSERA_SANITIZERS} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${TESSERA_SANITIZERS})
endif()
if(TESSERA_COVERAGE) # what ships, line by line; the tests themselves are not measured
    set(coverage_flags --coverage -O0 -fprofile-update=atomic) # threads count the same lines
    add_compile_options(${coverage_flags})
    add_link_options(--coverage)
endif()
