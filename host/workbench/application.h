// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <exception>
#include <memory>

namespace corvane
{

/// The application of the workbench. An exception out of a slot, be it the host's or a plugin's,
/// does not end the session: it is caught where its event was dispatched, said in the log, and the
/// session goes on.
class Application : public QApplication
{
public:
    Application(int &argc, char **argv);

    bool notify(QObject *receiver, QEvent *event) override;

    /// Throws what has been caught last, if anything has: for a command, whose pictures of windows
    /// must be whole.
    void throwCaught();

private:
    std::exception_ptr m_caught;
};

/// Whether windows can be opened: the environment names a display, where that is needed
/// (display_posix.cpp, display_windows.cpp).
bool thereIsADisplay();

/// The application for pictures of windows, with one look on each machine. It draws off any screen,
/// whatever the environment names; with `canBeWatched` only where it names no platform.
std::unique_ptr<QCoreApplication> makePictureApplication(int &argc, char **argv, bool canBeWatched);

/// Keeps the settings of this process in a folder, apart from the user's own.
void keepSettingsIn(const QString &folder);

} // namespace corvane
