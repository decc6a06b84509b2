// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

/// \file
/// What differs between operating systems when a file is written: files_posix.cpp and
/// files_windows.cpp.

namespace nodalis::detail
{

/// The path of a UTF-8 text, in a form that the system takes at any length.
std::filesystem::path system_path(const std::string &utf8);

/// Renames a file in one step, over an older one, whose permissions it takes where there are any.
/// On Windows the older one must be neither open nor read-only.
bool move_into_place(const std::filesystem::path &temporary, const std::filesystem::path &target);

/// Removes a file, if it is there.
void remove_file(const std::filesystem::path &file);

} // namespace nodalis::detail
