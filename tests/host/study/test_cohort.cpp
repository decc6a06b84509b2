// SPDX-License-Identifier: GPL-3.0-or-later
// Corvane cohort: from a folder of subjects to the tables of each run, by the program itself.
#include "host/files/file_lock.h"
#include "tests/host/extract/json_schema.h"
#include "tests/host/study/known_study.h"
#include "tests/host/support/small_study.h"

#include <Eigen/Cholesky>
#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <cmath>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const QString participantStep = QStringLiteral("participant");

std::vector<std::string> linesOf(const QByteArray &text)
{
    std::vector<std::string> lines;
    for (const QByteArray &line : text.split('\n'))
        if (!line.isEmpty())
            lines.push_back(line.toStdString());
    return lines;
}

std::string lastLine(const QByteArray &text)
{
    const std::vector<std::string> lines = linesOf(text);
    return lines.empty() ? std::string() : lines.back();
}

Eigen::VectorXd residual(const Eigen::VectorXd &series, const Eigen::MatrixXd &columns)
{
    return series -
           columns * (columns.transpose() * columns).ldlt().solve(columns.transpose() * series);
}

double correlation(const Eigen::VectorXd &x, const Eigen::VectorXd &y)
{
    const Eigen::VectorXd a = x.array() - x.mean();
    const Eigen::VectorXd b = y.array() - y.mean();
    return a.dot(b) / std::sqrt(a.squaredNorm() * b.squaredNorm());
}

/// The status and the reason of each row of the study's table, by its run.
QMap<QString, QString> outcomes(const KnownStudy &study)
{
    QMap<QString, QString> all;
    for (const QString &line : study.table()) {
        const QStringList cells = line.split(QLatin1Char('\t'));
        EXPECT_EQ(cells.size(), 17) << line.toStdString();
        all[cells[4]] = cells[6] + QStringLiteral(": ") + cells[16];
    }
    return all;
}

QJsonObject recordOf(const KnownStudy &study, const KnownRun &run)
{
    const QFileInfo output(study.output(run, "x"));
    QString stem = output.fileName();
    stem.chop(2);
    return QJsonDocument::fromJson(bytesOf(output.path() + QStringLiteral("/.corvane-row-") + stem +
                                           QStringLiteral(".json")))
        .object();
}

void setTime(const QString &path, const QDateTime &time)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
}

