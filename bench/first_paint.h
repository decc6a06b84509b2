// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QWidget>

/// Waits until a widget has been painted and nothing is left to do: a layout that is still due
/// would change the picture.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(QWidget *widget) { widget->installEventFilter(this); }

    void wait()
    {
        while (!painted)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        while (painted) {
            painted = false;
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
            // What has gone from the picture is still to be deleted, as an event loop does.
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        painted = painted || event->type() == QEvent::Paint;
        return false;
    }

    bool painted = false;
};
