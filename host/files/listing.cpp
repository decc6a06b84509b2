// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/listing.h"

#include <QDir>

#include <algorithm>

namespace corvane
{

namespace
{

bool matches(const QString &name, const QStringList &patterns)
{
    const QLatin1Char dot('.');
    return std::any_of(patterns.begin(), patterns.end(), [&](const QString &pattern) {
        return name.startsWith(dot) == pattern.startsWith(dot) && QDir::match(pattern, name);
    });
}

} // namespace

QStringList namesInFolder(const QString &folder, const QStringList &patterns, Listed kind)
{
    QStringList names;
    for (const QString &name : entriesIn(folder, kind))
        if (matches(name, patterns))
            names += name;
    names.sort();
    return names;
}

} // namespace corvane
