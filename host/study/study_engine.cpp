// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/study/study_engine.h"

#include "host/derivatives/run_images.h"
#include "host/files/free_memory.h"
#include "host/study/collect.h"
#include "host/study/local_engine.h"
#include "host/study/row_memory.h"
#include "host/study/row_state.h"
#include "host/study/study_folder.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace corvane
{

namespace
{

const QString &participantOf(const ParticipantRows &rows)
{
    return rows.front().name.participant;
}

/// Of what is free some stays for everything else.
qint64 memoryForAll()
{
    return freeMemory() / 10 * 9;
}

const ParticipantRows &rowsOf(const QString &participant,
                              const std::vector<ParticipantRows> &participants)
{
    return *std::find_if(
        participants.begin(), participants.end(),
        [&](const ParticipantRows &rows) { return participantOf(rows) == participant; });
}

} // namespace

std::vector<ParticipantRows> byParticipant(std::vector<StudyRow> rows)
{
    std::vector<ParticipantRows> participants;
    for (StudyRow &row : rows) {
        if (participants.empty() || participantOf(participants.back()) != row.name.participant)
            participants.emplace_back();
        participants.back().push_back(std::move(row));
    }
    return participants;
}

bool hasWork(const ParticipantRows &rows, const StudySettings &settings)
{
    const QString sum = settingsSum(settings.options);
    return std::any_of(rows.begin(), rows.end(), [&](const StudyRow &row) {
        return !whyToMake(row, readRecord(recordPath(settings.out, row.name)), settings, sum)
                    .isEmpty();
    });
}

void prepareStudy(const std::vector<ParticipantRows> &participants, const StudySettings &settings,
                  const Tell &tell)
{
    makeStudyFolder(settings.out);
    tidyStudyFolder(settings.out);
    writeDescription(settings.out, settings.dataset, tell);
    QSet<QString> folders;
    for (const ParticipantRows &rows : participants) {
        writePlan(rows, settings);
        for (const StudyRow &row : rows)
            folders.insert(settings.out + QLatin1Char('/') + row.name.folder);
    }
    // Also where nothing is left to do: a process may have been killed right behind its last row.
    for (const QString &folder : qAsConst(folders))
        if (QFileInfo(folder).isDir())
            tidyStudyFolder(folder);
}

QStringList StudyCommand::task() const
{
    QStringList all = words + QStringList{QStringLiteral("--no-collect")};
    if (keepFailed)
        all += QStringLiteral("--keep-failed");
    return all;
}

void runOnThisMachine(const std::vector<ParticipantRows> &participants,
                      const StudySettings &settings, const StudyCommand &command, const Tell &tell)
{
    if (participants.size() == 1)
        return runRows(participants.front(), settings, command.keepFailed, tell);
    LocalWork work;
    work.processes = command.processes;
    work.memory = memoryForAll();
    for (const ParticipantRows &rows : participants)
        if (hasWork(rows, settings))
            work.tasks.push_back({participantOf(rows), [&rows] { return memoryFor(rows); }});
    work.arguments = [&](const QString &participant, bool isAgain) {
        QStringList words = command.task();
        if (isAgain && !command.keepFailed)
            words += QStringLiteral("--keep-failed");
        words += {QStringLiteral("--participant-label"), participant};
        return words;
    };
    work.crashed = [&](const QString &participant, const QString &how) {
        const QStringList lines = recordCrashes(
            plannedRows(settings.out, participantFolder(participant)), settings.out, how);
        for (const QString &line : lines)
            tell(line);
        return !lines.isEmpty() && hasWork(rowsOf(participant, participants), settings);
    };
    runLocally(work);
}

std::optional<SlurmJobs> submitStudy(const std::vector<ParticipantRows> &participants,
                                     const StudySettings &settings, const StudyCommand &command,
                                     const std::vector<QStringList> &afterwards)
{
    SlurmWork work;
    for (const ParticipantRows &rows : participants)
        if (hasWork(rows, settings)) {
            work.participants += participantOf(rows);
            work.memory = std::max(work.memory, memoryFor(rows));
        }
    if (work.participants.isEmpty())
        return std::nullopt;
    work.out = settings.out;
    work.participantsPerTask = command.participantsPerTask;
    work.options = command.slurmOptions;
    work.taskArguments = command.task() + QStringList{QStringLiteral("--nprocs=1")};
    work.afterwards = afterwards;
    return submitToSlurm(work);
}

} // namespace corvane
