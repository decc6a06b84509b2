// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/filled_folder.h"

#include <QStringList>

namespace corvane
{

/// A set of files that appear in a folder together or not at all: they are written into a hidden
/// folder inside it and moved up by commit(). Destroyed without a commit, or ended by a signal, it
/// leaves nothing, and folders that it had to make are gone again. What a killed process has left
/// there is removed, or finished when it was on its way up (output_set.h).
class OutputFolder
{
public:
    /// Makes the folder when it is missing. `writer` is the command, with the name of its set where
    /// a folder may hold several ("import sub-01"): a set replaces the one of the same writer.
    /// Throws InputError when nothing can be written there.
    OutputFolder(const QString &path, const QString &writer);

    /// Where to write files now, the file of that name, and where it will be after the commit.
    QString path() const { return m_folder.path(); }
    QString path(const QString &name) const { return m_folder.path(name); }
    QString finalPath(const QString &name) const;

    /// Moves every file to its place, over older ones of the same name, and removes those that the
    /// same writer put there before and not now. Returns lines for the user: what recordOutputs
    /// says, and which set of a command that was killed is complete now. Throws InputError: before
    /// the first file is moved, where that can be known; else the files of the set are refused by
    /// readers until a command that writes to this folder has finished it.
    [[nodiscard]] QStringList commit();

private:
    FilledFolder m_folder;
    QString m_writer;
    QStringList m_said; ///< of sets that others left
};

} // namespace corvane
