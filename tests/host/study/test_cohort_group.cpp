// SPDX-License-Identifier: GPL-3.0-or-later
// Corvane cohort ... group on the example study, of which it is known where its groups differ.
#include "tests/host/support/host_files.h"
#include "tests/host/support/interrupted_program.h"
#include "tests/host/support/program.h"

#include <QDir>
#include <QMap>
#include <QSet>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

using testing::HasSubstr;

using Row = QMap<QByteArray, QByteArray>;

QList<Row> rowsOf(const QString &path)
{
    QList<QByteArray> lines = bytesOf(path).split('\n');
    const QList<QByteArray> names = lines.takeFirst().split('\t');
    QList<Row> rows;
    for (const QByteArray &line : lines) {
        const QList<QByteArray> cells = line.split('\t');
        if (cells.size() != names.size())
            continue;
        Row row;
        for (int column = 0; column < names.size(); ++column)
            row[names[column]] = cells[column];
        rows += row;
    }
    return rows;
}

QByteArray pairOf(QByteArray a, QByteArray b)
{
    return a < b ? a + " - " + b : b + " - " + a;
}

/// The study with its rows, made once.
class CohortGroup : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_folder = std::make_unique<TemporaryFolder>();
        ASSERT_EQ(
            runCorvane({QStringLiteral("example"), QStringLiteral("--study"), study()}).status, 0);
        const ProgramRun ran = runCorvane(participants(out()));
        ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    }
    static void TearDownTestSuite() { s_folder.reset(); }

    static QString study() { return s_folder->path("study"); }
    static QString out() { return s_folder->path("out"); }
    static QString atlas(const char *ending)
    {
        const QDir folder(study() + QStringLiteral("/atlas"));
        return folder.filePath(folder.entryList({QLatin1String("*") + QLatin1String(ending)})[0]);
    }
    /// The command line that makes the rows of the study.
    static QStringList participants(const QString &out)
    {
        return {QStringLiteral("cohort"),
                study(),
                out,
                QStringLiteral("participant"),
                QStringLiteral("--no-pages"),
                QStringLiteral("--task-id"),
                QStringLiteral("rest"),
                QStringLiteral("--clean"),
                QStringLiteral("36P"),
                QStringLiteral("--atlas"),
                atlas(".nii.gz"),
                QStringLiteral("--labels"),
                atlas(".tsv")};
    }
    static QString result(const char *name) { return out() + "/group/" + QLatin1String(name); }

    static ProgramRun group(const QStringList &options)
    {
        return runCorvane(
            QStringList{QStringLiteral("cohort"), study(), out(), QStringLiteral("group")} +
            options);
    }
    static QStringList patients()
    {
        return {QStringLiteral("--formula"), QStringLiteral("group + age + mean_fd"),
                QStringLiteral("--contrast"), QStringLiteral("patients=group[Patient]")};
    }

    static std::unique_ptr<TemporaryFolder> s_folder;
};

std::unique_ptr<TemporaryFolder> CohortGroup::s_folder;

