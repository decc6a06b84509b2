// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tour/tour.h"

#include <QObject>
#include <QPointer>

namespace corvane
{

class MainWindow;

/// Help > Guided Tour of a main window, of which it is a child: plays the whole workflow on the
/// example dataset, with a caption at each step.
class GuidedTour : public QObject
{
    Q_OBJECT

public:
    explicit GuidedTour(MainWindow &window);

private:
    void start();

    MainWindow &m_window;
    QPointer<Tour> m_tour; ///< while it is played
};

} // namespace corvane
