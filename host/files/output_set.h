// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/hidden_path.h"

#include <QString>
#include <QStringList>

/// @file
/// How the files of a set get into their folder, though each of them is renamed for itself.
///
/// The hidden folder that holds them, complete and with a list of them, is renamed to
/// ".corvane-unfinished": that one step decides. Then its files are moved up, and it goes. As long
/// as it stands there, the files that it lists belong to two sets, and nobody reads them; and since
/// a folder has but one of that name, sets come one after the other. A process that is ended on its
/// way leaves everything in it that the next one needs to finish the set.

namespace corvane
{

/// Moves all files of a hidden folder up into the folder that it stands in, over older ones, and
/// removes those that the same writer left there before (output_record.h). Returns what is to be
/// said. Waits while another process does the same there. Throws InputError when a file cannot be
/// replaced: before the first one is, where that can be known.
QStringList moveUp(HiddenPath &hidden, const QString &folder, const QString &writer);

/// Finishes a set that a process which is gone has left on its way. `own` is a hidden path in that
/// folder. Returns what is to be said. Throws InputError as moveUp does.
QStringList finishLeftSets(const QString &folder, const HiddenPath &own);

/// Throws InputError when a file belongs to a set that is not finished.
void refuseUnfinished(const QString &path);

} // namespace corvane
