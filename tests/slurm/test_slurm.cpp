// SPDX-License-Identifier: GPL-3.0-or-later
// Studies on a real Slurm, which slurm.sh starts. Skipped where it is not installed, unless
// TESSERA_REQUIRE_SLURM is set.
#include "host/files/file_lock.h"
#include "tests/host/study/known_study.h"

#include <QRegularExpression>
#include <chrono>
#include <csignal>
#include <fstream>
#include <gmock/gmock.h>
#include <thread>

namespace corvane
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

const QString participantStep = QStringLiteral("participant");

ProgramRun slurmScript(const QStringList &arguments)
{
    return runProgram(QStringLiteral(SLURM_SCRIPT), arguments);
}

/// Looks again and again; false when it has not come within two minutes.
template <typename Condition>
bool waitUntil(Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

long parentOf(long process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string word;
    for (int field = 1; field <= 4; ++field)
        file >> word;
    return std::stol(word);
}

class Slurm : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        const ProgramRun check = slurmScript({QStringLiteral("check")});
        if (check.status != 0) {
            s_missing = check.output.trimmed().toStdString();
            return;
        }
        s_folder = new TemporaryFolder;
        const ProgramRun started = slurmScript({QStringLiteral("start"), s_folder->path()});
        ASSERT_EQ(started.status, 0) << started.output.constData() << started.errors.constData();
        qputenv("SLURM_CONF", s_folder->path("slurm.conf").toUtf8());
    }
    static void TearDownTestSuite()
    {
        if (s_folder == nullptr)
            return;
        EXPECT_EQ(slurmScript({QStringLiteral("stop"), s_folder->path()}).status, 0);
        delete s_folder;
        s_folder = nullptr;
    }

    void SetUp() override
    {
        if (s_missing.empty())
            return;
        if (qEnvironmentVariableIsSet("TESSERA_REQUIRE_SLURM"))
            FAIL() << s_missing;
        GTEST_SKIP() << s_missing;
    }

    ProgramRun submit(const QStringList &more = {}) const
    {
        return m_study.cohort(participantStep, QStringList{QStringLiteral("--slurm")} + more);
    }
    /// The number of the job that collects, as the program tells it.
    static QString collectJob(const QByteArray &said)
    {
        const QRegularExpressionMatch match =
            QRegularExpression(QStringLiteral("and job ([0-9]+) that collects"))
                .match(QString::fromUtf8(said));
        EXPECT_TRUE(match.hasMatch()) << said.constData();
        return match.captured(1);
    }
    static bool isOver(const QString &job)
    {
        const ProgramRun queue =
            runProgram(QStringLiteral("squeue"),
                       {QStringLiteral("--noheader"), QStringLiteral("--jobs=") + job});
        return queue.status != 0 ? queue.errors.contains("Invalid job id")
                                 : queue.output.trimmed().isEmpty();
    }
    /// Waits until somebody computes the row of a participant.
    std::optional<LockHolder> holderOfRow(const char *participant) const
    {
        const QString lock =
            QStringLiteral("%1/sub-%2/func/.corvane-row-sub-%2_task-rest_space-T1w_atlas-Four.lock")
                .arg(m_study.out(), QLatin1String(participant));
        std::optional<LockHolder> holder;
        waitUntil([&] { return (holder = holderOf(lock)).has_value(); });
        return holder;
    }
    /// What a study of the same runs becomes on this machine.
    QMap<QString, QByteArray> madeHere() const
    {
        const QString out = m_study.path(QStringLiteral("here"));
        QStringList arguments = m_study.arguments(participantStep);
        arguments[2] = out;
        EXPECT_EQ(runCorvane(arguments).status, 0);
        return KnownStudy::filesBelow(out);
    }
    struct Begun {
        LockHolder holder; ///< of the large one's row
        QString collect;   ///< the job behind all rows
    };
    /// A study of a large participant 01 and these, as soon as the large one is being computed.
    Begun begun(std::initializer_list<const char *> others)
    {
        KnownRun large("01");
        large.copies = 6000;
        m_study.add(large);
        for (const char *const participant : others)
            m_study.add(participant);
        const ProgramRun ran = submit();
        EXPECT_EQ(ran.status, 0) << ran.errors.constData();
        const std::optional<LockHolder> holder = holderOfRow("01");
        EXPECT_TRUE(holder);
        return {holder.value(), collectJob(ran.output)};
    }
    static QString folder() { return s_folder->path(); }

    KnownStudy m_study;

private:
    static TemporaryFolder *s_folder;
    static std::string s_missing;
};

TemporaryFolder *Slurm::s_folder = nullptr;
std::string Slurm::s_missing;

