# SPDX-License-Identifier: GPL-3.0-or-later
# The Debian package of the Python package, python3-nodalis, with its own copy of the library.
list(APPEND CPACK_COMPONENTS_ALL python)
set(doc_folder_python ${CMAKE_INSTALL_DATAROOTDIR}/doc/python3-nodalis)
install(FILES copyright DESTINATION ${doc_folder_python} COMPONENT python)
add_dependencies(nodalis_python packed_changelog)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
    DESTINATION ${doc_folder_python} COMPONENT python)

get_target_property(python_version nodalis_python PYTHON_VERSION)
string(REGEX MATCH "^([0-9]+)\\.([0-9]+)" python_version ${python_version})
math(EXPR next_minor "${CMAKE_MATCH_2} + 1")
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-nodalis)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SOURCE corvane-tessera)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3 (>= ${python_version}~), \
python3 (<< ${CMAKE_MATCH_1}.${next_minor}), python3-numpy")
set(CPACK_DEBIAN_PYTHON_DESCRIPTION
    "graph measures, cleaning and group statistics of connectomes
Measures of brain networks on numpy arrays, cleaning of the time series that
they are made of, and group statistics on their edges, as in Corvane and its
plugin Tessera.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    "${CMAKE_CURRENT_SOURCE_DIR}/python/postinst;${CMAKE_CURRENT_SOURCE_DIR}/python/prerm")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_STRICT_PERMISSION ON)
