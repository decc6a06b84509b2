// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a user sees at a terminal of commands that may take long: their steps, one after the other,
// and that Ctrl-C ends them. Numbers of nodes and permutations are such that a command would run
// for many seconds if nobody interrupted it.
#include "host/files/progress.h"
#include "tests/host/group/group_study.h"
#include "tests/host/support/small_study.h"
#include "tests/host/support/terminal_run.h"

#include <csignal>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::ElementsAre;
using testing::EndsWith;

class Progress : public Group
{
protected:
    /// A table of courses, and its path.
    QString series(int nodes, int volumes) const
    {
        RandomNumbers random(7);
        QByteArray text;
        for (int n = 0; n < nodes; ++n)
            text += (n > 0 ? "\tn" : "n") + QByteArray::number(n);
        for (int t = 0; t < volumes; ++t)
            for (int n = 0; n < nodes; ++n)
                text += (n > 0 ? '\t' : '\n') + QByteArray::number(random.normal(), 'f', 4);
        write(QStringLiteral("series.tsv"), text + '\n');
        return path(QStringLiteral("series.tsv"));
    }

    /// A matrix without zeros, and its path.
    QString graph(int nodes) const
    {
        RandomNumbers random(8);
        Eigen::RowVectorXd edges(nodes * (nodes - 1) / 2);
        for (double &edge : edges)
            edge = 0.01 + 0.9 * random.uniform();
        writeMatrix(QStringLiteral("graph.tsv"), edges);
        return path(QStringLiteral("graph.tsv"));
    }

    /// Forty participants of two groups with matrices of many nodes.
    void writeLargeGroup() const
    {
        RandomNumbers random(9);
        QByteArray table = "participant_id\tmatrix\tgroup\n";
        for (int i = 0; i < 40; ++i) {
            Eigen::RowVectorXd edges(780);
            for (double &edge : edges)
                edge = std::tanh(0.2 * random.normal());
            const QByteArray number = QByteArray::number(i);
            writeMatrix(QStringLiteral("m%1.tsv").arg(i), edges);
            table += "sub-" + number + "\tm" + number + ".tsv\t" + (i % 2 == 0 ? "A" : "B") + '\n';
        }
        writeTable(table);
    }

    /// A table of maps, and its path.
    QString map() const
    {
        QByteArray text = "name\tvalue\n";
        RandomNumbers random(10);
        for (int n = 0; n < 200; ++n)
            text += 'n' + QByteArray::number(n) + '\t' + QByteArray::number(random.normal()) + '\n';
        write(QStringLiteral("map.tsv"), text);
        return path(QStringLiteral("map.tsv"));
    }

    QStringList corvane(const char *words, const QStringList &files,
                        const QString &outFolder = {}) const
    {
        QStringList all{QStringLiteral(CORVANE_PROGRAM)};
        all += QString::fromUtf8(words).split(QLatin1Char(' ')) + files;
        if (!outFolder.isEmpty())
            all += {QStringLiteral("--out"), out(outFolder)};
        return all;
    }

    /// The steps of a command that does what it should.
    QByteArrayList stepsOf(const QStringList &words) const
    {
        const TerminalRun run = runOnTerminal(words);
        EXPECT_EQ(run.status, 0) << run.shown.toStdString();
        return progressSteps(run.shown);
    }

    /// A command would take long, and ends at Ctrl-C without leaving anything.
    void expectInterrupted(const QStringList &words, const QByteArray &step) const
    {
        const QStringList before = QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden);
        const TerminalRun run = runOnTerminal(words, progressLine + step);
        EXPECT_EQ(run.status, 128 + SIGINT) << run.shown.toStdString();
        EXPECT_THAT(run.shown.toStdString(),
                    EndsWith(std::string(progressLine) + "Corvane: interrupted\r\n"));
        EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden), before);
    }
};

TEST_F(Progress, NamesTheStepsOfACompute)
{
    const QStringList table{QStringLiteral("--timeseries"), series(12, 30)};
    EXPECT_THAT(
        stepsOf(corvane("compute", table, QStringLiteral("a"))),
        ElementsAre("reading", "correlation", "spanning trees", "writing", "graph measures"));
    EXPECT_THAT(stepsOf(corvane("compute --no-mst --measure partial-correlation", table,
                                QStringLiteral("b"))),
                ElementsAre("reading", "partial-correlation", "writing", "graph measures"));
}

TEST_F(Progress, NamesTheStepsOfAGraph)
{
    EXPECT_THAT(stepsOf(corvane("graph --mst --measures degree,local_efficiency", {graph(12)},
                                QStringLiteral("a"))),
                ElementsAre("reading", "Degree", "Local efficiency", "spanning tree"));
}

TEST_F(Progress, NamesTheStepsOfDistances)
{
    EXPECT_THAT(stepsOf(corvane("distance --mst", {graph(12), graph(12)})),
                ElementsAre("reading", "spanning trees", "distances"));
}

TEST_F(Progress, NamesTheStepsOfAComparison)
{
    EXPECT_THAT(stepsOf(corvane("compare --permutations 99", {map(), map()})),
                ElementsAre("testing"));
}

