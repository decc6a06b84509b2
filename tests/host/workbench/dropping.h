// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

/// @file
/// Drags files from a file manager over a widget and drops them there.

namespace corvane
{

inline QList<QUrl> urlsOf(const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls += QUrl::fromLocalFile(path);
    return urls;
}

/// Whether the drop was taken. Events go the way that Qt gives them: from the widget under the
/// mouse up to one that takes them.
inline bool dropOn(QWidget *widget, const QStringList &paths)
{
    QMimeData data;
    data.setUrls(urlsOf(paths));
    // File managers give the paths as a text, too.
    data.setText(data.urls().value(0).toString());
    const QPoint place = widget->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    for (QWidget *taker = widget; taker != nullptr; taker = taker->parentWidget()) {
        if (!taker->acceptDrops())
            continue;
        enter.ignore();
        QCoreApplication::sendEvent(taker, &enter);
        if (enter.isAccepted()) {
            QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(taker, &drop);
            return drop.isAccepted();
        }
    }
    return false;
}

} // namespace corvane
