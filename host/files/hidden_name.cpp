// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/hidden_name.h"

#include <QRegularExpression>
#include <QStringList>

namespace corvane
{

QString HiddenName::text() const
{
    return QStringLiteral("%1%2-%3-%4-%5-%6")
        .arg(QLatin1String(hiddenPrefix), QString::fromStdString(owner.host),
             QString::fromStdString(owner.boot), QString::number(owner.number),
             QString::number(owner.start), QString::number(number));
}

std::optional<HiddenName> HiddenName::of(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("\\A\\.corvane-([^-/]+)-([^-/]+)-([0-9]+)-([0-9]+)-([0-9]+)\\z"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return HiddenName{{match.captured(1).toStdString(), match.captured(2).toStdString(),
                       match.captured(3).toLongLong(), match.captured(4).toULongLong()},
                      match.captured(5).toULongLong()};
}

bool HiddenName::isLeftBehind(std::chrono::seconds sinceTouched) const
{
    constexpr std::chrono::minutes longestSilence(10);
    const ProcessState state = stateOf(owner);
    return state == ProcessState::IsGone ||
           (state == ProcessState::IsElsewhere && sinceTouched > longestSilence);
}

QString shownPath(const QString &path)
{
    if (!path.contains(QLatin1String(hiddenPrefix)))
        return path;
    QStringList shown;
    for (const QString &part : path.split(QLatin1Char('/')))
        if (!HiddenName::of(part))
            shown += part;
    return shown.join(QLatin1Char('/'));
}

} // namespace corvane
