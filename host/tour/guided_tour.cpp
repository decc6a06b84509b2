// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/tour/guided_tour.h"

#include "host/files/scratch_folder.h"
#include "host/session/log.h"
#include "host/tour/tour_steps.h"
#include "host/workbench/example_files.h"
#include "host/workbench/main_window.h"

#include <QApplication>
#include <QMenu>

#include <memory>

namespace corvane
{

namespace
{

constexpr int captionTime = 5000; // ms, time to read one

/// Whether a window or dialog beside that one is open.
bool otherWindowIsOpen(const QWidget *window)
{
    const QWidgetList all = QApplication::topLevelWidgets();
    return std::any_of(all.begin(), all.end(), [&](const QWidget *other) {
        const bool isWindow =
            other->windowType() == Qt::Window || other->windowType() == Qt::Dialog;
        return other != window && isWindow && other->isVisible();
    });
}

} // namespace

GuidedTour::GuidedTour(MainWindow &window) : QObject(&window), m_window(window)
{
    auto *const action = new QAction(tr("&Guided Tour"), this);
    connect(action, &QAction::triggered, this, &GuidedTour::start);
    QMenu &menu = window.helpMenu();
    QAction *const first = menu.actions().value(0);
    menu.insertAction(first, action);
    menu.insertSeparator(first);
}

void GuidedTour::start()
{
    if (m_tour)
        return;
    if (!m_window.pluginNames().contains(tourPlugin())) {
        m_window.showMessageBox(tr("The tour needs the plugin %1.").arg(tourPlugin()));
        return;
    }
    // A dataset that is being worked on is not the tour's to change.
    if (otherWindowIsOpen(&m_window)) {
        m_window.showMessageBox(
            tr("The tour opens windows of the plugin. Close those that are open "
               "first."));
        return;
    }
    const QString folder = exampleFolder(&m_window);
    if (folder.isEmpty())
        return;
    // The tour knows the way through Qt's own file dialogs only.
    const bool native = !QCoreApplication::testAttribute(Qt::AA_DontUseNativeDialogs);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const auto exports = std::make_shared<ScratchFolder>();
    m_tour = new Tour(workflowSteps(m_window, folder, exports->path()), this);
    m_tour->setSpeed(captionTime);
    connect(m_tour, &Tour::finished, this, [this, exports, native](const QString &fault) {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, !native);
        logText(fault.isEmpty() ? tr("The guided tour is done.") : fault);
        m_tour->deleteLater();
    });
    m_tour->start();
}

} // namespace corvane
