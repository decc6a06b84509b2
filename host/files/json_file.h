// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>

namespace corvane
{

/// The object of a JSON file. Throws InputError when it cannot be read or holds none.
QJsonObject readJson(const QString &path);

/// A whole number up to 2^53, above which a JSON number has gaps; else `otherwise`.
qint64 wholeNumberOf(const QJsonValue &value, qint64 otherwise);

} // namespace corvane
