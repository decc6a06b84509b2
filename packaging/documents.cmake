# SPDX-License-Identifier: GPL-3.0-or-later
# The documents, and what they point to: the boundary of plugins and the library's headers. They
# stand to each other as in the sources, so that the example plugin builds where it is installed.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${doc_folder} COMPONENT corvane
    PATTERN architecture.md EXCLUDE
    PATTERN make-guide EXCLUDE
    PATTERN make-pictures EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/plugin DESTINATION ${doc_folder} COMPONENT corvane
    FILES_MATCHING PATTERN export.h PATTERN "host_function*" PATTERN "host_module*"
    PATTERN host_records.h PATTERN "plugin_interface.*")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/nodalis DESTINATION ${doc_folder} COMPONENT corvane
    FILES_MATCHING PATTERN README.md PATTERN "include/nodalis/*.h"
    PATTERN src EXCLUDE PATTERN cmake EXCLUDE)
