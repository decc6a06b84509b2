// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/example_files.h"

#include "host/files/file_kind.h"
#include "host/import/example_dataset.h"
#include "host/session/log.h"
#include "host/workbench/background_work.h"
#include "host/workbench/user_folder.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace corvane
{

QString exampleFolder(QWidget *parent)
{
    QString folder = exampleDatasetFolder();
    const QStringList files = exampleFiles(folder);
    if (std::all_of(files.begin(), files.end(),
                    [](const QString &file) { return QFileInfo::exists(file); }))
        return folder;
    const WorkOutcome outcome =
        runBehindProgress(parent, QObject::tr("Example Dataset"),
                          [&](const ProgressWatch &watch) { writeExample(folder, watch); });
    if (!outcome.fault.isEmpty() && !outcome.stopped)
        showMessage(outcome.fault);
    return outcome.fault.isEmpty() ? folder : QString();
}

QStringList exampleFiles(const QString &folder)
{
    QStringList files;
    for (const FileKind kind : {FileKind::Vmr, FileKind::Vtc, FileKind::Voi})
        files += QDir(folder).filePath(fileName(QStringLiteral("example"), kind));
    return files;
}

} // namespace corvane
