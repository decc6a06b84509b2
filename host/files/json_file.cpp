// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/json_file.h"

#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"

#include <QJsonDocument>
#include <cmath>

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

qint64 wholeNumberOf(const QJsonValue &value, qint64 otherwise)
{
    constexpr double most = 9007199254740992.0; // 2^53
    const double number = value.toDouble(0.5);
    return std::abs(number) <= most && number == std::floor(number) ? static_cast<qint64>(number)
                                                                    : otherwise;
}

} // namespace corvane
