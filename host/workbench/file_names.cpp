// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/file_names.h"

#include "host/files/file_kind.h"

#include <QFileInfo>

namespace corvane
{

QString namesTogether(const QStringList &files)
{
    QStringList names;
    QString last;
    for (const QString &file : files) {
        const QString stem = nameWithoutEnding(file);
        const QString name = QFileInfo(file).fileName();
        names += !names.isEmpty() && stem == last && name != stem ? name.mid(stem.size()) : name;
        last = stem;
    }
    return names.join(QStringLiteral(", "));
}

} // namespace corvane
