// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/cohort_run.h"

#include <QRegularExpression>

namespace corvane
{

CohortRun::CohortRun(QObject *parent, const QString &program) : QObject(parent), m_program(program)
{
    connect(&m_program, &CommandRun::said, this, &CohortRun::takeLine);
    connect(&m_program, &CommandRun::ended, this, &CohortRun::stepEnded);
}

void CohortRun::start(const QString &dataset, const QString &study, const QStringList &options)
{
    begin(QStringLiteral("plan"), dataset, study, options);
}

void CohortRun::startGroup(const QString &dataset, const QString &study, const QStringList &options)
{
    begin(QStringLiteral("group"), dataset, study, options);
}

void CohortRun::begin(const QString &step, const QString &dataset, const QString &study,
                      const QStringList &options)
{
    if (isRunning())
        return;
    m_folders = QStringList{dataset, study};
    m_options = options;
    m_all = m_done = 0;
    Q_EMIT progressed(0, 0);
    run(step);
}

void CohortRun::run(const QString &step)
{
    m_isPlan = step == QLatin1String("plan");
    m_program.start(QStringList{QStringLiteral("cohort")} + m_folders + QStringList{step} +
                    m_options);
}

void CohortRun::takeLine(const QString &line)
{
    if (m_isPlan)
        return;
    // Each row that is tried gets a line with its name and what became of it.
    static const QRegularExpression row(
        QStringLiteral("_atlas-[A-Za-z0-9]+: (done|excluded|missing|failed)\\b"));
    if (row.match(line).hasMatch())
        Q_EMIT progressed(++m_done, m_all);
    Q_EMIT said(line);
}

void CohortRun::stepEnded(const QString &fault)
{
    if (!fault.isEmpty() || !m_isPlan) {
        Q_EMIT ended(fault);
        return;
    }
    static const QRegularExpression toDo(QStringLiteral(", ([0-9]+) to do$"));
    m_all = toDo.match(m_program.lastLine()).captured(1).toInt();
    Q_EMIT progressed(0, m_all);
    run(QStringLiteral("participant"));
}

} // namespace corvane
