// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/filled_folder.h"

namespace corvane::example_study
{

/// A folder with folders in it that is filled as a whole or not at all: what is to be in it is made
/// in a hidden folder inside and moved up by commit(). Destroyed without a commit, or ended by a
/// signal, it leaves nothing, and folders that it had to make are gone again.
class WholeFolder
{
public:
    /// Throws InputError when nothing can be written there, and for a folder with anything in it
    /// but what a killed process has left at a hidden path, which is removed.
    explicit WholeFolder(const QString &path);

    /// Makes a folder in it, with those above. Throws InputError.
    void make(const QString &folder) const;
    /// Where to write a file now.
    QString path(const QString &name) const { return m_folder.path(name); }

    /// Throws InputError.
    void commit();

private:
    FilledFolder m_folder;
};

} // namespace corvane::example_study
