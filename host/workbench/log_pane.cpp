// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/log_pane.h"

#include "host/session/session.h"

#include <QPlainTextEdit>
#include <QScrollBar>

namespace corvane
{

LogPane::LogPane(Session &session, QWidget *parent)
    : QDockWidget(tr("Log"), parent), m_lines(new QPlainTextEdit(this))
{
    constexpr int longestLog = 10000; // lines
    setObjectName(QStringLiteral("logPane"));
    m_lines->setObjectName(QStringLiteral("logLines"));
    m_lines->setAccessibleName(tr("Log"));
    m_lines->setReadOnly(true);
    // A read-only text is still read with the keyboard.
    m_lines->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_lines->setTabChangesFocus(true);
    m_lines->setMaximumBlockCount(longestLog);
    setWidget(m_lines);

    connect(&session, &Session::logged, this, &LogPane::append);
    connect(&session, &Session::logPaneAsked, this, &LogPane::bringToFront);
}

QString LogPane::text() const
{
    return m_lines->toPlainText();
}

void LogPane::append(const QString &text)
{
    m_lines->appendPlainText(text);
    m_lines->verticalScrollBar()->setValue(m_lines->verticalScrollBar()->maximum());
}

void LogPane::bringToFront()
{
    show();
    raise();
}

} // namespace corvane
