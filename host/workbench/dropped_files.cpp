// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/dropped_files.h"

#include <QMimeData>
#include <QUrl>

namespace corvane
{

QStringList droppedFiles(const QMimeData *data)
{
    QStringList paths;
    for (const QUrl &url : data->urls())
        if (url.isLocalFile())
            paths += url.toLocalFile();
    return paths;
}

} // namespace corvane