TEST(Cohort, FilesOfARunAreThoseOfConnectomeByteForByte)
{
    const KnownRun plain("01");
    KnownRun withSession("02", "a");
    withSession.hasMask = true;
    KnownStudy own;
    own.add(plain);
    own.add(withSession);
    const ProgramRun ran =
        own.cohort(participantStep, {QStringLiteral("--measure"), QStringLiteral("pearson,fisherz"),
                                     QStringLiteral("--fd-threshold"), QStringLiteral("0.5")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    for (const KnownRun &run : {plain, withSession}) {
        const QString folder = own.path(QStringLiteral("one-") + run.participant);
        QStringList arguments = own.connectome(run, folder);
        arguments += {QStringLiteral("--measure"),      QStringLiteral("pearson,fisherz"),
                      QStringLiteral("--fd-threshold"), QStringLiteral("0.5"),
                      QStringLiteral("--dataset-root"), own.dataset()};
        if (run.hasMask)
            arguments +=
                {QStringLiteral("--mask"), own.file(run, "_space-T1w_desc-brain_mask.nii.gz")};
        ASSERT_EQ(runCorvane(arguments).status, 0);
        const QMap<QString, QByteArray> wanted = KnownStudy::filesBelow(folder);
        EXPECT_GE(wanted.size(), 11);
        EXPECT_EQ(KnownStudy::filesBelow(QFileInfo(own.output(run, "x")).path()), wanted);
    }
}

TEST(Cohort, MatricesAreThoseOfAnIndependentComputation)
{
    KnownStudy study;
    const KnownRun runs[] = {"01", "02"};
    for (const KnownRun &run : runs)
        study.add(run);
    ASSERT_EQ(study.cohort(participantStep).status, 0);
    for (const KnownRun &run : runs) {
        Eigen::MatrixXd design(run.volumes, 3);
        design.col(0).setOnes();
        design.col(1).setLinSpaced(0, run.volumes - 1);
        design.col(2) = KnownStudy::confound(run);
        const QList<QByteArray> lines =
            bytesOf(study.output(run, "stat-pearsoncorrelation_relmat.tsv")).split('\n');
        ASSERT_EQ(lines.size(), 6);
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j)
                EXPECT_NEAR(lines[i + 1].split('\t')[j + 1].toDouble(),
                            correlation(residual(KnownStudy::region(run, i), design),
                                        residual(KnownStudy::region(run, j), design)),
                            1e-9);
    }
}

TEST(Cohort, WhatCannotBeComputedIsARowWithItsReasonAndStopsNothing)
{
    KnownStudy study;
    study.add("01");
    KnownRun run("02");
    run.volumes = run.confoundRows = 100;
    study.add(run);
    run = "03";
    run.hasConfounds = false;
    study.add(run);
    run = "04";
    run.isBroken = true;
    study.add(run);
    run = "05";
    run.confoundRows = 129;
    study.add(run);
    run = "06";
    run.task = QStringLiteral("work");
    study.add(run);
    run = "07";
    run.isOldStyle = true;
    study.add(run);
    const ProgramRun ran =
        study.cohort(participantStep, {QStringLiteral("--task-id"), QStringLiteral("rest")});
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.errors, QByteArray());
    EXPECT_EQ(lastLine(ran.output),
              study.out().toStdString() + ": 7 rows: 2 done, 1 excluded, 2 missing, 2 failed");
    const QMap<QString, QString> rows = outcomes(study);
    const auto row = [&](const char *name) { return rows[QLatin1String(name)].toStdString(); };
    EXPECT_EQ(rows.size(), 7);
    EXPECT_EQ(row("sub-01_task-rest_space-T1w"), "done: n/a");
    EXPECT_EQ(
        row("sub-02_task-rest_space-T1w"),
        "excluded: too little is left of the run: 200 s, expected at least 240 s (100 volumes in "
        "the file, 0 non-steady, 0 censored, 100 kept, 200 s; design of rank 3, 97 degrees of "
        "freedom left; mean FD 0.107071 mm before, 0.107071 mm after)");
    EXPECT_EQ(row("sub-03_task-rest_space-T1w"), "missing: no table of confounds; found: none");
    EXPECT_THAT(
        row("sub-04_task-rest_space-T1w"),
        testing::MatchesRegex("failed: sub-04/func/"
                              "sub-04_task-rest_space-T1w_desc-preproc_bold\\.nii\\.gz: byte "
                              "[0-9]+: found the end of the file, expected more gzip data"));
    EXPECT_EQ(row("sub-05_task-rest_space-T1w"),
              "failed: sub-05/func/sub-05_task-rest_desc-confounds_timeseries.tsv: column "
              "framewise_displacement ends before row 129 (from 0): the table has "
              "129 rows: expected 130, one for each volume of the run");
    EXPECT_EQ(row("sub-06_task-rest"), "missing: no run of task-rest; found: task-work");
    EXPECT_EQ(row("sub-07_task-rest_space-T1w"), "done: n/a");
}

