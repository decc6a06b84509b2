// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

/// @file
/// What the standard library does not ask of a disk: disk_posix.cpp and disk_windows.cpp. Functions
/// that can fail return 0, or an error number as of errno.

namespace corvane
{

/// From now on, a file that may not grow is an error of writing, not the end of the process.
void surviveFullFiles();

/// Gives a file that length, with real room for it.
int reserveRoom(int file, long long length);

/// Waits until everything written to a file is on the disk.
int syncToDisk(int file);

/// What would keep another file from being renamed over this one, as far as that can be known. 0
/// also when it is not there.
int faultOfReplacing(const std::filesystem::path &path);

/// Sets the time of the last change of a file or folder to now, by the clock of its file system.
int touch(const std::filesystem::path &path);

} // namespace corvane
