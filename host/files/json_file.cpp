// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/json_file.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"

#include <QJsonDocument>

namespace corvane
{

QJsonObject readJson(const QString &path)
{
    QJsonParseError error;
    const QJsonDocument document =
        QJsonDocument::fromJson(InputFile(path).all(largestTable), &error);
    if (!document.isObject())
        throw InputError(path, QStringLiteral("byte %1").arg(error.offset), error.errorString(),
                         QStringLiteral("a JSON object"));
    return document.object();
}

} // namespace corvane
