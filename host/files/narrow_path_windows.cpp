// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/narrow_path.h"

#include <QDir>
#include <windows.h>

namespace corvane
{

namespace
{

/// The name of eight letters and three that the disk may keep beside the real one.
QString shortName(const QString &native)
{
    const std::wstring name = (QStringLiteral("\\\\?\\") + native).toStdWString();
    std::wstring found(32768, L'\0');
    const DWORD length =
        GetShortPathNameW(name.c_str(), found.data(), static_cast<DWORD>(found.size()));
    return QString::fromWCharArray(found.data(), static_cast<int>(length)).mid(4);
}

bool isForTheCLibrary(const QString &native)
{
    return !native.isEmpty() && native.size() < MAX_PATH &&
           QString::fromLocal8Bit(native.toLocal8Bit()) == native;
}

} // namespace

std::string narrowPath(const QString &path)
{
    QString native = QDir::toNativeSeparators(QDir(path).absolutePath());
    if (!isForTheCLibrary(native))
        native = shortName(native);
    return isForTheCLibrary(native) ? native.toLocal8Bit().toStdString() : std::string();
}

} // namespace corvane
