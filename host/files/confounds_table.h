// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "signals/confounds.h"

#include <QString>
#include <QStringList>

/// @file
/// Reads what a preprocessing pipeline tells of each volume. Whoever includes this links `signals`.

namespace corvane
{

/// Reads a table of confounds and the JSON beside it, if there is one, in one of two forms:
///
/// - tab-separated text with the names of the columns in the first line and "n/a" where a value is
///   missing, and beside it, under the same name with the ending .json, what is known of each
///   component;
/// - motion parameters of other packages: numbers with blanks or tabs between them, as many in each
///   line, and no names; the columns are called p1, p2 and so on. Lines that begin with "#" count
///   as nothing.
///
/// What was skipped is appended to `notes`. Throws InputError that names file, line and column.
signals::ConfoundsTable readConfounds(const QString &path, QStringList &notes);

/// The volumes to leave out, from a file with a 0 or a 1 in each line, 1 for those that go. Throws
/// InputError, also when there is not one line per volume.
signals::Flags readCensorFile(const QString &path, int volumes);

} // namespace corvane