TEST_F(Slurm, GivesTheBytesOfThisMachine)
{
    m_study.addParticipants(5);
    const ProgramRun ran = submit({QStringLiteral("--wait"), QStringLiteral("--sbatch-options"),
                                   QStringLiteral("--time=5 --comment=\"two words\"")});
    EXPECT_EQ(ran.status, 0) << ran.errors.constData();
    // An array may have three tasks here.
    EXPECT_THAT(ran.output.toStdString(), HasSubstr(" with 3 tasks, and job "));
    EXPECT_THAT(ran.output.toStdString(), HasSubstr(": 5 rows: 5 done"));
    EXPECT_EQ(KnownStudy::filesBelow(m_study.out()), madeHere());
    const ProgramRun again = submit({QStringLiteral("--wait")});
    EXPECT_EQ(again.output.toStdString(), m_study.out().toStdString() + ": 5 rows: 5 done\n");
}

TEST_F(Slurm, TheGroupFollowsItsRows)
{
    m_study.addParticipants(5);
    const QStringList then{QStringLiteral("--then-group"), QStringLiteral("--formula=1"),
                           QStringLiteral("--contrast=mean=(Intercept)"),
                           QStringLiteral("--permutations=19")};
    const ProgramRun ran = submit(QStringList{QStringLiteral("--wait")} + then);
    EXPECT_EQ(ran.status, 0) << ran.errors.constData();
    const auto files = KnownStudy::filesBelow(m_study.out());
    EXPECT_EQ(files.value(QStringLiteral("group/edges.tsv")).count('\n'), 1 + 4 * 3 / 2);
    // With nothing to compute it is tested here and now.
    ASSERT_TRUE(QDir(m_study.out() + QStringLiteral("/group")).removeRecursively());
    const ProgramRun again = submit(then);
    EXPECT_EQ(again.status, 0) << again.errors.constData();
    EXPECT_EQ(KnownStudy::filesBelow(m_study.out()), files);
}

TEST_F(Slurm, ATaskThatIsKilledIsARowThatFailed)
{
    const Begun study = begun({"02", "03"});
    EXPECT_NE(study.holder.job, QString());
    EXPECT_EQ(kill(pid_t(study.holder.process.number), SIGKILL), 0);
    ASSERT_TRUE(waitUntil([&] { return isOver(study.collect); }));
    std::vector<std::string> rows;
    for (const QString &line : m_study.table())
        rows.push_back(line.section(QLatin1Char('\t'), 6, 6).toStdString() + ' ' +
                       line.section(QLatin1Char('\t'), 16).toStdString());
    EXPECT_THAT(rows, ElementsAre("failed " + study.holder.words().toStdString() +
                                      " ended in the midst of it",
                                  "done n/a", "done n/a"));
    EXPECT_EQ(submit({QStringLiteral("--wait")}).status, 0);
    EXPECT_EQ(KnownStudy::filesBelow(m_study.out()), madeHere());
}

TEST_F(Slurm, ANodeThatGoesAwayLosesNothing)
{
    const Begun study = begun({"02"});
    // All at once, as when the power fails: the daemon, what it started for the task, and the task.
    const long node = bytesOf(folder() + QStringLiteral("/slurmd.pid")).trimmed().toLong();
    const long starter = parentOf(long(study.holder.process.number));
    for (const long process : {node, starter, long(study.holder.process.number)})
        EXPECT_EQ(kill(pid_t(process), SIGKILL), 0);
    ASSERT_TRUE(waitUntil([&] {
        return runProgram(QStringLiteral("sinfo"),
                          {QStringLiteral("--noheader"), QStringLiteral("--format=%T")})
            .output.startsWith("down");
    }));
    ASSERT_EQ(slurmScript({QStringLiteral("node"), folder()}).status, 0);
    ASSERT_TRUE(waitUntil([&] { return isOver(study.collect); }));
    EXPECT_EQ(KnownStudy::filesBelow(m_study.out()), madeHere());
    EXPECT_EQ(KnownStudy::leftBelow(m_study.out()), QStringList{QStringLiteral(".corvane-slurm")});
}

TEST_F(Slurm, ATaskThatIsRequeuedIsMadeOnce)
{
    const Begun study = begun({"02"});
    // As an administrator does, or the system for a job that matters more.
    const ProgramRun requeued =
        runProgram(QStringLiteral("scontrol"), {QStringLiteral("requeue"), study.holder.job});
    ASSERT_EQ(requeued.status, 0) << requeued.errors.constData();
    ASSERT_TRUE(waitUntil([&] { return isOver(study.collect); }));
    for (const QString &line : m_study.table())
        EXPECT_EQ(line.section(QLatin1Char('\t'), 6, 6), QStringLiteral("done"))
            << line.toStdString();
    EXPECT_EQ(KnownStudy::filesBelow(m_study.out()), madeHere());
    EXPECT_EQ(KnownStudy::leftBelow(m_study.out()), QStringList{QStringLiteral(".corvane-slurm")});
}

TEST_F(Slurm, WhatSbatchRefusesIsTold)
{
    m_study.addParticipants(1);
    const ProgramRun ran =
        submit({QStringLiteral("--sbatch-options"), QStringLiteral("--partition=none")});
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(ran.errors.toStdString(), StartsWith("Corvane: sbatch: exit status 1: found "));
    EXPECT_THAT(ran.errors.toStdString(), HasSubstr("invalid partition specified: none"));
}

} // namespace
} // namespace corvane
