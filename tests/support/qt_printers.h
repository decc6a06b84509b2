// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <ostream>

/// @file
/// Readable values of Qt in the messages of failed tests.

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.left(300).toStdString() << '"';
}

inline void PrintTo(const QStringList &texts, std::ostream *out)
{
    *out << "{\"" << texts.join(QStringLiteral("\", \"")).left(2000).toStdString() << "\"}";
}

inline void PrintTo(const QVector<int> &values, std::ostream *out)
{
    *out << '{';
    for (const int value : values)
        *out << ' ' << value;
    *out << " }";
}

inline void PrintTo(const QSize &size, std::ostream *out)
{
    *out << size.width() << " x " << size.height();
}

inline void PrintTo(const QVariant &value, std::ostream *out)
{
    *out << (value.isValid() ? value.toString().left(300).toStdString() : "invalid");
}
