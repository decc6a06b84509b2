// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/workbench/command_run.h"

namespace corvane
{

/// A step of a study in a process of this program. What is done stays done when it is cancelled.
class CohortRun : public QObject
{
    Q_OBJECT

public:
    /// `program` is empty for this one.
    explicit CohortRun(QObject *parent = nullptr, const QString &program = {});

    /// Asks first how many rows are to be made, then makes them. Options are those of
    /// `Corvane cohort` behind the step's name.
    void start(const QString &dataset, const QString &study, const QStringList &options);
    /// Tests the group of the rows that are done.
    void startGroup(const QString &dataset, const QString &study, const QStringList &options);
    /// Asks it to end, and ends it when it does not within ten seconds.
    void cancel() { m_program.cancel(); }
    bool isRunning() const { return m_program.isRunning(); }

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
    void takeLine(const QString &line);
    void stepEnded(const QString &fault);

    CommandRun m_program;
    QStringList m_folders;
    QStringList m_options;
    bool m_isPlan = false;
    int m_all = 0;
    int m_done = 0;
};

} // namespace corvane
