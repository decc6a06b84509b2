// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// A number and what it counts: "1 pair of nodes", "2 pairs of nodes".
inline QString counted(qint64 number, const char *one, const char *many)
{
    return QString::number(number) + QLatin1Char(' ') + QLatin1String(number == 1 ? one : many);
}

/// Likewise for a noun that makes its plural with an s.
inline QString counted(qint64 number, const char *noun)
{
    return counted(number, noun, (QByteArray(noun) + 's').constData());
}
