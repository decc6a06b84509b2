// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMargins>
#include <QObject>
#include <QRect>

class QWidget;

namespace corvane
{

/// Where the inside of a window goes so that it fits a screen with its frame: as large as it wants
/// to be or as the screen has room for, and moved no farther than needed.
QRect fitted(const QRect &inside, const QMargins &frame, const QRect &screen);

/// What a window's frame takes, as far as the system has told. Nothing before it is shown.
QMargins frameOf(const QWidget &window);

/// Brings a window onto its screen once, as soon as the system tells how wide its frame is, which
/// it does some time after the window is shown.
class ScreenFit : public QObject
{
    Q_OBJECT

public:
    explicit ScreenFit(QWidget &window);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget &m_window;
    bool m_isDone = false;
};

} // namespace corvane
