// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>
#include <QVector>

class QWidget;

/// @file
/// What `gui_main.cpp` gives to tests with widgets. Each test fails at its end if Qt or the code
/// has written a warning that the test has not taken and that is not on the list of warnings known
/// to be right.

struct LoggedMessage {
    QtMsgType type;
    QString text;
};

/// All messages since the test began or since the last call, and forgets them.
QVector<LoggedMessage> takeMessages();

/// The texts of the warnings among them; forgets all messages.
QStringList takeWarnings();

/// Brings the mouse into a shown window, to a point of it. A window learns that the mouse is there
/// only from a movement, and there is none when the mouse already stands at that place.
void bringMouseTo(const QWidget &window, QPoint to);
