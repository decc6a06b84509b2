// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/session/workspace.h"

#include <QObject>

namespace corvane
{

/// What plugins find while it lives: a workspace, a log and messages to the user. The functions of
/// the host work on the session that was made last and lives, so that a compute of its own does not
/// touch what is open in windows. Windows and others listen to its signals, as many as want to.
/// Everything about it belongs to the main thread.
class Session : public QObject
{
    Q_OBJECT

public:
    /// With what opens anatomies that are no `.vmr`; without it they are refused.
    explicit Session(AnatomyOpener openAnatomy = {});
    ~Session() override;

    /// The session that plugins work in, null without one.
    static Session *current();

    Workspace &workspace() { return m_workspace; }

    /// Appends a text to the log. A text may begin with or hold line feeds; it needs none at its
    /// end. With nobody listening it goes to standard error.
    void log(const QString &text);
    /// Logs a message that the user must see, and shows it: in a box where there are windows.
    void showMessage(const QString &text);
    /// Brings the log to the front, where there is a window with one.
    void showLogPane() { Q_EMIT logPaneAsked(); }

Q_SIGNALS:
    void logged(const QString &text);
    void messageShown(const QString &text);
    void logPaneAsked();

private:
    Workspace m_workspace;
};

/// The workspace of the current session; without a session one that is empty and stays so.
Workspace &workspace();

} // namespace corvane
