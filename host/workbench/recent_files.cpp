// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/recent_files.h"

#include "plots/plain_text.h"

#include <QFileInfo>
#include <QSettings>

namespace corvane
{

namespace
{

const QString key = QStringLiteral("recentFiles");
constexpr int mostFiles = 10;

} // namespace

RecentFilesMenu::RecentFilesMenu(QWidget *parent) : QMenu(tr("Open &Recent"), parent)
{
    setObjectName(QStringLiteral("recentFiles"));
    connect(this, &QMenu::aboutToShow, this, &RecentFilesMenu::fill);
    fill();
}

void RecentFilesMenu::add(const QString &path)
{
    QSettings settings;
    QStringList paths = settings.value(key).toStringList();
    const QString absolute = QFileInfo(path).absoluteFilePath();
    paths.removeAll(absolute);
    paths.prepend(absolute);
    settings.setValue(key, QStringList(paths.mid(0, mostFiles)));
    fill();
}

void RecentFilesMenu::fill()
{
    clear();
    const QStringList paths = QSettings().value(key).toStringList();
    for (const QString &path : paths) {
        QString label = QFileInfo(path).fileName();
        QAction *const action = addAction(label.replace(QLatin1Char('&'), QLatin1String("&&")));
        action->setToolTip(asToolTip(path));
        action->setStatusTip(path);
        action->setEnabled(QFileInfo::exists(path));
        connect(action, &QAction::triggered, this, [this, path] { Q_EMIT chosen(path); });
    }
    setToolTipsVisible(true);
    setEnabled(!paths.isEmpty());
    if (paths.isEmpty())
        return;
    addSeparator();
    connect(addAction(tr("&Clear This List")), &QAction::triggered, this, [this] {
        QSettings().remove(key);
        fill();
    });
}

} // namespace corvane
