# SPDX-License-Identifier: GPL-3.0-or-later
# GoogleTest for another system, made of the sources that its Debian package brings along.
find_path(GTEST_SOURCES googlemock/CMakeLists.txt PATH_SUFFIXES src/googletest
    PATHS /usr NO_CMAKE_FIND_ROOT_PATH)
if(NOT GTEST_SOURCES)
    message(FATAL_ERROR "The sources of GoogleTest are missing (Debian package googletest)")
endif()
set(INSTALL_GTEST OFF)
add_subdirectory(${GTEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
