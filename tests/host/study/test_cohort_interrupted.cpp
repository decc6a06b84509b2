// SPDX-License-Identifier: GPL-3.0-or-later
// Studies whose processes are killed, stopped, or not alone.
#include "host/files/file_lock.h"
#include "tests/host/study/known_study.h"
#include "tests/host/support/interrupted_program.h"
#include "tests/host/support/traced_program.h"

#include <QDirIterator>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;

const QString participantStep = QStringLiteral("participant");

/// The locks of rows that stand below the study.
QStringList locksBelow(const QString &folder)
{
    QStringList locks;
    QDirIterator every(folder, {QStringLiteral(".corvane-row-*.lock")}, QDir::Files | QDir::Hidden,
                       QDirIterator::Subdirectories);
    while (every.hasNext())
        locks += every.next();
    return locks;
}

KnownRun large(const char *participant)
{
    KnownRun run(participant);
    run.copies = 3000;
    return run;
}

TEST(CohortInterrupted, KilledAtAnyMomentLosesAtMostTheRowInWork)
{
    KnownStudy study;
    KnownRun work("01");
    work.task = QStringLiteral("work");
    study.add("01");
    study.add(work);
    ASSERT_EQ(study.cohort(participantStep).status, 0);
    const auto wanted = KnownStudy::filesBelow(study.out());
    QDir(study.out()).removeRecursively();

    // Once at each of the calls that change a folder: at each of the first, before the rows, then
    // in steps that reach all phases.
    constexpr int beforeRows = 12;
    int calls = 0;
    runTraced(QStringLiteral(CORVANE_PROGRAM), study.arguments(participantStep),
              [&](const SystemCall &call) {
                  calls += call.kind != SystemCall::Open ? 1 : 0;
                  return Fate::GoesOn;
              });
    ASSERT_GT(calls, 20);
    for (int moment = 1; moment <= calls; moment += moment < beforeRows ? 1 : 3) {
        QDir(study.out()).removeRecursively();
        int seen = 0;
        const TracedRun killed =
            runTraced(QStringLiteral(CORVANE_PROGRAM), study.arguments(participantStep),
                      [&](const SystemCall &call) {
                          seen += call.kind != SystemCall::Open ? 1 : 0;
                          return seen == moment ? Fate::IsKilled : Fate::GoesOn;
                      });
        ASSERT_EQ(killed.signal, SIGKILL) << moment;
        const bool firstWasDone =
            QFile::exists(study.out() + QStringLiteral("/sub-01/func/.corvane-row-sub-01_task-rest_"
                                                       "space-T1w_atlas-Four.json"));
        const ProgramRun ran = study.cohort(participantStep);
        EXPECT_EQ(ran.status, 0) << moment << ran.errors.constData() << ran.output.constData();
        EXPECT_EQ(KnownStudy::filesBelow(study.out()), wanted) << moment;
        EXPECT_EQ(KnownStudy::leftBelow(study.out()), QStringList()) << moment;
        if (firstWasDone) {
            EXPECT_THAT(ran.output.toStdString(),
                        testing::Not(HasSubstr("task-rest_space-T1w_atlas-Four: done")))
                << moment;
        }
    }
}

TEST(CohortInterrupted, AProcessThatIsKilledLeavesAFailedRowAndTheOthersAreMade)
{
    KnownStudy study;
    study.add(large("01"));
    KnownRun after("01");
    after.task = QStringLiteral("work");
    study.add(after);
    study.add("02");
    QProcess driver;
    driver.start(QStringLiteral(CORVANE_PROGRAM), study.arguments(participantStep));
    const QString lock = study.out() + QStringLiteral("/sub-01/func/.corvane-row-sub-01_task-rest_"
                                                      "space-T1w_atlas-Four.lock");
    std::optional<LockHolder> holder;
    while (!(holder = holderOf(lock)) && !driver.waitForFinished(1)) {
    }
    ASSERT_TRUE(holder) << driver.readAllStandardOutput().toStdString();
    kill(pid_t(holder->process.number), SIGKILL);
    ASSERT_TRUE(driver.waitForFinished(60000));
    EXPECT_EQ(driver.exitCode(), 1);
    const std::string said = driver.readAllStandardOutput().toStdString();
    EXPECT_THAT(said, HasSubstr("sub-01_task-rest_space-T1w_atlas-Four: failed: process "));
    EXPECT_THAT(said, HasSubstr(" ended in the midst of it: signal 9"));
    EXPECT_THAT(said, HasSubstr("sub-01_task-work_space-T1w_atlas-Four: done"));
    EXPECT_THAT(said, HasSubstr("3 rows: 2 done, 1 failed"));
    EXPECT_EQ(KnownStudy::leftBelow(study.out()), QStringList());
    EXPECT_EQ(study.cohort(participantStep).status, 0);
}

TEST(CohortInterrupted, ASignalEndsAllProcessesAndLeavesNothingInWork)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        KnownStudy study;
        study.add(large("01"));
        study.add(large("02"));
        QStringList locks;
        const InterruptedRun run = runInterrupted(
            QStringLiteral(CORVANE_PROGRAM),
            study.arguments(participantStep, {QStringLiteral("--nprocs"), QStringLiteral("2")}),
            {{signal, [&] { return !(locks = locksBelow(study.out())).isEmpty(); }}});
        EXPECT_EQ(run.signal, signal) << run.errors;
        EXPECT_EQ(KnownStudy::leftBelow(study.out()), QStringList());
        const ProgramRun ran = study.cohort(participantStep);
        EXPECT_EQ(ran.status, 0);
        EXPECT_THAT(ran.output.toStdString(), HasSubstr("2 rows: 2 done"));
    }
}

TEST(CohortInterrupted, TwoCallsAtOnceMakeEachRowOnce)
{
    KnownStudy study;
    study.addParticipants(6);
    QProcess calls[2];
    for (QProcess &call : calls)
        call.start(
            QStringLiteral(CORVANE_PROGRAM),
            study.arguments(participantStep, {QStringLiteral("--nprocs"), QStringLiteral("2")}));
    int done = 0;
    for (QProcess &call : calls) {
        ASSERT_TRUE(call.waitForFinished(60000));
        EXPECT_EQ(call.exitCode(), 0) << call.readAllStandardError().toStdString();
        done += call.readAllStandardOutput().count(": done, ");
    }
    EXPECT_EQ(done, 6);
    EXPECT_EQ(study.ofStudy({QStringLiteral("verify"), QStringLiteral("--all")}).status, 0);
    EXPECT_EQ(KnownStudy::leftBelow(study.out()), QStringList());
    // Each table of the two is whole; whoever came last has all rows in it, or the next one.
    ASSERT_EQ(study.ofStudy({QStringLiteral("status"), QStringLiteral("--collect")}).status, 0);
    EXPECT_EQ(study.table().size(), 6);
}

} // namespace
} // namespace corvane
