// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QStringList>

namespace corvane
{

/// Where a value differs from a JSON schema, each as "/Place: what". Of the words of a schema those
/// that ours need: type, properties, required, additionalProperties (false), items, minimum and
/// enum; any other but $schema and title is a fault of its own.
QStringList schemaFaults(const QJsonValue &value, const QJsonObject &schema,
                         const QString &place = {});

} // namespace corvane
