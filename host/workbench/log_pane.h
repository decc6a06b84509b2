// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDockWidget>

class QPlainTextEdit;

namespace corvane
{

/// The host's log as a pane of the main window. While it lives, all logged texts go here.
class LogPane : public QDockWidget
{
    Q_OBJECT

public:
    explicit LogPane(QWidget *parent = nullptr);
    ~LogPane() override;

    QString text() const;

private:
    void append(const QString &text);
    void bringToFront();

    QPlainTextEdit *m_lines;
};

} // namespace corvane
