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

/// Opens the main window with the files of the arguments and runs until it is closed.
/// Returns the exit status of the process.
int runWorkbench(const QStringList &arguments);

} // namespace corvane
