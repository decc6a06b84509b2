// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/listing.h"

#include "host/files/file_system.h"
#include "host/files/input_error.h"

#include <filesystem>

namespace corvane
{

namespace fs = std::filesystem;

namespace
{

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

QStringList entriesIn(const QString &folder, Listed kind)
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
        if (isOfKind(*entry, kind))
            names += QString::fromStdString(entry->path().filename().u8string());
    }
    return names;
}

} // namespace corvane
