// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/example_study/whole_folder.h"

#include "host/files/file_system.h"
#include "host/files/input_error.h"

#include <QDir>
#include <QFileInfo>

namespace corvane::example_study
{

namespace
{

namespace fs = std::filesystem;

[[noreturn]] void failOnFolder(const QString &path, const QString &found)
{
    throw InputError(path, QStringLiteral("output folder"), found,
                     QStringLiteral("an empty folder, or one that is not there yet"));
}

QStringList madeFor(const QString &path)
{
    if (path.isEmpty())
        failOnFolder(QStringLiteral("(no folder)"), QStringLiteral("an empty path"));
    if (QFileInfo::exists(path) && !QFileInfo(path).isDir())
        failOnFolder(path, QStringLiteral("a file"));
    try {
        return makeFolders(path);
    } catch (const std::system_error &error) {
        failOnFolder(path, wordsFor(error.code()));
    }
}

QStringList entriesOf(const QString &path)
{
    return QDir(path).entryList(
        QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

WholeFolder::WholeFolder(const QString &path) : m_path(path), m_hidden(path, madeFor(path))
{
    make(QString());
    hideFolder(m_hidden.path());
    removeLeftBehind(path, m_hidden);
    QStringList others = entriesOf(path);
    others.removeAll(QFileInfo(m_hidden.path()).fileName());
    if (!others.isEmpty())
        failOnFolder(path, QStringLiteral("a folder that holds \"%1\"").arg(others.front()));
}

void WholeFolder::make(const QString &folder) const
{
    std::error_code error;
    fs::create_directories(nativePath(this->path(folder)), error);
    if (error)
        failOnFolder(m_path, wordsFor(error));
}

QString WholeFolder::path(const QString &name) const
{
    return m_hidden.path() + QLatin1Char('/') + name;
}

void WholeFolder::commit()
{
    const auto lock = holdSignals();
    for (const QString &name : entriesOf(m_hidden.path()))
        if (const std::error_code error = renameOver(path(name), m_path + QLatin1Char('/') + name))
            failOnFolder(m_path, wordsFor(error));
}

} // namespace corvane::example_study
