// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

namespace corvane
{

/// What a list of a folder holds; links count as what they lead to.
enum class Listed { Files, Folders, Everything };

/// The names in a folder that match one of the patterns, in their order; those that begin with a
/// dot only where the pattern does. A folder that is not there has none. Throws InputError for one
/// that cannot be read, which would pass for an empty one.
QStringList namesInFolder(const QString &folder, const QStringList &patterns, Listed kind);

/// All names in a folder, in no order, else likewise. A file for each system.
QStringList entriesIn(const QString &folder, Listed kind);

} // namespace corvane
