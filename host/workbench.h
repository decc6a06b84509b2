// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QStringList>
#include <memory>

/// @file
/// The program with windows: `Corvane [--plugins DIR] [--start PLUGIN] [FILE...]`.

namespace corvane
{

/// The application for windows. Throws UsageError when there is no display.
std::unique_ptr<QCoreApplication> makeWindowApplication(int &argc, char **argv);

/// The application for pictures of windows: off any screen, whatever the environment names, and
/// with one look on each machine.
std::unique_ptr<QCoreApplication> makePictureApplication(int &argc, char **argv);

/// Opens the main window with the files of the arguments and runs until it is closed.
/// Returns the exit status of the process.
int runWorkbench(const QStringList &arguments);

#ifdef CORVANE_IMPORT
/// The same for a tour, which can be watched where the environment names a platform.
std::unique_ptr<QCoreApplication> makeTourApplication(int &argc, char **argv);

/// `Corvane tour --out DIR`: plays the whole workflow on the example dataset and writes a picture
/// and a caption of each step. Throws UsageError and InputError.
int runTour(const QStringList &arguments);
#endif

} // namespace corvane
