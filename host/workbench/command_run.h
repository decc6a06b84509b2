// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>
#include <QStringList>
#include <QTimer>

namespace corvane
{

/// A command of this program in a process of its own.
class CommandRun : public QObject
{
    Q_OBJECT

public:
    /// `program` is empty for this one.
    explicit CommandRun(const QString &program = {}, QObject *parent = nullptr);
    /// Asks a command that runs to end, and waits until it has.
    ~CommandRun() override;

    /// Does nothing while a command runs.
    void start(const QStringList &arguments);
    /// Asks it to end, and ends it when it does not within ten seconds.
    void cancel();
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    /// The last line that was written.
    const QString &lastLine() const { return m_lastLine; }

Q_SIGNALS:
    /// A line that the command wrote.
    void said(const QString &line);
    /// Once for each start, with the reason when the command is not done: "cancelled", or the last
    /// line that was written, or that there was none.
    void ended(const QString &fault);

private:
    void readLines();
    void takeLine(const QByteArray &line);
    void processEnded();

    QString m_program;
    QProcess m_process;
    QTimer m_patience;
    bool m_isCancelled = false;
    QString m_lastLine;
};

} // namespace corvane
