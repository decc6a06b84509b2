// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/limits.h"

#include "host/files/input_error.h"

namespace corvane
{

void requireAtMost(qint64 found, qint64 most, const QString &unit, const QString &path,
                   const QString &place)
{
    if (found > most)
        throw InputError(path, place, QStringLiteral("%1 %2").arg(QString::number(found), unit),
                         QStringLiteral("at most %1").arg(most));
}

QString WholeRange::text() const
{
    return QStringLiteral("a whole number from %1 to %2").arg(lowest).arg(highest);
}

} // namespace corvane
