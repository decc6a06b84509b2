// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/example_study/whole_folder.h"

#include "host/files/file_system.h"

#include <QDir>
#include <QFileInfo>

namespace corvane::example_study
{

namespace
{

QStringList entriesOf(const QString &path)
{
    return QDir(path).entryList(
        QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

WholeFolder::WholeFolder(const QString &path)
    : m_folder(path, QStringLiteral("an empty folder, or one that is not there yet"))
{
    QStringList others = entriesOf(path);
    others.removeAll(QFileInfo(m_folder.path()).fileName());
    if (!others.isEmpty())
        m_folder.fail(QStringLiteral("a folder that holds \"%1\"").arg(others.front()));
}

void WholeFolder::make(const QString &folder) const
{
    std::error_code error;
    std::filesystem::create_directories(nativePath(path(folder)), error);
    if (error)
        m_folder.fail(wordsFor(error));
}

void WholeFolder::commit()
{
    const auto lock = holdSignals();
    for (const QString &name : entriesOf(m_folder.path()))
        if (const std::error_code error =
                renameOver(path(name), m_folder.folder() + QLatin1Char('/') + name))
            m_folder.fail(wordsFor(error));
}

} // namespace corvane::example_study
