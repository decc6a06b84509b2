// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/input_stamp.h"

#include "host/files/file_sum.h"
#include "host/files/input_error.h"
#include "host/files/input_file.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

namespace corvane
{

namespace
{

QString placeIn(const QString &dataset, const QString &path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    const QString relative = QDir(dataset).relativeFilePath(absolute);
    return relative.startsWith(QLatin1String("..")) || QDir::isAbsolutePath(relative) ? absolute
                                                                                      : relative;
}

} // namespace

bool InputStamp::isLike(const InputStamp &other) const
{
    return role == other.role && path == other.path && bytes == other.bytes && time == other.time &&
           head == other.head;
}

InputStamp stampOf(const QString &role, const QString &path, const QString &dataset)
{
    constexpr qint64 headLength = 4096;
    const InputFile file(path);
    InputStamp stamp;
    stamp.role = role;
    stamp.path = placeIn(dataset, path);
    stamp.bytes = file.size();
    stamp.time = QFileInfo(path).lastModified().toUTC();
    stamp.head = QString::fromLatin1(
        QCryptographicHash::hash(file.head(headLength), QCryptographicHash::Sha256).toHex());
    return stamp;
}

QString sumOf(const QString &path)
{
    constexpr int digits = 16;
    return QStringLiteral("%1").arg(fileSum(path), digits, 16, QLatin1Char('0'));
}

QString pathOf(const InputStamp &stamp, const QString &dataset)
{
    return QDir::isAbsolutePath(stamp.path) ? stamp.path : dataset + QLatin1Char('/') + stamp.path;
}

QJsonObject jsonOf(const InputStamp &stamp)
{
    return {{QStringLiteral("role"), stamp.role},
            {QStringLiteral("path"), stamp.path},
            {QStringLiteral("bytes"), double(stamp.bytes)},
            {QStringLiteral("time"), stamp.time.toString(Qt::ISODateWithMs)},
            {QStringLiteral("head"), stamp.head},
            {QStringLiteral("sum"), stamp.sum}};
}

InputStamp stampOf(const QJsonObject &json)
{
    const auto text = [&](const char *key) { return json[QLatin1String(key)].toString(); };
    return {text("role"),
            text("path"),
            qint64(json[QStringLiteral("bytes")].toDouble(-1)),
            QDateTime::fromString(text("time"), Qt::ISODateWithMs),
            text("head"),
            text("sum")};
}

} // namespace corvane