TEST(Cohort, EveryOddFolderIsARowOfTheTable)
{
    const TemporaryFolder folder;
    const SmallStudy odd(folder.path("data"));
    addOddParticipants(odd);
    const ProgramRun ran =
        runCorvane({QStringLiteral("cohort"), odd.path(), folder.path("out"), participantStep,
                    QStringLiteral("--atlas"), odd.addAtlas(), QStringLiteral("--clean"),
                    QStringLiteral("motion6"), QStringLiteral("--task-id"), QStringLiteral("rest"),
                    QStringLiteral("--min-seconds"), QStringLiteral("0")});
    EXPECT_EQ(ran.status, 1);
    QStringList rows;
    for (const QByteArray &line :
         bytesOf(folder.path("out/participants_connectome.tsv")).split('\n'))
        if (line.startsWith("sub-")) {
            const QList<QByteArray> cells = line.split('\t');
            rows += QString::fromUtf8(cells[4] + ": " + cells[6] + ": " + cells[16]);
        }
    std::vector<std::string> texts;
    for (const QString &row : rows)
        texts.push_back(row.toStdString());
    EXPECT_THAT(
        texts,
        ElementsAre("sub-01_task-rest_space-T1w: done: n/a",
                    "sub-02_task-rest_space-MNI152NLin6Asym: done: n/a",
                    "sub-02_task-rest_space-T1w: done: n/a",
                    "sub-03_task-rest_run-1_space-T1w: done: n/a",
                    "sub-03_task-rest_run-2_space-T1w: done: n/a",
                    "sub-04_task-rest_space-T1w: missing: no table of confounds; found: none",
                    "sub-05_task-rest: missing: no run of task-rest; found: task-nback",
                    "sub-06_task-rest_space-T1w: done: n/a",
                    testing::MatchesRegex(
                        "sub-07_task-rest_space-T1w: failed: "
                        "sub-07/func/sub-07_task-rest_space-T1w_desc-preproc_bold\\.nii\\.gz: byte "
                        "[0-9]+: found the end of the file, expected more gzip data"),
                    "sub-08_task-rest_space-T1w: failed: "
                    "sub-08/func/sub-08_task-rest_desc-confounds_timeseries.tsv: column trans_x "
                    "ends before row 39 (from 0): the table has 39 rows: expected 40, one for each "
                    "volume of the run",
                    "sub-09_ses-a_task-rest_space-T1w: done: n/a",
                    "sub-09_ses-b_task-rest_space-T1w: done: n/a"));
}

TEST(Cohort, ASecondCallMakesOnlyWhatIsMissingOrChanged)
{
    KnownStudy study;
    study.addParticipants(3);
    ASSERT_EQ(study.cohort(participantStep).status, 0);
    const auto first = KnownStudy::filesBelow(study.out());

    EXPECT_THAT(linesOf(study.cohort(participantStep).output),
                ElementsAre(study.out().toStdString() + ": 3 rows: 3 done"));

    const KnownRun second("02");
    QFile::remove(study.output(second, "motion.tsv"));
    EXPECT_THAT(linesOf(study.cohort(participantStep).output),
                ElementsAre(StartsWith("sub-02_task-rest_space-T1w_atlas-Four: done, 130 of 130"),
                            study.out().toStdString() + ": 3 rows: 3 done"));
    EXPECT_EQ(KnownStudy::filesBelow(study.out()), first);

    // A file of the same length and first bytes is another one if its time is.
    const QString table = study.file("03", "_desc-confounds_timeseries.tsv");
    setTime(table, QFileInfo(table).lastModified().addSecs(10));
    const ProgramRun plan = study.cohort(QStringLiteral("plan"));
    EXPECT_THAT(linesOf(plan.output),
                ElementsAre("sub-01_task-rest_space-T1w_atlas-Four: done",
                            "sub-02_task-rest_space-T1w_atlas-Four: done",
                            "sub-03_task-rest_space-T1w_atlas-Four: to do: changed: confounds",
                            study.out().toStdString() + ": 3 rows of 3 participants, 1 to do"));
    EXPECT_THAT(linesOf(study.cohort(participantStep).output),
                ElementsAre(StartsWith("sub-03_task"), testing::_));

    const ProgramRun other = study.cohort(
        participantStep, {QStringLiteral("--high-pass"), QStringLiteral("0.01"),
                          QStringLiteral("--participant-label"), QStringLiteral("01")});
    EXPECT_THAT(linesOf(other.output), ElementsAre(StartsWith("sub-01_task"), testing::_));
    EXPECT_THAT(
        linesOf(study.cohort(QStringLiteral("plan")).output),
        testing::Contains("sub-01_task-rest_space-T1w_atlas-Four: to do: changed: settings"));
}

TEST(Cohort, ARowThatIsNotDoneAnyMoreHasNoOutputs)
{
    KnownStudy study;
    study.addParticipants(2);
    ASSERT_EQ(study.cohort(participantStep).status, 0);
    const KnownRun run("01");
    EXPECT_TRUE(QFileInfo::exists(study.output(run, "motion.tsv")));
    EXPECT_EQ(
        study
            .cohort(participantStep, {QStringLiteral("--min-seconds"), QStringLiteral("261"),
                                      QStringLiteral("--participant-label"), QStringLiteral("01")})
            .status,
        0);
    EXPECT_EQ(KnownStudy::filesBelow(study.out() + QStringLiteral("/sub-01")).size(), 0);
    EXPECT_TRUE(QFileInfo::exists(study.output("02", "motion.tsv")));
}

