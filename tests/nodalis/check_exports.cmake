# SPDX-License-Identifier: GPL-3.0-or-later
# cmake -D NM=nm -D LIBRARY=libnodalis.so -P check_exports.cmake
# The library exports its public functions and nothing else.

set(wanted
    clustering_coeff
    degree
    distances::between_spectra
    distances::spectral_euclidean
    distances::spectrum
    eigenvector_centrality
    global_efficiency
    local_efficiency
    local_efficiency_relaxations
    mst::minimum_spanning_tree
    nodal_global_efficiency
    strength
    to_csv
    treatment
    version)

execute_process(COMMAND ${NM} -DC --defined-only ${LIBRARY}
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(STRIP "${symbols}" symbols)
string(REPLACE "\n" ";" symbols "${symbols}")
set(exported)
foreach(symbol IN LISTS symbols)
    if(symbol MATCHES "^[0-9a-f]+ T nodalis::eigen_align_[0-9]+_malloc_[01]::([a-z_:]+)[(]")
        list(APPEND exported ${CMAKE_MATCH_1})
    else()
        message(SEND_ERROR "exported by accident: ${symbol}")
    endif()
endforeach()
list(SORT exported)
list(REMOVE_DUPLICATES exported) # those with an effort have the same names
if(NOT exported STREQUAL wanted)
    message(SEND_ERROR "exported: ${exported}\nwanted: ${wanted}")
endif()
