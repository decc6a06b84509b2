// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/workbench/command_run.h"

#include <QCoreApplication>

namespace corvane
{

CommandRun::CommandRun(const QString &program, QObject *parent)
    : QObject(parent),
      m_program(program.isEmpty() ? QCoreApplication::applicationFilePath() : program)
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_patience.setSingleShot(true);
    m_patience.setInterval(10000);
    connect(&m_patience, &QTimer::timeout, &m_process, &QProcess::kill);
    connect(&m_process, &QProcess::readyRead, this, &CommandRun::readLines);
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &CommandRun::processEnded);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            Q_EMIT ended(m_process.errorString());
    });
}

CommandRun::~CommandRun()
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

void CommandRun::start(const QStringList &arguments)
{
    if (isRunning())
        return;
    m_isCancelled = false;
    m_lastLine.clear();
    m_process.start(m_program, arguments);
}

void CommandRun::cancel()
{
    if (!isRunning())
        return;
    m_isCancelled = true;
    m_process.terminate();
    m_patience.start();
}

void CommandRun::readLines()
{
    while (m_process.canReadLine())
        takeLine(m_process.readLine());
}

void CommandRun::takeLine(const QByteArray &line)
{
    const QString text = QString::fromUtf8(line).trimmed();
    if (text.isEmpty())
        return;
    m_lastLine = text;
    Q_EMIT said(text);
}

void CommandRun::processEnded()
{
    m_patience.stop();
    readLines();
    takeLine(m_process.readAll());
    const bool isGood = m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
    const QString reason = m_lastLine.isEmpty() ? tr("It ended without a word.") : m_lastLine;
    Q_EMIT ended(m_isCancelled ? tr("cancelled") : isGood ? QString() : reason);
}

} // namespace corvane
