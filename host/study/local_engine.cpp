// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/local_engine.h"

#include "host/files/end_signals.h"
#include "host/files/hidden_path.h"
#include "host/files/input_error.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <deque>
#include <memory>

namespace corvane
{

namespace
{

struct Running {
    std::unique_ptr<QProcess> process;
    LocalTask task;
    qint64 memory = 0;
};

class Engine
{
public:
    explicit Engine(const LocalWork &work) : m_work(work)
    {
        for (const LocalTask &task : work.tasks)
            m_waiting.push_back({task, false});
    }

    void run()
    {
        constexpr int betweenLooks = 50; // ms, for signals
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &m_loop, &QEventLoop::quit);
        timer.start(betweenLooks);
        startSome();
        while (!m_running.empty()) {
            m_loop.exec();
            if (endSignalHasCome())
                return stop();
            takeEnded();
            startSome();
        }
    }

private:
    struct Waiting {
        LocalTask task;
        bool isAgain;
    };

    bool hasRoomFor(qint64 memory) const
    {
        if (m_running.empty())
            return true;
        qint64 used = memory;
        for (const Running &running : m_running)
            used += running.memory;
        return int(m_running.size()) < m_work.processes &&
               (m_work.memory == 0 || used <= m_work.memory);
    }

    void startSome()
    {
        while (!m_waiting.empty() && int(m_running.size()) < std::max(1, m_work.processes)) {
            const Waiting next = m_waiting.front();
            const qint64 memory = next.task.memory();
            if (!hasRoomFor(memory))
                return;
            m_waiting.pop_front();
            start(next, memory);
        }
    }

    void start(const Waiting &next, qint64 memory)
    {
        auto process = std::make_unique<QProcess>();
        process->setProcessChannelMode(QProcess::ForwardedChannels);
        process->setStandardInputFile(QProcess::nullDevice());
        QObject::connect(process.get(),
                         QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &m_loop,
                         &QEventLoop::quit);
        const QString program =
            m_work.program.isEmpty() ? QCoreApplication::applicationFilePath() : m_work.program;
        process->start(program, m_work.arguments(next.task.participant, next.isAgain));
        if (!process->waitForStarted()) {
            const QString reason = process->errorString();
            stop();
            throw InputError(program, QStringLiteral("starting"), reason,
                             QStringLiteral("another process"));
        }
        m_running.push_back({std::move(process), next.task, memory});
    }

    void takeEnded()
    {
        for (auto running = m_running.begin(); running != m_running.end();) {
            if (running->process->state() != QProcess::NotRunning) {
                ++running;
                continue;
            }
            if (running->process->exitStatus() == QProcess::CrashExit &&
                m_work.crashed(running->task.participant,
                               QStringLiteral("signal %1").arg(running->process->exitCode())))
                m_waiting.push_front({running->task, true});
            running = m_running.erase(running);
        }
    }

    void stop()
    {
        m_waiting.clear();
        for (const Running &running : m_running)
            running.process->terminate();
        constexpr int longestWait = 10000; // ms
        for (const Running &running : m_running)
            if (!running.process->waitForFinished(longestWait))
                running.process->kill();
        m_running.clear();
    }

    const LocalWork &m_work;
    QEventLoop m_loop;
    std::deque<Waiting> m_waiting;
    std::vector<Running> m_running;
};

} // namespace

void runLocally(const LocalWork &work)
{
    const auto lock = holdSignals();
    Engine(work).run();
}

} // namespace corvane
