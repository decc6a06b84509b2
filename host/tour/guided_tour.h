// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tour/tour.h"

#include <QObject>
#include <QPointer>
#include <QProcess>

namespace corvane
{

class MainWindow;

/// Help > Guided Tour of a main window, of which it is a child: plays the whole workflow on the
/// example dataset, with a card for each step. Where something is open it is put aside: the tour is
/// then played in a process of its own, and the windows of this one are minimised until it ends.
class GuidedTour : public QObject
{
    Q_OBJECT

public:
    /// `program` is what plays it where something is open; empty for this program.
    explicit GuidedTour(MainWindow &window, QString program = {});
    ~GuidedTour() override;

    /// Plays the tour, or tells in a message why it cannot.
    void start();

Q_SIGNALS:
    void ended();

private:
    void play();
    void playElsewhere();
    void bringBack();

    MainWindow &m_window;
    QString m_program;
    QPointer<Tour> m_tour; ///< while it is played here
    QProcess m_process;    ///< in which it is played
    QList<QPointer<QWidget>> m_aside;
};

} // namespace corvane