TEST_F(Progress, NamesTheStepsOfAGroup)
{
    writeStudy();
    QStringList words = arguments({QStringLiteral("--formula"), QStringLiteral("group"),
                                   QStringLiteral("--contrast"), QStringLiteral("c=group[Patient]"),
                                   QStringLiteral("--permutations"), QStringLiteral("99"),
                                   QStringLiteral("--test"), QStringLiteral("glm,distance")});
    words.prepend(QStringLiteral(CORVANE_PROGRAM));
    EXPECT_THAT(stepsOf(words),
                ElementsAre("reading matrices", "preparing edges", "testing",
                            "leaving each participant out", "distances", "writing"));
}

TEST_F(Progress, NamesTheStepsOfAConnectomeAndItsFigure)
{
    const SmallStudy study(path(QStringLiteral("study")));
    study.addRun(QStringLiteral("sub-01/func"), QStringLiteral("sub-01_task-rest"),
                 QStringLiteral("space-T1w"));
    const QStringList files{QStringLiteral("--bold"),
                            study.path(QStringLiteral(
                                "sub-01/func/sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz")),
                            QStringLiteral("--atlas"), study.addAtlas()};
    EXPECT_THAT(
        stepsOf(corvane("connectome --clean none --plots --page", files, QStringLiteral("a"))),
        ElementsAre("preparing", "reading the run", "cleaning", "matrices", "graph measures",
                    "writing", "drawing", "writing the page"));
    EXPECT_THAT(
        stepsOf({QStringLiteral(CORVANE_PROGRAM), QStringLiteral("figure"),
                 out(QStringLiteral("a")), QStringLiteral("--out"), path(QStringLiteral("f.svg"))}),
        ElementsAre("drawing"));
}

TEST_F(Progress, NamesTheStepsOfACohort)
{
    const SmallStudy study(path(QStringLiteral("study")));
    study.addRun(QStringLiteral("sub-01/func"), QStringLiteral("sub-01_task-rest"),
                 QStringLiteral("space-T1w"));
    const auto cohort = [&](const char *step) {
        QStringList words{QStringLiteral(CORVANE_PROGRAM), QStringLiteral("cohort")};
        if (QLatin1String(step) != QLatin1String("status"))
            words += study.path();
        words += {out(QStringLiteral("made")), QLatin1String(step)};
        if (QLatin1String(step) == QLatin1String("participant"))
            words += {QStringLiteral("--clean"),       QStringLiteral("none"),
                      QStringLiteral("--min-seconds"), QStringLiteral("10"),
                      QStringLiteral("--atlas"),       study.addAtlas()};
        return stepsOf(words);
    };
    EXPECT_THAT(cohort("participant"),
                ElementsAre("looking for runs", "preparing", "collecting", "reading"));
    EXPECT_THAT(cohort("status"), ElementsAre("reading"));
}

TEST_F(Progress, CtrlCEndsAMeasureOfManyNodes)
{
    const QStringList table{QStringLiteral("--timeseries"), series(1200, 60)};
    expectInterrupted(corvane("compute", table, QStringLiteral("a")), "correlation");
}

TEST_F(Progress, CtrlCEndsAGraphOfManyNodes)
{
    expectInterrupted(corvane("graph", {graph(1500)}, QStringLiteral("a")), "Clustering");
}

TEST_F(Progress, CtrlCEndsDistancesOfManyNodes)
{
    const QString matrix = graph(1500);
    expectInterrupted(corvane("distance", {matrix, matrix, matrix}), "distances");
}

TEST_F(Progress, CtrlCEndsAComparisonOfManyPermutations)
{
    expectInterrupted(
        corvane("compare --permutations 1000000000", {map(), map()}, QStringLiteral("a")),
        "testing");
}

TEST_F(Progress, CtrlCEndsAGroupOfManyPermutations)
{
    writeLargeGroup();
    QStringList words = arguments({QStringLiteral("--formula"), QStringLiteral("group"),
                                   QStringLiteral("--contrast"), QStringLiteral("c=group[B]"),
                                   QStringLiteral("--permutations"), QStringLiteral("3000000")});
    words.prepend(QStringLiteral(CORVANE_PROGRAM));
    expectInterrupted(words, "testing");
}

/// What a watch of a part tells of the whole.
TEST(ProgressOfParts, AddsUpToTheWhole)
{
    std::vector<double> shares;
    const ProgressWatch whole = [&](qint64 done, qint64 total) {
        shares.push_back(double(done) / double(total));
        return shares.size() < 5;
    };
    const ProgressWatch first = watchOfPart(whole, 0, 2);
    const ProgressWatch second = watchOfPart(whole, 1, 2);
    EXPECT_TRUE(first(1, 4));
    EXPECT_TRUE(first(4, 4));
    EXPECT_TRUE(second(0, 7));
    EXPECT_TRUE(second(0, 0)) << "nothing to do is done";
    EXPECT_FALSE(second(7, 7));
    EXPECT_THAT(shares, ElementsAre(0.125, 0.5, 0.5, 1.0, 1.0));
    EXPECT_FALSE(watchOfPart({}, 0, 2));
}

} // namespace
} // namespace corvane
