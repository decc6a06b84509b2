// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDockWidget>

class QPlainTextEdit;

namespace corvane
{

class Session;

/// The log of a session as a pane of the main window.
class LogPane : public QDockWidget
{
    Q_OBJECT

public:
    explicit LogPane(Session &session, QWidget *parent = nullptr);

    QString text() const;

private:
    void append(const QString &text);
    void bringToFront();

    QPlainTextEdit *m_lines;
};

} // namespace corvane
