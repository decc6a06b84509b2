// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/message_boxes.h"

#include "dataset/scoped_dialog.h"

#include <QApplication>
#include <QMessageBox>
#include <algorithm>

namespace corvane
{

namespace
{

/// A window of this program that keeps above all others, null without one.
QWidget *windowOnTop()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto found = std::find_if(windows.begin(), windows.end(), [](const QWidget *window) {
        return window->isVisible() && window->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
    });
    return found != windows.end() ? *found : nullptr;
}

/// The button that was pressed.
int runBox(QWidget *window, QMessageBox::Icon icon, const QString &text,
           QMessageBox::StandardButtons buttons, QMessageBox::StandardButton usual)
{
    QWidget *const onTop = windowOnTop();
    QWidget *parent = QApplication::activeWindow();
    if (parent == nullptr)
        parent = onTop != nullptr ? onTop : window;
    // The window of a plugin may end while the box stands over it, and take it along.
    const ScopedDialog box(new QMessageBox(icon, QStringLiteral("Corvane"), text, buttons, parent));
    box->setDefaultButton(usual);
    box->setTextFormat(Qt::PlainText);
    // Behind such a window nobody would see that the program waits.
    if (onTop != nullptr)
        box->setWindowFlag(Qt::WindowStaysOnTopHint);
    return box->exec();
}

} // namespace

void showInBox(QWidget *window, const QString &text)
{
    runBox(window, QMessageBox::Information, text, QMessageBox::Ok, QMessageBox::Ok);
}

bool askInBox(QWidget *window, const QString &text)
{
    return runBox(window, QMessageBox::Warning, text, QMessageBox::Yes | QMessageBox::No,
                  QMessageBox::No) == QMessageBox::Yes;
}

} // namespace corvane
