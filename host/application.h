// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>

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
};

} // namespace corvane
