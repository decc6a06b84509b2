// SPDX-License-Identifier: GPL-3.0-or-later
#include "plots/bring_to_front.h"

#include <QWidget>

void bringToFront(QWidget *window)
{
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->activateWindow();
}
