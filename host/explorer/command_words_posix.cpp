// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/view_settings.h"

#include <QRegularExpression>

namespace corvane
{

QString commandText(const QStringList &words)
{
    static const QRegularExpression plain(QStringLiteral("\\A[A-Za-z0-9_@%+=:,./-]+\\z"));
    QStringList quoted;
    for (const QString &word : words)
        quoted += plain.match(word).hasMatch()
                      ? word
                      : QLatin1Char('\'') +
                            QString(word).replace(QLatin1Char('\''), QLatin1String("'\\''")) +
                            QLatin1Char('\'');
    return quoted.join(QLatin1Char(' '));
}

} // namespace corvane
