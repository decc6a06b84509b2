// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/derivatives/run_filter.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

namespace corvane
{

namespace
{

struct EntityName {
    const char *longName;
    const char *shortName;
};

constexpr EntityName entityNames[] = {{"subject", "sub"},        {"session", "ses"},
                                      {"task", "task"},          {"acquisition", "acq"},
                                      {"ceagent", "ce"},         {"reconstruction", "rec"},
                                      {"direction", "dir"},      {"run", "run"},
                                      {"echo", "echo"},          {"part", "part"},
                                      {"space", "space"},        {"resolution", "res"},
                                      {"density", "den"},        {"desc", "desc"},
                                      {"datatype", "datatype"},  {"suffix", "suffix"},
                                      {"extension", "extension"}};

QString entityNamed(const QString &key, const QString &path)
{
    QStringList known;
    for (const EntityName &name : entityNames) {
        if (key == QLatin1String(name.longName) || key == QLatin1String(name.shortName))
            return QLatin1String(name.shortName);
        known += QLatin1String(name.longName);
    }
    throw InputError(path, QStringLiteral("bold"), quoted(key),
                     QStringLiteral("one of: ") + known.join(QStringLiteral(", ")));
}

std::optional<QString> acceptedLabel(const QJsonValue &value, const QString &key,
                                     const QString &path)
{
    if (value.isNull())
        return std::nullopt;
    if (value.isDouble())
        return QString::number(value.toDouble());
    if (value.isString())
        return value.toString();
    throw InputError(path, QStringLiteral("bold, ") + printable(key),
                     QStringLiteral("something else"),
                     QStringLiteral("a label, a number, null, \"*\" or a list of them"));
}

QJsonObject boldEntry(const QString &path)
{
    QJsonParseError fault{};
    const QJsonDocument document =
        QJsonDocument::fromJson(InputFile(path).all(largestText), &fault);
    if (document.isNull())
        throw InputError(path, QStringLiteral("byte %1").arg(fault.offset), fault.errorString(),
                         QStringLiteral("a JSON object"));
    const QJsonValue bold = document.object().value(QStringLiteral("bold"));
    if (!bold.isObject())
        throw InputError(path, QStringLiteral("content"), QStringLiteral("no object \"bold\""),
                         QStringLiteral("{\"bold\": {\"task\": \"rest\"}} or the like"));
    return bold.toObject();
}

/// What a run has in place of an entity's label.
QString factOf(const BidsName &run, const QString &entity)
{
    if (entity == QLatin1String("datatype"))
        return QStringLiteral("func");
    if (entity == QLatin1String("suffix"))
        return run.suffix;
    if (entity == QLatin1String("extension"))
        return run.ending;
    return run.label(entity);
}

/// Numbers are equal whatever zeros stand in front of them.
bool areEqual(const QString &a, const QString &b)
{
    bool first = false;
    bool second = false;
    const uint numberOfA = a.toUInt(&first);
    const uint numberOfB = b.toUInt(&second);
    return a == b || (first && second && numberOfA == numberOfB);
}

} // namespace

FilterFile::FilterFile(const QString &path)
{
    const QJsonObject bold = boldEntry(path);
    for (auto entry = bold.begin(); entry != bold.end(); ++entry) {
        Condition condition{entityNamed(entry.key(), path), {}};
        const QJsonArray values =
            entry.value().isArray() ? entry.value().toArray() : QJsonArray{entry.value()};
        for (const QJsonValue value : values)
            condition.any.push_back(acceptedLabel(value, entry.key(), path));
        m_conditions.push_back(condition);
    }
}

bool FilterFile::accepts(const BidsName &run) const
{
    return std::all_of(m_conditions.begin(), m_conditions.end(), [&](const Condition &condition) {
        const QString fact = factOf(run, condition.entity);
        return std::any_of(condition.any.begin(), condition.any.end(),
                           [&](const std::optional<QString> &label) {
                               if (!label)
                                   return fact.isEmpty();
                               if (*label == QLatin1String("*"))
                                   return !fact.isEmpty();
                               return areEqual(fact, *label);
                           });
    });
}

} // namespace corvane
