// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <filesystem>
#include <system_error>

/// @file
/// What file systems and the standard library do not do alike on every system:
/// file_system_posix.cpp and file_system_windows.cpp.

namespace corvane
{

/// For functions of the standard library, in a form that the system takes at any length.
std::filesystem::path nativePath(const QString &path);

/// Whether names of files may hold it.
bool isForFileNames(QChar c);

/// Renames a file in one step, over an older one of that name. On Windows nobody may have the older
/// one open; who holds it for a moment only is waited for.
std::error_code renameOver(const QString &from, const QString &target);

/// Removes a file, or a folder with all in it, if it is there.
void removeAll(const QString &path);

/// Hides a folder whose name begins with a dot, where that does not do it.
void hideFolder(const QString &path);

/// An error of these functions, or of the standard library, in words for the user.
QString wordsFor(const std::error_code &error);

} // namespace corvane