TEST(Cohort, AFailedRowIsTriedAgainUnlessItIsToStay)
{
    KnownStudy study;
    KnownRun run("01");
    run.isBroken = true;
    study.add(run);
    study.add("02");
    EXPECT_EQ(study.cohort(participantStep).status, 1);
    EXPECT_THAT(linesOf(study.cohort(participantStep).output),
                testing::Contains(StartsWith("sub-01_task-rest_space-T1w_atlas-Four: failed")));
    EXPECT_THAT(linesOf(study.cohort(participantStep, {QStringLiteral("--keep-failed")}).output),
                ElementsAre(study.out().toStdString() + ": 2 rows: 1 done, 1 failed"));
}

TEST(Cohort, SeveralAtlasesWithTheirLabelsAndNames)
{
    KnownStudy study;
    study.addParticipants(1);
    const QString labels = study.path(QStringLiteral("names.tsv"));
    putBytes(labels, "index\tname\n1\tA\n2\tB\n3\tC\n4\tD\n");
    const ProgramRun ran = study.cohort(
        participantStep, {QStringLiteral("--atlas"), study.atlas(), QStringLiteral("--labels"),
                          labels, QStringLiteral("--atlas-name"), QStringLiteral("Named")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    const QString folder = study.out() + QStringLiteral("/sub-01/func/sub-01_task-rest_space-T1w_");
    EXPECT_THAT(
        bytesOf(folder + QStringLiteral("atlas-Named_stat-coverage_bold.tsv")).toStdString(),
        HasSubstr("\nA\t1\n"));
    EXPECT_THAT(bytesOf(folder + QStringLiteral("atlas-Four_stat-coverage_bold.tsv")).toStdString(),
                Not(HasSubstr("\nA\t1\n")));
    EXPECT_EQ(study.table().size(), 2);
}

TEST(Cohort, ConditionsAreThoseOfTheRunsOwnEvents)
{
    KnownStudy study;
    study.addParticipants(2);
    putBytes(study.file("01", "_events.tsv"), "onset\tduration\ttrial_type\n0\t60\twork\n");
    const ProgramRun ran = study.cohort(participantStep, {QStringLiteral("--events")});
    ASSERT_EQ(ran.status, 0) << ran.output.constData();
    const char *const name = "cond-work_stat-pearsoncorrelation_relmat.tsv";
    EXPECT_TRUE(QFileInfo::exists(study.output("01", name)));
    EXPECT_FALSE(QFileInfo::exists(study.output("02", name)));
}

TEST(Cohort, LabelsOptionsAndWordsInTheMannerOfBidsApps)
{
    KnownStudy study;
    study.addParticipants(3);
    const ProgramRun ran = study.cohort(
        participantStep, {QStringLiteral("--participant_label"), QStringLiteral("sub-01"),
                          QStringLiteral("03"), QStringLiteral("--task_id=task-rest"),
                          QStringLiteral("--min_seconds"), QStringLiteral("100")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_EQ(lastLine(ran.output), study.out().toStdString() + ": 2 rows: 2 done");
    EXPECT_FALSE(QFileInfo::exists(study.out() + QStringLiteral("/sub-02")));
    EXPECT_EQ(recordOf(study, "03")[QLatin1String("options")]
                  .toObject()[QLatin1String("min-seconds")]
                  .toString(),
              QStringLiteral("100"));
}

TEST(Cohort, WorksWithOneParticipantsFolderAlone)
{
    KnownStudy study;
    study.addParticipants(2);
    const auto label = [](const char *participant) {
        return QStringList{QStringLiteral("--participant-label"), QLatin1String(participant),
                           QStringLiteral("--no-collect")};
    };
    ASSERT_EQ(study.cohort(participantStep, label("01")).status, 0);
    QDir(study.dataset() + QStringLiteral("/sub-01")).removeRecursively();
    ASSERT_EQ(study.cohort(participantStep, label("02")).status, 0);
    EXPECT_FALSE(QFileInfo::exists(study.out() + QStringLiteral("/participants_connectome.tsv")));
    ASSERT_EQ(study.ofStudy({QStringLiteral("status"), QStringLiteral("--collect")}).status, 0);
    EXPECT_EQ(study.table().size(), 2);
}

TEST(Cohort, CommandLinesThatMakeNoSense)
{
    KnownStudy study;
    study.addParticipants(1);
    const auto error = [&](const QStringList &words) {
        const ProgramRun ran = runCorvane(QStringList{QStringLiteral("cohort")} + words);
        EXPECT_EQ(ran.status, 2) << ran.errors.constData();
        EXPECT_EQ(ran.errorLines(), 1);
        EXPECT_FALSE(QFileInfo::exists(study.out()));
        return ran.errors.trimmed().toStdString();
    };
    const QString data = study.dataset();
    const QString out = study.out();
    const QString atlas = QStringLiteral("--atlas=") + study.atlas();
    EXPECT_THAT(error({data, out, participantStep, atlas}),
                StartsWith("Corvane cohort: --clean is missing; expected one of: none, simple,"));
    EXPECT_THAT(error({data, out, participantStep, atlas, QStringLiteral("--clean=all")}),
                StartsWith("Corvane cohort: --clean: found \"all\", expected one of: none,"));
    EXPECT_EQ(error({data, out, participantStep, QStringLiteral("--clean=none")}),
              "Corvane cohort: --atlas is missing");
    EXPECT_EQ(error({data, out, participantStep, QStringLiteral("--clean=none"), atlas, atlas}),
              "Corvane cohort: two atlases are called \"Four\": --atlas-name behind one of them "
              "gives it another name");
    EXPECT_EQ(error({data, out, participantStep, QStringLiteral("--clean=none"),
                     QStringLiteral("--labels=x"), atlas}),
              "Corvane cohort: --labels stands before its --atlas");
    EXPECT_EQ(error({data, out, participantStep, QStringLiteral("--clean=none"), atlas,
                     QStringLiteral("--participant-label"), QStringLiteral("../01")}),
              "Corvane cohort: --participant-label: found \"../01\", expected a label");
    EXPECT_EQ(error({data, out, participantStep, QStringLiteral("--clean=none"), atlas,
                     QStringLiteral("--participant-label")}),
              "Corvane cohort: Missing value after '--participant-label'.");
    EXPECT_EQ(error({data, out, participantStep, QStringLiteral("--clean=none"), atlas,
                     QStringLiteral("--delay=2")}),
              "Corvane cohort: --delay goes with --events, which is missing");
    EXPECT_EQ(error({data, out, participantStep, QStringLiteral("--clean=none"), atlas,
                     QStringLiteral("--nprocs=0")}),
              "Corvane cohort: --nprocs: found \"0\", expected a whole number of 1 or more");
    EXPECT_EQ(error({data, out, QStringLiteral("plan"), QStringLiteral("--clean=none"), atlas,
                     QStringLiteral("--all")}),
              "Corvane cohort: --all does not go with plan");
    EXPECT_EQ(error({out, QStringLiteral("status"), QStringLiteral("--clean=none")}),
              "Corvane cohort: --clean does not go with status");
    EXPECT_EQ(error({data, out}), "Corvane cohort: participant, plan or group is missing");
    EXPECT_EQ(error({data, out, QStringLiteral("everything")}),
              "Corvane cohort: found \"everything\", expected participant, plan or group behind "
              "BIDS_DIR and OUT, or status or verify behind OUT");
}

TEST(Cohort, APlanIsAskedForByTheCommandLineOfWhatItPlans)
{
    KnownStudy study;
    study.addParticipants(1);
    const ProgramRun ran =
        study.cohort(QStringLiteral("plan"),
                     {QStringLiteral("--nprocs"), QStringLiteral("2"), QStringLiteral("--slurm"),
                      QStringLiteral("--sbatch-options"), QStringLiteral("--partition=a_b -t 5")});
    EXPECT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_FALSE(QFileInfo::exists(study.out()));
}

TEST(Cohort, AFolderWithAnotherDatasetStaysAsItIs)
{
    KnownStudy study;
    study.addParticipants(1);
    const auto before = KnownStudy::filesBelow(study.dataset());
    QStringList arguments = study.arguments(participantStep);
    arguments[2] = study.dataset() + QStringLiteral("/.");
    const ProgramRun same = runCorvane(arguments);
    EXPECT_EQ(same.status, 2);
    EXPECT_EQ(same.errors, "Corvane cohort: OUT is the dataset: the results need another folder\n");

    QDir().mkpath(study.out());
    putBytes(study.out() + QStringLiteral("/dataset_description.json"),
             bytesOf(study.dataset() + QStringLiteral("/dataset_description.json")));
    const ProgramRun other = study.cohort(participantStep);
    EXPECT_EQ(other.status, 1);
    EXPECT_THAT(other.errors.toStdString(),
                HasSubstr("GeneratedBy: found \"pipeline\", expected a folder of its own for the "
                          "results"));
    EXPECT_EQ(KnownStudy::filesBelow(study.dataset()), before);
    EXPECT_EQ(KnownStudy::filesBelow(study.out()).size(), 1);
}

TEST(Cohort, AFullDiskIsAReason)
{
    KnownStudy study;
    study.addParticipants(2);
    // No file may have more than 4 kB: series have, records have not.
    const QString limited = QStringLiteral("ulimit -f 8; exec \"$0\" \"$@\"");
    const ProgramRun ran =
        runProgram(QStringLiteral("/bin/sh"),
                   QStringList{QStringLiteral("-c"), limited, QStringLiteral(CORVANE_PROGRAM)} +
                       study.arguments(participantStep));
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(lastLine(ran.output), HasSubstr("2 rows: 2 failed"));
    EXPECT_THAT(linesOf(ran.output), testing::Contains(testing::AllOf(
                                         StartsWith("sub-02_"), HasSubstr("File too large"))));
    EXPECT_EQ(KnownStudy::filesBelow(study.out() + QStringLiteral("/sub-01")).size(), 0);
    EXPECT_EQ(study.cohort(participantStep).status, 0);
}

TEST(Cohort, NoRunsAtAllIsAnError)
{
    KnownStudy study;
    EXPECT_EQ(study.cohort(participantStep).status, 1);
    study.addParticipants(1);
    const ProgramRun ran =
        study.cohort(participantStep, {QStringLiteral("--participant-label"), QStringLiteral("7")});
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.errors.toStdString(),
              "Corvane cohort: no run was found in " + study.dataset().toStdString() + "\n");
    EXPECT_THAT(linesOf(ran.output),
                testing::Contains("sub-7_atlas-Four: missing: no folder sub-7"));
}

TEST(Cohort, AFolderThatCannotBeWrittenIsAnError)
{
    KnownStudy study;
    study.addParticipants(2);
    putBytes(study.out(), "a file");
    const ProgramRun ran = study.cohort(participantStep);
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(ran.errors.toStdString(), StartsWith("Corvane: " + study.out().toStdString()));
    EXPECT_EQ(ran.errorLines(), 1);
}

TEST(CohortPages, OfARunItsParticipantAndTheStudyLeadToEachOther)
{
    KnownStudy study;
    study.add("01");
    KnownRun broken("02");
    broken.isBroken = true;
    study.add(broken);
    QStringList arguments = study.arguments(participantStep);
    arguments.removeAll(QStringLiteral("--no-pages"));
    EXPECT_EQ(runCorvane(arguments).status, 1);
    const auto page = [&](const char *name) {
        return bytesOf(study.out() + QLatin1Char('/') + QLatin1String(name)).toStdString();
    };
    EXPECT_THAT(page("index.html"), HasSubstr("href=\"sub-01.html\""));
    EXPECT_THAT(page("index.html"), HasSubstr("Small - connectomes"));
    const char *const run = "sub-01/func/sub-01_task-rest_space-T1w_atlas-Four_report.html";
    EXPECT_THAT(page("sub-01.html"), HasSubstr(std::string("href=\"") + run + "\""));
    EXPECT_THAT(page("sub-02.html"), HasSubstr("found the end of the file"));

    const QString folder = study.path(QStringLiteral("one"));
    const QStringList more{QStringLiteral("--min-seconds"), QStringLiteral("240"),
                           QStringLiteral("--dataset-root"), study.dataset(),
                           QStringLiteral("--page")};
    ASSERT_EQ(runCorvane(study.connectome("01", folder) + more).status, 0);
    EXPECT_EQ(KnownStudy::filesBelow(study.out() + QStringLiteral("/sub-01/func")),
              KnownStudy::filesBelow(folder));
    EXPECT_EQ(study.ofStudy({QStringLiteral("verify")}).status, 0);

    // A second call leaves all pages as they are.
    const QDateTime time = QFileInfo(study.out() + QStringLiteral("/sub-01.html")).lastModified();
    EXPECT_EQ(runCorvane(arguments).status, 1);
    EXPECT_EQ(QFileInfo(study.out() + QStringLiteral("/sub-01.html")).lastModified(), time);
}

TEST(CohortPages, AreMadeLaterOfRowsThatHadNone)
{
    KnownStudy study;
    study.addParticipants(1);
    ASSERT_EQ(study.cohort(participantStep).status, 0);
    EXPECT_FALSE(QFileInfo::exists(study.out() + QStringLiteral("/index.html")));
    QStringList arguments = study.arguments(participantStep);
    arguments.removeAll(QStringLiteral("--no-pages"));
    EXPECT_THAT(linesOf(runCorvane(arguments).output),
                testing::Contains(StartsWith("sub-01_task")));
    EXPECT_TRUE(QFileInfo::exists(study.output("01", "report.html")));
    EXPECT_TRUE(QFileInfo::exists(study.out() + QStringLiteral("/index.html")));
    EXPECT_THAT(linesOf(study.cohort(participantStep).output),
                ElementsAre(study.out().toStdString() + ": 1 row: 1 done"));
}

TEST(Cohort, TheDescriptionIsOfADerivativeOfTheDataset)
{
    KnownStudy study;
    study.addParticipants(1);
    ASSERT_EQ(study.cohort(participantStep).status, 0);
    const QJsonObject description =
        QJsonDocument::fromJson(bytesOf(study.out() + QStringLiteral("/dataset_description.json")))
            .object();
    EXPECT_EQ(description[QLatin1String("DatasetType")].toString(), QStringLiteral("derivative"));
    const QJsonArray generators = description[QLatin1String("GeneratedBy")].toArray();
    ASSERT_EQ(generators.size(), 2);
    EXPECT_EQ(generators[0].toObject()[QLatin1String("Name")].toString(),
              QStringLiteral("Corvane"));
    EXPECT_EQ(generators[1].toObject()[QLatin1String("Name")].toString(),
              QStringLiteral("pipeline"));
    EXPECT_EQ(
        description[QLatin1String("DatasetLinks")].toObject()[QLatin1String("input")].toString(),
        QStringLiteral("../data"));
}

TEST(Cohort, RecordsAreAsTheirSchemaSays)
{
    KnownStudy study;
    study.add("01");
    KnownRun run("02");
    run.isBroken = true;
    study.add(run);
    run = "03";
    run.volumes = run.confoundRows = 50;
    study.add(run);
    run = "04";
    run.hasConfounds = false;
    study.add(run);
    ASSERT_EQ(study.cohort(participantStep).status, 1);
    const QJsonObject schema =
        QJsonDocument::fromJson(
            bytesOf(QStringLiteral(SCHEMA_FOLDER) + QStringLiteral("/cohort-row.schema.json")))
            .object();
    ASSERT_FALSE(schema.isEmpty());
    for (const char *participant : {"01", "02", "03", "04"}) {
        const QJsonObject record = recordOf(study, participant);
        EXPECT_FALSE(record.isEmpty());
        EXPECT_EQ(schemaFaults(record, schema), QStringList()) << participant;
    }
}

TEST(CohortStatus, CountsAndTellsWhatIsNotDone)
{
    KnownStudy study;
    study.addParticipants(3);
    ASSERT_EQ(study.cohort(participantStep).status, 0);
    const QString folder =
        study.out() + QStringLiteral("/sub-02/func/.corvane-row-sub-02_task-rest_"
                                     "space-T1w_atlas-Four");
    FileLock lock(folder + QStringLiteral(".lock"));
    ASSERT_TRUE(lock.take());
    QFile::remove(study.out() +
                  QStringLiteral("/sub-03/func/.corvane-row-sub-03_task-rest_space-T1w_"
                                 "atlas-Four.json"));
    const ProgramRun ran = study.ofStudy({QStringLiteral("status")});
    EXPECT_EQ(ran.status, 0);
    EXPECT_THAT(linesOf(ran.output),
                ElementsAre(StartsWith("sub-02_task-rest_space-T1w_atlas-Four: in work, process "),
                            study.out().toStdString() + ": 3 rows: 1 done, 1 in work, 1 open"));
    const ProgramRun none =
        runCorvane({QStringLiteral("cohort"), study.dataset() + QStringLiteral("/none"),
                    QStringLiteral("status")});
    EXPECT_EQ(none.status, 1);
    EXPECT_THAT(none.errors.toStdString(),
                HasSubstr("expected a folder that Corvane cohort has written to"));
}

TEST(CohortLock, ARowThatAnotherProcessHasIsPassedOver)
{
    KnownStudy study;
    study.addParticipants(2);
    QDir().mkpath(study.out() + QStringLiteral("/sub-01/func"));
    FileLock lock(study.out() +
                  QStringLiteral("/sub-01/func/.corvane-row-sub-01_task-rest_space-T1w_"
                                 "atlas-Four.lock"));
    ASSERT_TRUE(lock.take());
    const ProgramRun ran = study.cohort(participantStep);
    EXPECT_EQ(ran.status, 0) << ran.output.constData();
    EXPECT_THAT(linesOf(ran.output),
                testing::Contains(
                    StartsWith("sub-01_task-rest_space-T1w_atlas-Four: passed over, process " +
                               QString::number(thisProcess().number).toStdString() + " on ")));
    EXPECT_EQ(lastLine(ran.output), study.out().toStdString() + ": 2 rows: 1 done, 1 in work");
}

TEST(CohortVerify, FindsOutputsAndInputsThatAreOthers)
{
    KnownStudy study;
    study.addParticipants(3);
    KnownRun shorter("04");
    shorter.volumes = shorter.confoundRows = 50;
    study.add(shorter);
    ASSERT_EQ(study.cohort(participantStep).status, 0);
    const auto before = KnownStudy::filesBelow(study.out());
    const std::string out = study.out().toStdString();
    const auto verify = [&](const char *option) {
        return study.ofStudy({QStringLiteral("verify"), QLatin1String(option)});
    };
    EXPECT_THAT(linesOf(verify("--all").output),
                ElementsAre(out + ": 4 rows computed again, 0 differ"));
    EXPECT_THAT(linesOf(verify("--sample=2").output),
                ElementsAre(out + ": 2 rows computed again, 0 differ"));
    EXPECT_THAT(linesOf(verify("--inputs").output),
                ElementsAre(out + ": inputs of 4 rows read, 0 differ"));
    EXPECT_EQ(KnownStudy::filesBelow(study.out()), before);

    const KnownRun second("02");
    const QString output = study.output(second, "motion.tsv");
    putBytes(output, bytesOf(output).replace('1', '2'));
    const ProgramRun ran = verify("--all");
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(linesOf(ran.output),
                ElementsAre("sub-02_task-rest_space-T1w_atlas-Four_motion.tsv: differs",
                            out + ": 4 rows computed again, 1 differ"));

    // The last byte of a run: nothing but its sum tells.
    const QString input = study.file("03", "_desc-confounds_timeseries.tsv");
    const QDateTime time = QFileInfo(input).lastModified();
    QByteArray bytes = bytesOf(input);
    bytes[bytes.size() - 2] = bytes[bytes.size() - 2] == '1' ? '2' : '1';
    putBytes(input, bytes);
    setTime(input, time);
    const ProgramRun inputs = verify("--inputs");
    EXPECT_EQ(inputs.status, 1);
    EXPECT_THAT(linesOf(inputs.output),
                ElementsAre("sub-03_task-rest_space-T1w_atlas-Four: " + input.toStdString() +
                                ": is another file than the one that was read",
                            out + ": inputs of 4 rows read, 1 differ"));
}

} // namespace
} // namespace corvane
