// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// @file
/// The name that the files of an import have before their endings.

namespace corvane
{

/// The name when the user gives none: that of the run without ".nii" or ".nii.gz".
QString defaultImportName(const QString &functional);

/// Whether files can have that name.
bool isImportName(const QString &name);

} // namespace corvane
