// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/slurm_engine.h"

#include "host/files/end_signals.h"
#include "host/files/input_error.h"
#include "host/files/output_file.h"
#include "host/study/study_folder.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QProcess>

#include <algorithm>
#include <thread>

namespace corvane
{

namespace
{

/// What a program of Slurm prints. Throws InputError with its own words when it fails.
QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted())
        throw InputError(program, QStringLiteral("starting"), process.errorString(),
                         QStringLiteral("a machine with Slurm"));
    process.waitForFinished(-1);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        throw InputError(program, QStringLiteral("exit status %1").arg(process.exitCode()),
                         printable(process.readAllStandardError().trimmed(), 1000),
                         QStringLiteral("that it takes the job"));
    return process.readAllStandardOutput();
}

/// A word as shells read it.
QByteArray shellWord(const QString &word)
{
    return '\'' + word.toUtf8().replace('\'', "'\\''") + '\'';
}

/// This program with arguments.
QByteArray shellCommand(const QStringList &arguments)
{
    QByteArray command = shellWord(QCoreApplication::applicationFilePath());
    for (const QString &argument : arguments)
        command += ' ' + shellWord(argument);
    return command;
}

/// The task of number N computes the participants in line N of a list, from 0.
QByteArray taskScript(const SlurmWork &work, const QString &list)
{
    return "#!/bin/sh\n"
           "participants=$(sed -n \"$((SLURM_ARRAY_TASK_ID + 1))p\" " +
           shellWord(list) + ")\nexec " + shellCommand(work.taskArguments) +
           " --participant-label $participants\n";
}

/// One command after the other, as long as none fails.
QByteArray scriptOf(const std::vector<QStringList> &commands)
{
    QByteArray script = "#!/bin/sh\nset -e\n";
    for (const QStringList &command : commands)
        script += shellCommand(command) + '\n';
    return script;
}

QByteArray listText(const std::vector<QStringList> &tasks)
{
    QByteArray list;
    for (const QStringList &participants : tasks)
        list += participants.join(QLatin1Char(' ')).toUtf8() + '\n';
    return list;
}

QString submitted(const SlurmWork &work, const QStringList &options, const QString &script)
{
    // The number alone, or with the name of a cluster behind a semicolon.
    const QByteArray said =
        outputOf(QStringLiteral("sbatch"), QStringList{QStringLiteral("--parsable")} + options +
                                               work.options + QStringList{script});
    return QString::fromUtf8(said.trimmed().split(';').front());
}

bool limitsMemory(const QStringList &options)
{
    return std::any_of(options.begin(), options.end(), [](const QString &option) {
        return option.startsWith(QLatin1String("--mem"));
    });
}

QString newFolder(const QString &out)
{
    const QString name =
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz"));
    QString folder = QFileInfo(out).absoluteFilePath() + QStringLiteral("/.corvane-slurm/") + name;
    makeStudyFolder(folder);
    return folder;
}

} // namespace

std::vector<QStringList> slurmTasks(const QStringList &participants, int perTask, int mostTasks)
{
    const int least = (participants.size() + mostTasks - 1) / mostTasks;
    const int size = std::max({perTask, least, 1});
    std::vector<QStringList> tasks;
    for (int first = 0; first < participants.size(); first += size)
        tasks.push_back(participants.mid(first, size));
    return tasks;
}

int mostSlurmTasks()
{
    const QString program = QStringLiteral("scontrol");
    const QByteArray config = outputOf(program, {QStringLiteral("show"), QStringLiteral("config")});
    for (const QByteArray &line : config.split('\n'))
        if (line.startsWith("MaxArraySize"))
            return std::max(1, line.mid(line.indexOf('=') + 1).trimmed().toInt() - 1);
    throw InputError(program, QStringLiteral("show config"), QStringLiteral("no MaxArraySize"),
                     QStringLiteral("a line that tells it"));
}

SlurmJobs submitToSlurm(const SlurmWork &work)
{
    constexpr qint64 megabyte = 1 << 20;
    const std::vector<QStringList> tasks =
        slurmTasks(work.participants, work.participantsPerTask, mostSlurmTasks());
    SlurmJobs jobs;
    jobs.tasks = int(tasks.size());
    jobs.folder = newFolder(work.out);
    const QString list = jobs.folder + QStringLiteral("/tasks");
    const QString task = jobs.folder + QStringLiteral("/task.sh");
    const QString collect = jobs.folder + QStringLiteral("/collect.sh");
    writeFile(list, listText(tasks));
    writeFile(task, taskScript(work, list));
    writeFile(collect, scriptOf(work.afterwards));

    QStringList arrayOptions{QStringLiteral("--job-name=corvane"),
                             QStringLiteral("--array=0-%1").arg(jobs.tasks - 1),
                             QStringLiteral("--output=%1/task-%a.log").arg(jobs.folder)};
    if (work.memory > 0 && !limitsMemory(work.options))
        arrayOptions += QStringLiteral("--mem=%1M").arg(work.memory / megabyte + 1);
    jobs.array = submitted(work, arrayOptions, task);
    jobs.collect = submitted(work,
                             {QStringLiteral("--job-name=corvane-collect"),
                              QStringLiteral("--dependency=afterany:") + jobs.array,
                              QStringLiteral("--output=%1/collect.log").arg(jobs.folder)},
                             collect);
    return jobs;
}

void waitForSlurm(const QString &job)
{
    constexpr std::chrono::milliseconds betweenLooks(200);
    constexpr int looksBetweenQuestions = 10; // Slurm is asked every two seconds
    for (int look = 0; !endSignalHasCome(); ++look) {
        if (look % looksBetweenQuestions == 0) {
            QProcess squeue;
            squeue.start(QStringLiteral("squeue"),
                         {QStringLiteral("--noheader"), QStringLiteral("--format=%T"),
                          QStringLiteral("--jobs=") + job});
            const bool answered = squeue.waitForStarted() && squeue.waitForFinished();
            const bool isForgotten =
                squeue.exitCode() != 0 && squeue.readAllStandardError().contains("Invalid job id");
            const QByteArray state = squeue.readAllStandardOutput().trimmed();
            if (answered && (isForgotten || (squeue.exitCode() == 0 && state.isEmpty())))
                return;
        }
        std::this_thread::sleep_for(betweenLooks);
    }
}

} // namespace corvane
