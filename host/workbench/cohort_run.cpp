// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/cohort_run.h"

#include <QCoreApplication>
#include <QRegularExpression>

namespace corvane
{

CohortRun::CohortRun(QObject *parent, const QString &program)
    : QObject(parent),
      m_program(program.isEmpty() ? QCoreApplication::applicationFilePath() : program)
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_patience.setSingleShot(true);
    m_patience.setInterval(10000);
    connect(&m_patience, &QTimer::timeout, &m_process, &QProcess::kill);
    connect(&m_process, &QProcess::readyRead, this, &CohortRun::readLines);
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &CohortRun::processEnded);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            Q_EMIT ended(m_process.errorString());
    });
}

CohortRun::~CohortRun()
{
    m_process.disconnect(this);
    if (!isRunning())
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(10000)) {
        m_process.kill();
        m_process.waitForFinished();
    }
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
    m_isCancelled = false;
    m_all = m_done = 0;
    Q_EMIT progressed(0, 0);
    run(step);
}

void CohortRun::cancel()
{
    if (!isRunning())
        return;
    m_isCancelled = true;
    m_process.terminate();
    m_patience.start();
}

void CohortRun::run(const QString &step)
{
    m_isPlan = step == QLatin1String("plan");
    m_lastLine.clear();
    m_process.start(m_program, QStringList{QStringLiteral("cohort")} + m_folders +
                                   QStringList{step} + m_options);
}

void CohortRun::readLines()
{
    while (m_process.canReadLine())
        takeLine(QString::fromUtf8(m_process.readLine()).trimmed());
}

void CohortRun::takeLine(const QString &line)
{
    if (line.isEmpty())
        return;
    m_lastLine = line;
    if (m_isPlan)
        return;
    // Each row that is tried gets a line with its name and what became of it.
    static const QRegularExpression row(
        QStringLiteral("_atlas-[A-Za-z0-9]+: (done|excluded|missing|failed)\\b"));
    if (row.match(line).hasMatch())
        Q_EMIT progressed(++m_done, m_all);
    Q_EMIT said(line);
}

void CohortRun::processEnded()
{
    m_patience.stop();
    readLines();
    takeLine(QString::fromUtf8(m_process.readAll()).trimmed());
    const bool isGood = m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
    if (m_isCancelled) {
        Q_EMIT ended(tr("cancelled"));
    } else if (isGood && m_isPlan) {
        static const QRegularExpression toDo(QStringLiteral(", ([0-9]+) to do$"));
        m_all = toDo.match(m_lastLine).captured(1).toInt();
        Q_EMIT progressed(0, m_all);
        run(QStringLiteral("participant"));
    } else {
        Q_EMIT ended(isGood ? QString() : m_lastLine);
    }
}

} // namespace corvane
