// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>

namespace corvane
{

/// The object of a JSON file. Throws InputError when it cannot be read or holds none.
QJsonObject readJson(const QString &path);

} // namespace corvane
