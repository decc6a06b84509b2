// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/recent_files.h"

#include "plots/plain_text.h"

#include <QFileInfo>
#include <QSettings>

#include <algorithm>

namespace corvane
{

namespace
{

const QString key = QStringLiteral("recentFiles");
constexpr int mostSubjects = 10;

/// A list of settings holds texts: the files of a subject are lines of one.
QStringList filesOf(const QString &entry)
{
    return entry.split(QLatin1Char('\n'));
}

bool areAllIn(const QStringList &files, const QStringList &others)
{
    return std::all_of(files.begin(), files.end(),
                       [&](const QString &file) { return others.contains(file); });
}

bool areThere(const QStringList &files)
{
    return std::all_of(files.begin(), files.end(),
                       [](const QString &file) { return QFileInfo::exists(file); });
}

QString labelOf(const QStringList &files)
{
    QStringList names;
    for (const QString &file : files)
        names += QFileInfo(file).fileName();
    return names.join(QStringLiteral(", ")).replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

RecentFilesMenu::RecentFilesMenu(QWidget *parent) : QMenu(tr("Open &Recent"), parent)
{
    setObjectName(QStringLiteral("recentFiles"));
    connect(this, &QMenu::aboutToShow, this, &RecentFilesMenu::fill);
    fill();
}

void RecentFilesMenu::add(const QStringList &files)
{
    QStringList paths;
    for (const QString &file : files)
        paths += QFileInfo(file).absoluteFilePath();
    QSettings settings;
    QStringList entries{paths.join(QLatin1Char('\n'))};
    for (const QString &entry : settings.value(key).toStringList())
        if (!areAllIn(filesOf(entry), paths))
            entries += entry;
    settings.setValue(key, QStringList(entries.mid(0, mostSubjects)));
    fill();
}

void RecentFilesMenu::fill()
{
    clear();
    const QStringList entries = QSettings().value(key).toStringList();
    for (const QString &entry : entries) {
        const QStringList files = filesOf(entry);
        QAction *const action = addAction(labelOf(files));
        action->setToolTip(asToolTip(entry));
        action->setStatusTip(files.front());
        action->setEnabled(areThere(files));
        connect(action, &QAction::triggered, this, [this, files] { Q_EMIT chosen(files); });
    }
    setToolTipsVisible(true);
    setEnabled(!entries.isEmpty());
    if (entries.isEmpty())
        return;
    addSeparator();
    connect(addAction(tr("&Clear This List")), &QAction::triggered, this, [this] {
        QSettings().remove(key);
        fill();
    });
}

} // namespace corvane