TEST_F(CohortGroup, FindsTheEdgesInWhichTheGroupsDifferAndLessMotionAfterCleaning)
{
    const ProgramRun ran =
        group(patients() + QStringList{QStringLiteral("--session-id"), QStringLiteral("ses-a"),
                                       QStringLiteral("--test"), QStringLiteral("nbs,qcfc"),
                                       QStringLiteral("--threshold"), QStringLiteral("3.1"),
                                       QStringLiteral("--permutations"), QStringLiteral("1000"),
                                       QStringLiteral("--centroids"), atlas(".tsv"),
                                       QStringLiteral("--plots"), QStringLiteral("--page")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_THAT(ran.output.toStdString(), HasSubstr("/group: 24 rows, 38 nodes, 2 tests"));

    QSet<QByteArray> planted;
    for (const Row &edge : rowsOf(study() + "/planted_edges.tsv"))
        planted.insert(pairOf(edge["node_a"], edge["node_b"]));
    ASSERT_EQ(planted.size(), 20);
    QSet<QByteArray> found;
    for (const Row &edge : rowsOf(result("edges.tsv")))
        if (std::abs(edge["t"].toDouble()) > 3.1)
            found.insert(pairOf(edge["node_1"], edge["node_2"]));
    EXPECT_EQ(found, planted);

    QMap<QByteArray, int> edgesOfSide;
    for (const Row &network : rowsOf(result("components.tsv")))
        if (network["p_extent"].toDouble() <= 0.05)
            edgesOfSide[network["side"]] += network["edges"].toInt();
    EXPECT_EQ(edgesOfSide, (QMap<QByteArray, int>{{"greater", 12}, {"less", 8}}));

    QMap<QByteArray, double> shares;
    for (const Row &row : rowsOf(result("qcfc_summary.tsv")))
        shares[row["data"]] = row["share_p_below_05"].toDouble();
    EXPECT_LT(shares["cleaned"], 0.08);
    EXPECT_GT(shares["uncleaned"], 0.1);
    for (const char *name :
         {"contrast_1_networks_1.png", "qcfc_cleaned.png", "qcfc_uncleaned.png", "group.html"})
        EXPECT_TRUE(QFile::exists(result(name))) << name;
}

TEST_F(CohortGroup, TakesAllSessionsToTellHowWellEdgesRepeat)
{
    const QString folder = study() + QStringLiteral("/../reliability");
    const ProgramRun ran = group({QStringLiteral("--test"), QStringLiteral("icc,fingerprint"),
                                  QStringLiteral("--group-out"), folder});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_THAT(ran.output.toStdString(), HasSubstr("48 rows"));
    EXPECT_EQ(rowsOf(folder + "/icc.tsv").size(), 38 * 37 / 2);
}

/// What a group's folder holds, without the name of the study's.
QMap<QString, QByteArray> filesOf(const QString &out)
{
    QMap<QString, QByteArray> files;
    const QDir folder(out + QStringLiteral("/group"));
    for (const QString &name : folder.entryList(QDir::Files))
        files[name] = bytesOf(folder.filePath(name)).replace(out.toUtf8(), "OUT");
    return files;
}

TEST_F(CohortGroup, FollowsItsRowsAtOnceAndIsTheSameAfterABreakAndOnTwoThreads)
{
    const QStringList asked =
        patients() + QStringList{QStringLiteral("--session-id=a"), QStringLiteral("--test=nbs"),
                                 QStringLiteral("--threshold=3"),
                                 QStringLiteral("--permutations=2000"), QStringLiteral("--page")};
    ASSERT_EQ(group(asked + QStringList{QStringLiteral("--threads=1")}).status, 0);
    const auto wanted = filesOf(out());
    ASSERT_TRUE(wanted.contains(QStringLiteral("group.html")));

    const QString again = s_folder->path("again");
    const QStringList words = participants(again) + QStringList{QStringLiteral("--then-group")} +
                              asked + QStringList{QStringLiteral("--threads=2")};
    const QDir participant(again + QStringLiteral("/sub-02/ses-a/func"));
    const InterruptedRun broken =
        runInterrupted(QStringLiteral(CORVANE_PROGRAM), words,
                       {{SIGTERM, [&] { return !participant.isEmpty(QDir::Files); }}});
    EXPECT_EQ(broken.signal, SIGTERM) << broken.errors;
    EXPECT_FALSE(QFile::exists(again + QStringLiteral("/group")));
    // Once more broken off, while the group is tested.
    const InterruptedRun late = runInterrupted(
        QStringLiteral(CORVANE_PROGRAM), words,
        {{SIGTERM, [&] { return QFile::exists(again + "/participants_connectome.tsv"); }}});
    EXPECT_EQ(late.signal, SIGTERM) << late.errors;
    EXPECT_EQ(hiddenIn(again), QStringList());

    const ProgramRun ran = runCorvane(words);
    EXPECT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_THAT(ran.output.toStdString(), HasSubstr(": 48 rows: 48 done\n"));
    EXPECT_THAT(ran.output.toStdString(), HasSubstr("/group: 24 rows, 38 nodes, 1 test"));
    EXPECT_EQ(filesOf(again), wanted);
}

TEST_F(CohortGroup, WhatIsToFollowIsReadBeforeAnythingIsComputed)
{
    const QString never = s_folder->path("never");
    const auto refusal = [&](const QStringList &before, const QStringList &after) {
        const ProgramRun ran = runCorvane(participants(never) + before +
                                          QStringList{QStringLiteral("--then-group")} + after);
        EXPECT_EQ(ran.status, 2);
        EXPECT_EQ(ran.errorLines(), 1) << ran.errors.constData();
        return ran.errors.toStdString();
    };
    EXPECT_THAT(refusal({}, {}), HasSubstr("--formula is missing"));
    EXPECT_THAT(refusal({}, {QStringLiteral("--nprocs=2")}),
                HasSubstr("--nprocs does not go with group"));
    EXPECT_THAT(refusal({}, patients() + QStringList{QStringLiteral("--measure=loud")}),
                HasSubstr("--measure: found"));
    EXPECT_THAT(refusal({}, patients() + QStringList{QStringLiteral("here")}),
                HasSubstr("unexpected argument"));
    EXPECT_THAT(refusal({}, patients() + QStringList{QStringLiteral("--then-group")}),
                HasSubstr("--then-group does not go with group"));
    EXPECT_THAT(refusal({QStringLiteral("--no-collect")}, patients()),
                HasSubstr("--then-group does not go with --no-collect"));
    EXPECT_FALSE(QFile::exists(never));
    const ProgramRun status =
        runCorvane(QStringList{QStringLiteral("cohort"), out(), QStringLiteral("status"),
                               QStringLiteral("--then-group")} +
                   patients());
    EXPECT_EQ(status.status, 2);
    EXPECT_THAT(status.errors.toStdString(), HasSubstr("--then-group does not go with status"));
}

TEST_F(CohortGroup, WhatCannotBeIsOneLine)
{
    const auto refusal = [](const QStringList &options, int status) {
        const ProgramRun ran = group(options);
        EXPECT_EQ(ran.status, status);
        EXPECT_EQ(ran.errorLines(), 1) << ran.errors.constData();
        return ran.errors.toStdString();
    };
    EXPECT_THAT(refusal(patients(), 1),
                HasSubstr("session_id: found a, b, expected one of them, by --session-id"));
    EXPECT_THAT(refusal(patients() + QStringList{QStringLiteral("--session-id=a"),
                                                 QStringLiteral("--atlas-name=Other")},
                        1),
                HasSubstr("found none of that kind, expected atlas-name Example38"));
    EXPECT_THAT(refusal(patients() + QStringList{QStringLiteral("--nprocs=2")}, 2),
                HasSubstr("--nprocs does not go with group"));
    EXPECT_THAT(refusal(patients() + QStringList{QStringLiteral("--clean=36P")}, 2),
                HasSubstr("--clean does not go with group"));
    EXPECT_THAT(refusal(patients() + QStringList{QStringLiteral("--session-id"),
                                                 QStringLiteral("a"), QStringLiteral("b")},
                        2),
                HasSubstr("--session-id: found a b, expected one label"));
    EXPECT_THAT(refusal(patients() + QStringList{QStringLiteral("--measure=loud")}, 2),
                HasSubstr("--measure: found \"loud\", expected one of: pearson"));
    EXPECT_THAT(refusal(patients() + QStringList{QStringLiteral("--session-id=a"),
                                                 QStringLiteral("--measure=partial")},
                        1),
                HasSubstr("_relmat.tsv"));
    EXPECT_THAT(refusal({}, 2), HasSubstr("--formula is missing"));
    const ProgramRun plan =
        runCorvane({QStringLiteral("cohort"), study(), out(), QStringLiteral("plan"),
                    QStringLiteral("--clean=none"), QStringLiteral("--atlas=") + atlas(".nii.gz"),
                    QStringLiteral("--formula=group")});
    EXPECT_EQ(plan.status, 2);
    EXPECT_THAT(plan.errors.toStdString(), HasSubstr("--formula does not go with plan"));
}

} // namespace

} // namespace corvane
