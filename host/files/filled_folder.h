// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/hidden_path.h"

#include <QString>

/// @file
/// What is written into a folder as a whole begins in a hidden one inside it.

namespace corvane
{

/// A hidden folder in a folder, which is made when it is missing. It goes with this object, or when
/// a signal ends the process, and so do folders that were made for it if nothing else is in them.
class FilledFolder
{
public:
    /// Removes what killed processes left in the folder. `expected` is what an error says that the
    /// folder should be. Throws InputError when nothing can be written there.
    FilledFolder(const QString &folder, const QString &expected);

    HiddenPath &hidden() { return m_hidden; }
    const QString &folder() const { return m_folder; }
    const QString &path() const { return m_hidden.path(); }
    /// In the hidden folder.
    QString path(const QString &name) const;

    /// Throws InputError: what was found instead of the expected.
    [[noreturn]] void fail(const QString &found) const;

private:
    QString m_folder;
    QString m_expected;
    HiddenPath m_hidden;
};

} // namespace corvane
