# SPDX-License-Identifier: GPL-3.0-or-later

# The libraries of the field's image formats: ITK, libnifti, ISA-L, which reads gzip, and zlib, which
# writes it.
#
# The parts of ITK in use. Its reader of NIfTI is not one of them: it goes by other rules for
# orientation, takes a neighbouring file for the one it is asked for, and its functions have the
# names of those of libnifti2.
block(SCOPE_FOR VARIABLES PROPAGATE ITK_INCLUDE_DIRS ITK_LIBRARIES)
    # Debian's ITK reports each tool of each library that it could use as missing.
    set(CMAKE_MESSAGE_LOG_LEVEL NOTICE)
    find_package(ITK 5 REQUIRED COMPONENTS ITKIONRRD ITKImageGrid)
endblock()
find_path(NIFTI_INCLUDE_DIR nifti/nifti2_io.h REQUIRED)
find_library(NIFTI_LIBRARY nifti2 REQUIRED)
find_path(ISAL_INCLUDE_DIR isa-l/igzip_lib.h REQUIRED)
find_library(ISAL_LIBRARY isal REQUIRED)
find_package(ZLIB REQUIRED GLOBAL)

function(tessera_use_itk target)
    target_include_directories(${target} SYSTEM PRIVATE ${ITK_INCLUDE_DIRS})
    # One Eigen in a file, not also the older one that ITK brings along.
    target_compile_definitions(${target} PRIVATE ITK_USE_SYSTEM_EIGEN)
    target_link_libraries(${target} PRIVATE ${ITK_LIBRARIES})
endfunction()
