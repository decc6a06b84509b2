// SPDX-License-Identifier: GPL-3.0-or-later
//
// "compute --values signed": matrices with their signs, and what is made of them.
#include "tests/host/compute/compute_fixture.h"

#include <QJsonArray>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

using testing::HasSubstr;

/// Three VOIs of a voxel each, the second the mirror image of the first.
class ComputeSigns : public ComputeCommand
{
protected:
    void SetUp() override
    {
        ComputeCommand::SetUp();
        std::vector<short> all = samples();
        const auto second = static_cast<std::size_t>(volumes); // lattice point (1, 0, 0)
        for (std::size_t t = 0; t < volumes; ++t)
            all[second + t] = static_cast<short>(3000 - all[t]);
        putBytes(folder.path("run.vtc"), vtcBytes(info(), all));
        VoiSet set;
        set.vois = {{QStringLiteral("a"), 1, 1, 1, {{{60, 70, 80}}}},
                    {QStringLiteral("b"), 2, 2, 2, {{{63, 70, 80}}}},
                    {QStringLiteral("c"), 3, 3, 3, {{{66, 73, 83}}}}};
        writeVoiFile(folder.path("set.voi"), set);
    }
    ProgramRun compute(const char *values, const QStringList &more = {})
    {
        ProgramRun run =
            runCorvane(arguments(QStringList{"--values", QString::fromUtf8(values)} + more));
        EXPECT_EQ(run.status, 0) << run.errors.constData();
        return run;
    }
};

TEST_F(ComputeSigns, AreKept)
{
    compute("positive");
    const Eigen::MatrixXf positive = table("connectivity.csv");
    compute("negative");
    const Eigen::MatrixXf negative = table("connectivity.csv");
    compute("signed");
    EXPECT_NEAR(table("connectivity.csv")(0, 1), -1.0f, 1e-5f);
    EXPECT_GT(negative.maxCoeff(), 0.0f);
    EXPECT_GT(positive.maxCoeff(), 0.0f);
    EXPECT_EQ(table("connectivity.csv"), positive - negative);
    EXPECT_EQ(summary()["settings"].toObject()["values"], "signed");
}

TEST_F(ComputeSigns, OfAPartialCorrelationAreKeptToo)
{
    // An exact mirror image has no inverse.
    std::vector<short> all = samples();
    for (std::size_t t = 0; t < volumes; ++t)
        all[volumes + t] = static_cast<short>(3000 - all[t] + short(t % 7) * 20);
    putBytes(folder.path("run.vtc"), vtcBytes(info(), all));
    const QStringList partial{"--measure", "partial-correlation"};
    compute("absolute", partial);
    const Eigen::MatrixXf absolute = table("connectivity.csv");
    compute("signed", partial);
    const Eigen::MatrixXf matrix = table("connectivity.csv");
    EXPECT_LT(matrix(0, 1), 0.0f);
    EXPECT_EQ(matrix.cwiseAbs(), absolute);
}

TEST_F(ComputeSigns, HaveNoTreesAndALineSaysWhatMeasuresMakeOfThem)
{
    const ProgramRun run = compute("signed");
    EXPECT_EQ(outputs(),
              (QStringList{"connectivity.csv", "features.csv", "summary.json", "timeseries.csv"}));
    const char *line = "signed: of the measures only degree, strength and eigenvector centrality "
                       "take negative weights into account, the others see the positive ones; "
                       "there are no spanning trees";
    EXPECT_EQ(run.errors, QByteArray(line) + '\n');
    EXPECT_TRUE(summary()["warnings"].toArray().contains(QString::fromUtf8(line)));
    EXPECT_EQ(summary()["settings"].toObject()["spanning tree"], false);
    EXPECT_EQ(compute("signed", {"--no-mst"}).errors, run.errors);
    EXPECT_EQ(compute("positive").errors, "");
}

/// Each measure is that of the whole matrix or of its positive half, as the line says.
TEST_F(ComputeSigns, CountInTheMeasuresThatTheLineNames)
{
    const auto columns = [this](const char *values) {
        compute(values);
        QMap<QByteArray, QByteArrayList> all;
        const QByteArrayList lines = bytesOf(folder.path("out/features.csv")).trimmed().split('\n');
        const QByteArrayList names = lines.front().split(',');
        for (const QByteArray &line : lines.mid(1))
            for (int column = 0; column < names.size(); ++column)
                all[names[column]] += line.split(',')[column];
        return all;
    };
    const auto positive = columns("positive");
    const auto both = columns("signed");
    for (const char *measure :
         {"clustering_coeff", "local_efficiency", "nodal_global_efficiency", "global_efficiency"})
        EXPECT_EQ(both[measure], positive[measure]) << measure;
    for (const char *measure : {"degree", "strength", "eigenvector_centrality"})
        EXPECT_NE(both[measure], positive[measure]) << measure;
    const Eigen::MatrixXf matrix = table("connectivity.csv");
    for (int node = 0; node < 3; ++node) {
        EXPECT_EQ(both["degree"][node], "2");
        EXPECT_NEAR(both["strength"][node].toFloat(), matrix.row(node).sum(), 1e-6f);
    }
}

TEST_F(ComputeSigns, AreDrawnAsAMapAndNotAsARing)
{
    const ProgramRun run = compute("signed", {"--plots"});
    EXPECT_THAT(run.errors.toStdString(),
                HasSubstr("The ring is not drawn: its lines do not show signs\n"));
    EXPECT_TRUE(outputs().contains("connectivity.png"));
    EXPECT_TRUE(outputs().contains("overview.png"));
    EXPECT_FALSE(outputs().contains("ring.png"));
    compute("absolute", {"--plots"});
    EXPECT_TRUE(outputs().contains("ring.png"));
}

} // namespace

} // namespace corvane
