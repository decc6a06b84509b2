// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/view_settings.h"

#include <QRegularExpression>

namespace corvane
{

QString commandText(const QStringList &words)
{
    static const QRegularExpression plain(QStringLiteral("\\A[A-Za-z0-9_+=:,./\\\\-]+\\z"));
    // As the runtime takes arguments apart: backslashes count only before a quotation mark.
    static const QRegularExpression beforeQuote(QStringLiteral("(\\\\*)(\"|\\z)"));
    QStringList quoted;
    for (const QString &word : words) {
        QString escaped;
        int from = 0;
        QRegularExpressionMatchIterator marks = beforeQuote.globalMatch(word);
        while (marks.hasNext()) {
            const QRegularExpressionMatch mark = marks.next();
            escaped += word.mid(from, mark.capturedStart() - from) + mark.captured(1) +
                       mark.captured(1) +
                       (mark.captured(2).isEmpty() ? QString() : QStringLiteral("\\\""));
            from = mark.capturedEnd();
        }
        quoted +=
            plain.match(word).hasMatch() ? word : QLatin1Char('"') + escaped + QLatin1Char('"');
    }
    return quoted.join(QLatin1Char(' '));
}

} // namespace corvane
