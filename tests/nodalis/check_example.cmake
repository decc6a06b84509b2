# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the library into an empty folder and uses it from there alone: the example is built with
# the CMake package and with pkg-config, and has to print the same with all widths of vectors.
#
# cmake -D BUILD=... -D EXAMPLE=... -D WORK=... -D COMPILER=... -D FLAGS=... -D GENERATOR=...
#       -D LIBDIR=lib -P check_example.cmake

file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/prefix)

function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output
        RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "${command}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --component nodalis --prefix ${prefix})

run(${CMAKE_COMMAND} -S ${EXAMPLE} -B ${WORK}/package -G ${GENERATOR}
    -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_FIND_USE_PACKAGE_REGISTRY=OFF
    -D CMAKE_CXX_COMPILER=${COMPILER} "-DCMAKE_CXX_FLAGS=${FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK}/package)
run(${WORK}/package/nodalis-example ${WORK}/tree)
set(printed "${output}")
if(NOT EXISTS ${WORK}/tree.csv)
    message(SEND_ERROR "the example wrote no tree.csv")
endif()
if(NOT printed MATCHES "\n79 edges span the graph\n")
    message(SEND_ERROR "unexpected output:\n${printed}")
endif()

foreach(width plain avx2 avx512)
    run(${CMAKE_COMMAND} -E env NODALIS_KERNELS=${width} ${WORK}/package/nodalis-example)
    if(NOT output STREQUAL printed)
        message(SEND_ERROR "other results with ${width} vectors:\n${output}")
    endif()
endforeach()

find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
run(${PKG_CONFIG} --cflags --libs nodalis)
separate_arguments(package UNIX_COMMAND "${output}")
separate_arguments(flags UNIX_COMMAND "${FLAGS}")
set(compile ${COMPILER} -std=c++17 ${flags} ${EXAMPLE}/main.cpp ${package}
    -Wl,-rpath,${prefix}/${LIBDIR} -o ${WORK}/by_pkg_config)
run(${compile})
run(${WORK}/by_pkg_config)
if(NOT output STREQUAL printed)
    message(SEND_ERROR "other results when built with pkg-config:\n${output}")
endif()

# A client whose Eigen aligns differently must not get past the linker.
if(CMAKE_HOST_SYSTEM_PROCESSOR STREQUAL x86_64)
    execute_process(COMMAND ${compile} -mavx2 ERROR_VARIABLE errors RESULT_VARIABLE status)
    if(status EQUAL 0 OR NOT errors MATCHES "undefined reference to .nodalis::eigen_align_32")
        message(SEND_ERROR "a client with other flags is not refused: ${errors}")
    endif()
endif()
