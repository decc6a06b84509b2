// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

/// @file
/// What commands have written into a folder is recorded beside it, in ".corvane-outputs.json"
/// (docs/file-formats.md), so that the next run of a command does not leave the files of the last
/// one among its own.

namespace corvane
{

constexpr auto outputRecordName = ".corvane-outputs.json";

/// Records that `writer` has written these files of a folder, and now owns no others there. Removes
/// those that the record says it wrote before, as long as they are what it wrote: plain files of
/// the same length and time. Returns what the user should know, one line each:
///
/// - files of its own that stay, since somebody has changed them or they cannot be removed;
/// - files of another writer that stay beside those of which some were replaced now;
/// - a record that is damaged, by which nothing is removed, or one that cannot be written.
///
/// May be called once more for the same files.
QStringList recordOutputs(const QString &folder, const QString &writer, const QStringList &files);

} // namespace corvane
