// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/json_file.h"

#include "host/files/input_error.h"

#include <QFile>
#include <QJsonDocument>

namespace corvane
{

QJsonObject readJson(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw InputError(path, QStringLiteral("reading"), file.errorString(),
                         QStringLiteral("a readable file"));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (!document.isObject())
        throw InputError(path, QStringLiteral("byte %1").arg(error.offset), error.errorString(),
                         QStringLiteral("a JSON object"));
    return document.object();
}

} // namespace corvane
