// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>
#include <QStringList>
#include <QTimer>

namespace corvane
{

/// A step of a study in a process of this program. What is done stays done when it is cancelled.
class CohortRun : public QObject
{
    Q_OBJECT

public:
    /// `program` is empty for this one.
    explicit CohortRun(QObject *parent = nullptr, const QString &program = {});
    ~CohortRun() override;

    /// Asks first how many rows are to be made, then makes them. Options are those of
    /// `Corvane cohort` behind the step's name.
    void start(const QString &dataset, const QString &study, const QStringList &options);
    /// Tests the group of the rows that are done.
    void startGroup(const QString &dataset, const QString &study, const QStringList &options);
    /// Asks it to end, and ends it when it does not within ten seconds.
    void cancel();
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }

Q_SIGNALS:
    /// Rows that are made so far and in all; 0 of 0 while that is not known.
    void progressed(int done, int all);
    /// A line that the process wrote.
    void said(const QString &line);
    /// Once for each start, with the reason when it is not done: "cancelled", or the last line that
    /// was written.
    void ended(const QString &fault);

private:
    void begin(const QString &step, const QString &dataset, const QString &study,
               const QStringList &options);
    void run(const QString &step);
    void readLines();
    void takeLine(const QString &line);
    void processEnded();

    QString m_program;
    QStringList m_folders;
    QStringList m_options;
    QProcess m_process;
    QTimer m_patience;
    bool m_isPlan = false;
    bool m_isCancelled = false;
    int m_all = 0;
    int m_done = 0;
    QString m_lastLine;
};

} // namespace corvane
