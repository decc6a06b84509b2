// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <string>

/// @file
/// What differs between operating systems in the paths of libraries that open files by the C
/// library: narrow_path_posix.cpp and narrow_path_windows.cpp.

namespace corvane
{

/// The path of a file that is there, for the C library. Empty when it has no such path: on Windows
/// that takes letters that the user's code page lacks, or 260 letters, on a disk that keeps no
/// short names.
std::string narrowPath(const QString &path);

} // namespace corvane
