// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/extract/json_schema.h"

#include <QJsonArray>
#include <cmath>

namespace corvane
{
namespace
{

bool isOfType(const QJsonValue &value, const QString &type)
{
    if (type == QLatin1String("integer"))
        return value.isDouble() && value.toDouble() == std::floor(value.toDouble());
    return (type == QLatin1String("number") && value.isDouble()) ||
           (type == QLatin1String("string") && value.isString()) ||
           (type == QLatin1String("boolean") && value.isBool()) ||
           (type == QLatin1String("null") && value.isNull()) ||
           (type == QLatin1String("array") && value.isArray()) ||
           (type == QLatin1String("object") && value.isObject());
}

bool isOfTypes(const QJsonValue &value, const QJsonValue &types)
{
    if (types.isString())
        return isOfType(value, types.toString());
    for (const QJsonValue &type : types.toArray())
        if (isOfType(value, type.toString()))
            return true;
    return false;
}

QStringList objectFaults(const QJsonObject &object, const QJsonObject &schema, const QString &place)
{
    QStringList faults;
    for (const QJsonValue &name : schema[QLatin1String("required")].toArray())
        if (!object.contains(name.toString()))
            faults += place + QStringLiteral(": no ") + name.toString();
    const QJsonObject properties = schema[QLatin1String("properties")].toObject();
    for (const QString &name : object.keys()) {
        if (properties.contains(name))
            faults += schemaFaults(object[name], properties[name].toObject(),
                                   place + QLatin1Char('/') + name);
        else if (!schema[QLatin1String("additionalProperties")].toBool(true))
            faults += place + QStringLiteral(": ") + name + QStringLiteral(" is not known");
    }
    return faults;
}

} // namespace

QStringList schemaFaults(const QJsonValue &value, const QJsonObject &schema, const QString &place)
{
    static const QStringList words{QStringLiteral("$schema"),
                                   QStringLiteral("title"),
                                   QStringLiteral("type"),
                                   QStringLiteral("properties"),
                                   QStringLiteral("required"),
                                   QStringLiteral("items"),
                                   QStringLiteral("minimum"),
                                   QStringLiteral("enum"),
                                   QStringLiteral("additionalProperties")};
    for (const QString &word : schema.keys())
        if (!words.contains(word))
            return {place + QStringLiteral(": a schema with ") + word};
    if (!isOfTypes(value, schema[QLatin1String("type")]))
        return {place + QStringLiteral(": another type")};
    if (value.isDouble() && schema.contains(QLatin1String("minimum")) &&
        value.toDouble() < schema[QLatin1String("minimum")].toDouble())
        return {place + QStringLiteral(": too small")};
    if (schema.contains(QLatin1String("enum")) &&
        !schema[QLatin1String("enum")].toArray().contains(value))
        return {place + QStringLiteral(": another value")};
    if (value.isObject())
        return objectFaults(value.toObject(), schema, place);
    QStringList faults;
    int number = 0;
    for (const QJsonValue &item : value.toArray())
        faults += schemaFaults(item, schema[QLatin1String("items")].toObject(),
                               QStringLiteral("%1/%2").arg(place).arg(number++));
    return faults;
}

} // namespace corvane
