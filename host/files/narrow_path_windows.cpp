// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/narrow_path.h"

#include <QDir>
#include <windows.h>

namespace corvane
{

namespace
{

/// The name of eight letters and three that the disk may keep beside the real one.
std::wstring shortName(const std::wstring &path)
{
    const std::wstring prefix = L"\\\\?\\";
    std::wstring found(32768, L'\0');
    const DWORD length =
        GetShortPathNameW((prefix + path).c_str(), found.data(), static_cast<DWORD>(found.size()));
    return length > prefix.size() ? found.substr(prefix.size(), length - prefix.size())
                                  : std::wstring();
}

/// In the code page of the C library. Letters that it lacks become others.
std::string narrow(const std::wstring &text)
{
    std::string bytes(4 * text.size(), '\0');
    bytes.resize(static_cast<std::size_t>(
        WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

std::wstring wide(const std::string &bytes)
{
    std::wstring text(bytes.size(), L'\0');
    text.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()), text.data(),
                            static_cast<int>(text.size()))));
    return text;
}

bool isForTheCLibrary(const std::wstring &path)
{
    return !path.empty() && path.size() < MAX_PATH && wide(narrow(path)) == path;
}

} // namespace

std::string narrowPath(const QString &path)
{
    const QString full = QDir(path).absolutePath();
    std::wstring native = QDir::toNativeSeparators(full).toStdWString();
    if (!isForTheCLibrary(native))
        native = shortName(native);
    return isForTheCLibrary(native) ? narrow(native) : std::string();
}

} // namespace corvane
