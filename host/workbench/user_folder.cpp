// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/user_folder.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace corvane
{

namespace
{

const QString key = QStringLiteral("folder");

bool isInExample(const QString &folder)
{
    const QString example = exampleDatasetFolder();
    return folder == example || folder.startsWith(example + QLatin1Char('/'));
}

} // namespace

QString exampleDatasetFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) +
           QStringLiteral("/example");
}

QString userFolder()
{
    const QString folder = QSettings().value(key).toString();
    return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

void rememberUserFolder(const QString &path)
{
    const QFileInfo file(path);
    const QString folder =
        QDir::cleanPath(file.isDir() ? file.absoluteFilePath() : file.absolutePath());
    if (!isInExample(folder))
        QSettings().setValue(key, folder);
}

} // namespace corvane
