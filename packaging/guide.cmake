# SPDX-License-Identifier: GPL-3.0-or-later
# The user's guide as HTML, which the program opens with F1: beside the program when it is built as
# where it is installed, in share/corvane/guide next to the folder of the program.
find_program(CMARK_PROGRAM cmark-gfm REQUIRED)
find_program(PYTHON_PROGRAM python3 REQUIRED)
set(guide_folder ${PROJECT_BINARY_DIR}/share/corvane/guide)
file(GLOB guide_sources CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/docs/*.md ${PROJECT_SOURCE_DIR}/docs/pictures/*.png)
add_custom_command(OUTPUT ${guide_folder}/users-guide.html
    COMMAND ${PYTHON_PROGRAM} ${PROJECT_SOURCE_DIR}/docs/make-guide
        ${PROJECT_SOURCE_DIR}/docs ${guide_folder} ${CMARK_PROGRAM}
    DEPENDS ${PROJECT_SOURCE_DIR}/docs/make-guide ${guide_sources}
    COMMENT "Making the pages of the guide"
    VERBATIM)
add_custom_target(guide DEPENDS ${guide_folder}/users-guide.html)
add_dependencies(Corvane guide) # what is built with the program can be installed
install(DIRECTORY ${guide_folder} DESTINATION share/corvane COMPONENT corvane)
