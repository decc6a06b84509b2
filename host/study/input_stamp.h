// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <optional>

/// @file
/// By what a file is known again: its length, its time, its first bytes, and a sum of all of them.

namespace corvane
{

struct InputStamp {
    QString role; ///< "bold", "atlas", "labels", "mask", "confounds", "events"
    QString path; ///< below the dataset, else absolute
    qint64 bytes = 0;
    QDateTime time;
    QString head; ///< SHA-256 of the first 4096 bytes, which hold the header
    QString sum;  ///< CRC-64 of the whole file; empty where it was not asked for

    /// Whether nothing tells that the file is another one; the sum is not looked at.
    bool isLike(const InputStamp &other) const;
};

/// Of a file that is there. Throws InputError.
InputStamp stampOf(const QString &role, const QString &path, const QString &dataset);

/// The sum of a whole file, 16 hexadecimal digits. Throws InputError.
QString sumOf(const QString &path);

/// Where a file of that stamp stands.
QString pathOf(const InputStamp &stamp, const QString &dataset);

QJsonObject jsonOf(const InputStamp &stamp);
InputStamp stampOf(const QJsonObject &json);

} // namespace corvane
