// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/file_system.h"

namespace corvane
{

namespace fs = std::filesystem;

fs::path nativePath(const QString &path)
{
    return fs::u8path(path.toStdString());
}

bool isForFileNames(QChar c)
{
    return c != QLatin1Char('/') && c.category() != QChar::Other_Control;
}

std::error_code renameOver(const QString &from, const QString &target)
{
    std::error_code error;
    fs::rename(nativePath(from), nativePath(target), error);
    return error;
}

void removeAll(const QString &path)
{
    std::error_code ignored;
    fs::remove_all(nativePath(path), ignored);
}

void hideFolder(const QString &) {}

QString wordsFor(const std::error_code &error)
{
    return QString::fromStdString(error.message());
}

} // namespace corvane
