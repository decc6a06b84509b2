// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/output_names.h"

#include "host/files/file_kind.h"

#include <QStringList>
#include <algorithm>

namespace corvane
{

namespace
{

/// The parts "key-label" of a name, in its order.
QStringList entitiesOf(const QString &path)
{
    QStringList entities;
    for (const QString &part : nameWithoutEnding(path).split(QLatin1Char('_')))
        if (part.indexOf(QLatin1Char('-')) > 0)
            entities += part;
    return entities;
}

bool isAscii(QChar c)
{
    return c.unicode() < 128;
}

} // namespace

QString bidsLabel(const QString &text)
{
    QString label;
    for (const QChar c : text)
        if (isAscii(c) && c.isLetterOrNumber())
            label += c;
    return label;
}

QString entityOf(const QString &path, const QString &entity)
{
    const QString start = entity + QLatin1Char('-');
    for (const QString &part : entitiesOf(path))
        if (part.startsWith(start))
            return part.mid(start.size());
    return {};
}

QString runPrefix(const QString &path)
{
    QStringList kept = entitiesOf(path);
    kept.erase(
        std::remove_if(kept.begin(), kept.end(),
                       [](const QString &part) { return part.startsWith(QLatin1String("desc-")); }),
        kept.end());
    return kept.isEmpty() ? nameWithoutEnding(path) : kept.join(QLatin1Char('_'));
}

QString atlasName(const QString &path)
{
    for (const char *entity : {"atlas", "seg", "desc"}) {
        const QString label = bidsLabel(entityOf(path, QLatin1String(entity)));
        if (!label.isEmpty())
            return label;
    }
    const QString label = bidsLabel(nameWithoutEnding(path));
    return label.isEmpty() ? QStringLiteral("atlas") : label;
}

} // namespace corvane
