// SPDX-License-Identifier: GPL-3.0-or-later
//
// The standard library's iterator ends at paths of 260 characters here; Qt's does not.
#include "host/files/listing.h"

#include <QDir>

namespace corvane
{

QStringList entriesIn(const QString &folder, Listed kind)
{
    const QDir::Filters kinds = kind == Listed::Files     ? QDir::Files
                                : kind == Listed::Folders ? QDir::Dirs
                                                          : QDir::AllEntries | QDir::System;
    return QDir(folder).entryList(kinds | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Unsorted);
}

} // namespace corvane
