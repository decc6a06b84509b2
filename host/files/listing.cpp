// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/listing.h"

#include "host/files/file_system.h"
#include "host/files/input_error.h"

#include <QDir>

#include <algorithm>

namespace corvane
{

namespace fs = std::filesystem;

namespace
{

bool matches(const QString &name, const QStringList &patterns)
{
    const QLatin1Char dot('.');
    return std::any_of(patterns.begin(), patterns.end(), [&](const QString &pattern) {
        return name.startsWith(dot) == pattern.startsWith(dot) && QDir::match(pattern, name);
    });
}

bool isOfKind(const fs::directory_entry &entry, Listed kind)
{
    std::error_code leadsNowhere;
    switch (kind) {
    case Listed::Files:
        return entry.is_regular_file(leadsNowhere);
    case Listed::Folders:
        return entry.is_directory(leadsNowhere);
    case Listed::Everything:
        break;
    }
    return true;
}

void require(const QString &folder, const std::error_code &error)
{
    if (error)
        throw InputError(folder, QStringLiteral("listing"), wordsFor(error),
                         QStringLiteral("a folder that can be read"));
}

} // namespace

QStringList namesInFolder(const QString &folder, const QStringList &patterns, Listed kind)
{
    std::error_code error;
    fs::directory_iterator entry(nativePath(folder), error);
    for (const std::errc isNotThere : {std::errc::no_such_file_or_directory,
                                       std::errc::not_a_directory, std::errc::filename_too_long})
        if (error == isNotThere)
            return {};
    require(folder, error);
    QStringList names;
    for (; entry != fs::directory_iterator(); entry.increment(error), require(folder, error)) {
        const QString name = QString::fromStdString(entry->path().filename().u8string());
        if (matches(name, patterns) && isOfKind(*entry, kind))
            names += name;
    }
    names.sort();
    return names;
}

} // namespace corvane
