// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// @file
/// Where file dialogs begin: in the folder of the user's own data that was last in use.

namespace corvane
{

/// That folder; the home folder at first, or when it is gone.
QString userFolder();

/// The folder of that file becomes it, or the folder itself; but not one that this program made for
/// its example.
void rememberUserFolder(const QString &path);

/// Where the example dataset lies.
QString exampleDatasetFolder();

} // namespace corvane
