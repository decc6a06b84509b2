// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/derivatives/bids_names.h"

#include "host/files/file_kind.h"

#include <QFileInfo>
#include <algorithm>

namespace corvane
{

namespace
{

/// The parts "key-label" of a name without its ending, in its order.
QStringList entitiesIn(const QString &name)
{
    QStringList entities;
    for (const QString &part : name.split(QLatin1Char('_')))
        if (part.indexOf(QLatin1Char('-')) > 0)
            entities += part;
    return entities;
}

QStringList entitiesOf(const QString &path)
{
    return entitiesIn(nameWithoutEnding(path));
}

QString labelIn(const QStringList &entities, const QString &entity)
{
    const QString start = entity + QLatin1Char('-');
    for (const QString &part : entities)
        if (part.startsWith(start))
            return part.mid(start.size());
    return {};
}

bool isAscii(QChar c)
{
    return c.unicode() < 128;
}

} // namespace

QString BidsName::label(const QString &entity) const
{
    return labelIn(entities, entity);
}

BidsName bidsName(const QString &path)
{
    BidsName name;
    name.file = QFileInfo(path).fileName();
    const int dot = name.file.indexOf(QLatin1Char('.'));
    const QString stem = dot < 0 ? name.file : name.file.left(dot);
    name.ending = dot < 0 ? QString() : name.file.mid(dot);
    name.entities = entitiesIn(stem);
    const QString last = stem.section(QLatin1Char('_'), -1);
    if (!name.entities.endsWith(last))
        name.suffix = last;
    return name;
}

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
    return labelIn(entitiesOf(path), entity);
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
        QString label = bidsLabel(entityOf(path, QLatin1String(entity)));
        if (!label.isEmpty())
            return label;
    }
    const QString label = bidsLabel(nameWithoutEnding(path));
    return label.isEmpty() ? QStringLiteral("atlas") : label;
}

} // namespace corvane
