// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/support/host_files.h"
#include "tests/host/support/interrupted_program.h"
#include "tests/host/support/program.h"

#include <QDirIterator>

namespace corvane
{
namespace
{

qint64 sizeOf(const QString &folder)
{
    qint64 size = 0;
    QDirIterator iterator(folder, QDir::Files, QDirIterator::Subdirectories);
    while (iterator.hasNext())
        size += QFileInfo(iterator.next()).size();
    return size;
}

std::string firstLine(const QByteArray &text)
{
    return text.split('\n').front().toStdString();
}

ProgramRun exampleStudy(const QStringList &further)
{
    return runCorvane(QStringList{QStringLiteral("example"), QStringLiteral("--study")} + further);
}

TEST(ExampleStudyCommand, WritesTwentyFourParticipantsInLessThanSixtyMegabytes)
{
    const TemporaryFolder folder;
    const QString study = folder.path("a/study");
    const ProgramRun run = exampleStudy({study});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.output,
              study.toUtf8() + ": 24 participants, 96 runs of 160 volumes, an atlas of 38 nodes\n");
    EXPECT_LT(sizeOf(study), 60000000);
    const QList<QByteArray> rows = bytesOf(study + "/participants.tsv").split('\n');
    ASSERT_EQ(rows.size(), 26); // with names, and nothing behind the last
    EXPECT_EQ(rows[0], "participant_id\tgroup\tage\tsex");
    int patients = 0;
    for (int row = 1; row <= 24; ++row) {
        const QList<QByteArray> cells = rows[row].split('\t');
        ASSERT_EQ(cells.size(), 4);
        EXPECT_TRUE(QDir(study).exists(cells[0])) << cells[0].constData();
        patients += cells[1] == "Patient";
        EXPECT_GE(cells[2].toInt(), 18);
        EXPECT_LE(cells[2].toInt(), 50);
    }
    EXPECT_EQ(patients, 12);
}

TEST(ExampleStudyCommand, MakesItSmaller)
{
    const TemporaryFolder folder;
    const ProgramRun run =
        exampleStudy({QStringLiteral("--subjects"), QStringLiteral("4"), folder.path("study")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(QDir(folder.path("study")).entryList({QStringLiteral("sub-*")}),
              (QStringList{"sub-01", "sub-02", "sub-03", "sub-04"}));
}

TEST(ExampleStudyCommand, RefusesNumbersThatAreNoStudy)
{
    const TemporaryFolder folder;
    for (const char *number : {"3", "0", "-2", "26", "two", "2.0", ""}) {
        const ProgramRun run = exampleStudy(
            {QStringLiteral("--subjects=") + QLatin1String(number), folder.path("study")});
        EXPECT_EQ(run.status, 2) << number;
        EXPECT_EQ(firstLine(run.errors), std::string("Corvane example: --subjects: found \"") +
                                             number + "\", expected an even number from 2 to 24");
    }
    const ProgramRun run = runCorvane({QStringLiteral("example"), QStringLiteral("--subjects"),
                                       QStringLiteral("2"), folder.path("study")});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(firstLine(run.errors), "Corvane example: --subjects: only for --study");
    EXPECT_EQ(exampleStudy({}).status, 2);
    EXPECT_TRUE(folder.entries().isEmpty());
}

TEST(ExampleStudyCommand, RefusesAFolderWithAnythingInIt)
{
    const TemporaryFolder folder;
    putBytes(folder.path("notes.txt"), "mine");
    const ProgramRun run = exampleStudy({folder.path()});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "Corvane: " + folder.path().toUtf8() +
                              ": output folder: found a folder that holds \"notes.txt\", expected "
                              "an empty folder, or one that is not there yet\n");
    EXPECT_EQ(folder.entries(), QStringList{"notes.txt"});
}

TEST(ExampleStudyCommand, LeavesNothingOnAFullDisk)
{
    const TemporaryFolder folder;
    const ProgramRun run =
        runProgram(QStringLiteral("prlimit"),
                   {QStringLiteral("--fsize=300000"), QStringLiteral(CORVANE_PROGRAM),
                    QStringLiteral("example"), QStringLiteral("--study"), folder.path("study")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errorLines(), 1) << run.errors.constData();
    EXPECT_TRUE(folder.entries().isEmpty());
}

/// Ends the command by a signal when it has begun to write runs.
InterruptedRun interrupted(const QString &study, int signal)
{
    const auto begun = [&study] {
        return isInWork(study, QStringLiteral("sub-02/ses-b/func")) &&
               sizeOf(study + QLatin1Char('/') + hiddenIn(study).front()) > 1000000;
    };
    return runInterrupted(QStringLiteral(CORVANE_PROGRAM),
                          {QStringLiteral("example"), QStringLiteral("--study"), study},
                          {{signal, begun}});
}

TEST(ExampleStudyCommand, LeavesNothingWhenASignalEndsIt)
{
    const TemporaryFolder folder;
    EXPECT_EQ(interrupted(folder.path("study"), SIGTERM).signal, SIGTERM);
    EXPECT_TRUE(folder.entries().isEmpty());
}

TEST(ExampleStudyCommand, ClearsAwayWhatAKilledOneLeft)
{
    const TemporaryFolder folder;
    const QString study = folder.path("study");
    EXPECT_EQ(interrupted(study, SIGKILL).signal, SIGKILL);
    EXPECT_EQ(hiddenIn(study).size(), 1);
    EXPECT_EQ(exampleStudy({QStringLiteral("--subjects"), QStringLiteral("2"), study}).status, 0);
    EXPECT_EQ(namesIn(study).size(), 8);
    EXPECT_EQ(hiddenIn(study).size(), 0);
}

} // namespace
} // namespace corvane
