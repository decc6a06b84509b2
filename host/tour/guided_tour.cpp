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

/// Windows and dialogs that are open beside that one.
QWidgetList otherWindows(const QWidget *window)
{
    QWidgetList others;
    for (QWidget *other : QApplication::topLevelWidgets()) {
        const bool isWindow =
            other->windowType() == Qt::Window || other->windowType() == Qt::Dialog;
        if (other != window && isWindow && other->isVisible())
            others += other;
    }
    return others;
}

} // namespace

GuidedTour::GuidedTour(MainWindow &window, QString program)
    : QObject(&window), m_window(window),
      m_program(program.isEmpty() ? QCoreApplication::applicationFilePath() : std::move(program))
{
    auto *const action = new QAction(tr("&Guided Tour"), this);
    connect(action, &QAction::triggered, this, &GuidedTour::start);
    QMenu &menu = window.helpMenu();
    QAction *const first = menu.actions().value(0);
    menu.insertAction(first, action);
    menu.insertSeparator(first);
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &GuidedTour::bringBack);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        bringBack();
        m_window.showMessageBox(tr("The tour cannot be played: %1").arg(m_process.errorString()));
    });
}

GuidedTour::~GuidedTour()
{
    m_process.disconnect(this);
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(5000)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void GuidedTour::start()
{
    if (m_tour || m_process.state() != QProcess::NotRunning)
        return;
    if (!m_window.pluginNames().contains(tourPlugin())) {
        m_window.showMessageBox(tr("The tour needs the plugin %1.").arg(tourPlugin()));
        return;
    }
    // What is open is being worked on, and not the tour's to change.
    if (m_window.isEmpty() && otherWindows(&m_window).isEmpty())
        play();
    else
        playElsewhere();
}

void GuidedTour::play()
{
    const QString folder = exampleFolder(&m_window);
    if (folder.isEmpty())
        return;
    // The tour knows the way through Qt's own file dialogs only.
    const bool native = !QCoreApplication::testAttribute(Qt::AA_DontUseNativeDialogs);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const auto exports = std::make_shared<ScratchFolder>();
    const QByteArray place = m_window.saveGeometry();
    m_tour = new Tour(workflowSteps(m_window, folder, exports->path()), this);
    m_tour->playForPeople(
        tr("The example stays open, to try things on. File > Import makes files of your own scans, "
           "atlas and events; File > Open Study shows whole studies. F1 opens the user's guide at "
           "the page of the window in front."));
    connect(m_tour, &Tour::finished, this, [this, exports, native, place](const QString &fault) {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, !native);
        logText(fault.isEmpty() ? tr("The guided tour is done.") : fault);
        if (QWidget *const menu = QApplication::activePopupWidget())
            menu->close();
        m_window.restoreGeometry(place);
        for (QWidget *window : otherWindows(nullptr))
            window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
        m_tour->deleteLater();
        Q_EMIT ended();
    });
    m_tour->start();
}

void GuidedTour::playElsewhere()
{
    QWidgetList windows = otherWindows(&m_window);
    windows.append(&m_window);
    for (QWidget *window : qAsConst(windows)) {
        if (window->isMinimized())
            continue;
        m_aside += window;
        window->setWindowState(window->windowState() | Qt::WindowMinimized);
    }
    logText(tr("What is open is put aside until the tour ends."));
    m_process.start(m_program, {QStringLiteral("--plugins"), m_window.pluginFolder(),
                                QStringLiteral("--tour")});
}

void GuidedTour::bringBack()
{
    for (const QPointer<QWidget> &window : qAsConst(m_aside))
        if (window)
            window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    m_aside.clear();
    m_window.activateWindow();
    Q_EMIT ended();
}

} // namespace corvane
