// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/screen_fit.h"

#include <QEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace corvane
{

QRect fitted(const QRect &inside, const QMargins &frame, const QRect &screen)
{
    const QRect room = screen.marginsRemoved(frame);
    QRect fit(inside.topLeft(), inside.size().boundedTo(room.size()));
    fit.moveRight(std::min(fit.right(), room.right()));
    fit.moveBottom(std::min(fit.bottom(), room.bottom()));
    fit.moveLeft(std::max(fit.left(), room.left()));
    fit.moveTop(std::max(fit.top(), room.top()));
    return fit;
}

QMargins frameOf(const QWidget &window)
{
    const QWindow *const handle = window.windowHandle();
    return handle != nullptr ? handle->frameMargins() : QMargins();
}

ScreenFit::ScreenFit(QWidget &window) : QObject(&window), m_window(window)
{
    window.installEventFilter(this);
}

bool ScreenFit::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    const bool mayTell = type == QEvent::Show || type == QEvent::Move || type == QEvent::Resize ||
                         type == QEvent::WindowActivate;
    if (mayTell && !m_isDone && m_window.isVisible()) {
        const QMargins frame = frameOf(m_window);
        const bool isFree =
            !(m_window.windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen));
        m_isDone = !frame.isNull();
        if (m_isDone && isFree)
            m_window.setGeometry(
                fitted(m_window.geometry(), frame, m_window.screen()->availableGeometry()));
    }
    return QObject::eventFilter(watched, event);
}

} // namespace corvane
