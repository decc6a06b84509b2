// SPDX-License-Identifier: GPL-3.0-or-later
//
// The pictures that the command "compute" draws with --plots, as a user gets them.
#include "tests/host/compute/compute_fixture.h"

#include <QColor>
#include <QImage>
#include <QJsonArray>
#include <QProcessEnvironment>
#include <QSet>
#include <gmock/gmock.h>

#include <algorithm>

namespace corvane
{

namespace
{

const QStringList threeSeeds = {QStringLiteral("--seeds"), QStringLiteral("0,1,2")};

/// The colour map between 0 and 1: from green over yellow to red and on to dark red.
QColor expectedColor(float value)
{
    const auto ramp = [](double t) {
        return std::min(1.0, std::max(0.0, 1.5 - 2.0 * std::abs(t)));
    };
    return QColor::fromRgbF(ramp(double(value) - 0.5), ramp(double(value)),
                            ramp(double(value) + 0.5));
}

class ComputePictures : public ComputeCommand
{
protected:
    ProgramRun draw(const QStringList &more = threeSeeds, const char *vtc = "run.vtc") const
    {
        return runCorvane(arguments(more + QStringList{QStringLiteral("--plots")}, vtc));
    }

    /// The program with variables of the environment set ("A=B") or, as "A", taken out of it.
    ProgramRun drawIn(const QStringList &environment) const
    {
        QStringList command;
        for (const QString &variable : environment) {
            if (!variable.contains('='))
                command += QStringLiteral("-u");
            command += variable;
        }
        return runProgram(QStringLiteral("/usr/bin/env"),
                          command + QStringList{QStringLiteral(CORVANE_PROGRAM)} +
                              arguments(threeSeeds + QStringList{QStringLiteral("--plots")}));
    }

    QImage picture(const QString &name) const
    {
        QImage image;
        EXPECT_TRUE(image.load(folder.path("out/" + name), "PNG")) << name.toStdString();
        return image.convertToFormat(QImage::Format_RGB32);
    }

    QStringList pictures() const { return outputs().filter(QStringLiteral(".png")); }

    /// The pictures of the current output folder, which is emptied.
    std::vector<QByteArray> takePictures() const
    {
        std::vector<QByteArray> bytes;
        for (const QString &name : pictures())
            bytes.push_back(bytesOf(folder.path("out/" + name)));
        EXPECT_TRUE(QDir(folder.path("out")).removeRecursively());
        return bytes;
    }

    /// Writes as many VOIs of one voxel each as there are samples to take.
    void writeVois(int count) const
    {
        const VtcInfo vtc = info();
        VoiSet set;
        for (int n = 0; n < count; ++n) {
            const int i = n % vtc.dimX();
            const int j = n / vtc.dimX() % vtc.dimY();
            const int k = n / vtc.dimX() / vtc.dimY();
            set.vois.push_back({QStringLiteral("VOI %1").arg(n),
                                1,
                                2,
                                3,
                                {{{60 + 3 * i, 70 + 3 * j, 80 + 3 * k}}}});
        }
        writeVoiFile(folder.path("set.voi"), set);
    }
};

int count(const QImage &image, const QColor &color)
{
    int found = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            found += image.pixelColor(x, y).rgb() == color.rgb() ? 1 : 0;
    }
    return found;
}

int colors(const QImage &image)
{
    QSet<QRgb> found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            found.insert(image.pixel(x, y));
    }
    return found.size();
}

TEST_F(ComputePictures, StandBesideTheTables)
{
    const ProgramRun run = draw();
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.output, folder.path("out").toUtf8() + ": 3 nodes, 40 volumes, 1 matrix\n");
    const QStringList expected = {"clustering_coeff.png", "connectivity.png",
                                  "degree.png",           "eigenvector_centrality.png",
                                  "local_efficiency.png", "nodal_global_efficiency.png",
                                  "overview.png",         "ring.png",
                                  "strength.png"};
    EXPECT_EQ(pictures(), expected);
    EXPECT_THAT(outputs(), testing::IsSupersetOf({"connectivity.csv", "features.csv", "mst.csv",
                                                  "summary.json", "timeseries.csv"}));
    QStringList named;
    for (const QJsonValue &name : summary().value("pictures").toArray())
        named += name.toString();
    named.sort();
    EXPECT_EQ(named, expected);
    for (const QString &name : expected)
        EXPECT_GT(colors(picture(name)), 4) << name.toStdString();
    EXPECT_GE(picture("ring.png").width(), 660);
    EXPECT_GE(picture("ring.png").height(), 660);
    EXPECT_EQ(picture("overview.png").size(), QSize(300, 290));
    EXPECT_GT(picture("degree.png").width(), 600);
    EXPECT_GT(picture("degree.png").height(), 500);
}

TEST_F(ComputePictures, AreNotThereUnlessAskedFor)
{
    ASSERT_EQ(runCorvane(arguments(threeSeeds)).status, 0);
    EXPECT_EQ(pictures(), QStringList());
    EXPECT_FALSE(summary().contains("pictures"));
}

TEST_F(ComputePictures, ShowTheEntriesOfTheMatrix)
{
    ASSERT_EQ(draw().status, 0);
    const Eigen::MatrixXf matrix = table("connectivity.csv");
    const QImage map = picture("connectivity.png");
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            // Cells of 15 x 15 pixels, behind the names of the rows and below those of the columns.
            const QColor seen = map.pixelColor(map.width() - (3 - column) * 15 + 7,
                                               map.height() - (3 - row) * 15 + 7);
            const QColor expected = expectedColor(matrix(row, column));
            EXPECT_NEAR(seen.red(), expected.red(), 1) << row << ", " << column;
            EXPECT_NEAR(seen.green(), expected.green(), 1) << row << ", " << column;
            EXPECT_NEAR(seen.blue(), expected.blue(), 1) << row << ", " << column;
        }
    }
}

TEST_F(ComputePictures, DifferBetweenMeasures)
{
    ASSERT_EQ(draw().status, 0);
    std::vector<QImage> seen;
    for (const char *measure : {"clustering_coeff", "degree", "eigenvector_centrality",
                                "local_efficiency", "nodal_global_efficiency", "strength"}) {
        QImage plot = picture(QString::fromUtf8(measure) + ".png");
        EXPECT_EQ(std::count(seen.begin(), seen.end(), plot), 0) << measure;
        seen.push_back(plot);
    }
}

TEST_F(ComputePictures, ShowTheSpanningTreeInRed)
{
    ASSERT_EQ(draw().status, 0);
    EXPECT_GT(count(picture("ring.png"), Qt::red), 100);
    ASSERT_EQ(draw(threeSeeds + QStringList{QStringLiteral("--no-mst")}).status, 0);
    EXPECT_EQ(count(picture("ring.png"), Qt::red), 0);
    EXPECT_GT(colors(picture("ring.png")), 4);
}

TEST_F(ComputePictures, AreDrawnForEachIntervalThatIsNoEvent)
{
    const ProgramRun run =
        draw(threeSeeds + QStringList{QStringLiteral("--use-protocol")}, "linked.vtc");
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(run.errors, "");
    EXPECT_THAT(pictures(),
                testing::UnorderedElementsAre(
                    "connectivity_0_left_right.png", "connectivity_1_rest, eyes \"open\".png",
                    "connectivity_2_left_right.png", "overview_0_left_right.png",
                    "overview_1_rest, eyes \"open\".png", "overview_2_left_right.png",
                    "ring_0_left_right.png", "ring_1_rest, eyes \"open\".png",
                    "ring_2_left_right.png", "clustering_coeff.png", "degree.png",
                    "eigenvector_centrality.png", "global_efficiency.png", "local_efficiency.png",
                    "nodal_global_efficiency.png", "strength.png"));
    for (const char *kind : {"ring", "connectivity", "overview"}) {
        const QImage first = picture(QString::fromUtf8(kind) + "_0_left_right.png");
        const QImage last = picture(QString::fromUtf8(kind) + "_2_left_right.png");
        EXPECT_EQ(first.size(), last.size()) << kind;
        EXPECT_NE(first, last) << kind;
    }
    EXPECT_GT(count(picture("ring_2_left_right.png"), Qt::red), 100);
    // The legend of the conditions stands beside the lines.
    EXPECT_GT(picture("strength.png").width(), 1000);
    EXPECT_GT(colors(picture("global_efficiency.png")), 4);
}

TEST_F(ComputePictures, OfOneIntervalHaveNoPlotOfASingleValue)
{
    Prt prt;
    prt.conditions = {{QStringLiteral("only"), {{5, 30}}}, {QStringLiteral("cue"), {{35, 35}}}};
    writePrtFile(folder.path("task.prt"), prt);
    ASSERT_EQ(draw(threeSeeds + QStringList{QStringLiteral("--use-protocol")}, "linked.vtc").status,
              0);
    EXPECT_TRUE(pictures().contains("ring_0_only.png"));
    EXPECT_TRUE(pictures().contains("strength.png"));
    EXPECT_FALSE(pictures().contains("global_efficiency.png"));
}

TEST_F(ComputePictures, OfEventsAloneAreNotDrawn)
{
    Prt prt;
    prt.conditions = {{QStringLiteral("cue"), {{5, 5}, {35, 35}}}};
    writePrtFile(folder.path("task.prt"), prt);
    const ProgramRun run =
        draw(threeSeeds + QStringList{QStringLiteral("--use-protocol")}, "linked.vtc");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "Nothing is drawn: all intervals are events\n");
    EXPECT_EQ(pictures(), QStringList());
    EXPECT_TRUE(outputs().contains("connectivity_0_cue.csv"));
}

TEST_F(ComputePictures, HaveNothingToDoWithAProtocolThatIsNotUsed)
{
    ASSERT_EQ(draw().status, 0);
    const std::vector<QByteArray> without = takePictures();
    Prt prt;
    prt.conditions = {{QStringLiteral("cue"), {{1, 1}}}, {QStringLiteral("block"), {{5, 30}}}};
    writePrtFile(folder.path("task.prt"), prt);
    ASSERT_EQ(draw(threeSeeds, "linked.vtc").status, 0);
    EXPECT_EQ(takePictures(), without);
}

TEST_F(ComputePictures, LeaveRoomForNodesWithoutValues)
{
    // The last VOI is empty: its courses are no numbers, and it has no connection.
    const ProgramRun run = draw({});
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(pictures().size(), 9);
    const QImage map = picture("connectivity.png");
    const QColor none = expectedColor(0.0f);
    for (int cell = 0; cell < 4; ++cell) {
        const QColor seen = map.pixelColor(map.width() - 7, map.height() - 15 * cell - 7);
        EXPECT_NEAR(seen.red(), none.red(), 1);
        EXPECT_NEAR(seen.green(), none.green(), 1);
    }
}

TEST_F(ComputePictures, AreDrawnOfOneNode)
{
    const ProgramRun run = draw({QStringLiteral("--seeds"), QStringLiteral("1")});
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(pictures().size(), 9);
    for (const QString &name : pictures())
        EXPECT_GT(colors(picture(name)), 1) << name.toStdString();
}

TEST_F(ComputePictures, GrowWithTheNodes)
{
    ASSERT_EQ(draw().status, 0);
    const QSize few = picture("strength.png").size();
    writeVois(60);
    const ProgramRun run = draw({});
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(pictures().contains("ring.png"));
    EXPECT_GT(picture("connectivity.png").width(), 60 * 15);
    EXPECT_GT(picture("connectivity.png").height(), 60 * 15);
    EXPECT_GT(picture("strength.png").width(), 60 * 24);
    EXPECT_EQ(picture("strength.png").height(), few.height());
}

TEST_F(ComputePictures, OfMoreNodesThanTheOverviewHolds)
{
    writeVois(117);
    const ProgramRun run = draw({});
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    const QByteArray said = "Ring and overview are not drawn: 117 nodes, there is room for 116";
    EXPECT_EQ(run.errors, said + '\n');
    EXPECT_TRUE(summary().value("warnings").toArray().contains(QString::fromUtf8(said)));
    EXPECT_FALSE(pictures().contains("ring.png"));
    EXPECT_FALSE(pictures().contains("overview.png"));
    EXPECT_TRUE(pictures().contains("connectivity.png"));
    EXPECT_EQ(pictures().size(), 7);
}

TEST_F(ComputePictures, AreTheSameEachTime)
{
    ASSERT_EQ(draw().status, 0);
    const std::vector<QByteArray> before = takePictures();
    ASSERT_EQ(draw().status, 0);
    EXPECT_EQ(takePictures(), before);
}

TEST_F(ComputePictures, NeedNoDisplay)
{
    const ProgramRun run = drawIn({QStringLiteral("DISPLAY"), QStringLiteral("WAYLAND_DISPLAY"),
                                   QStringLiteral("XDG_RUNTIME_DIR"),
                                   QStringLiteral("QT_QPA_PLATFORM=no such platform")});
    EXPECT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(pictures().size(), 9);
}

TEST_F(ComputePictures, AreFinerWithMorePixelsPerPoint)
{
    ASSERT_EQ(drawIn({QStringLiteral("QT_SCALE_FACTOR=1")}).status, 0);
    const QSize size = picture("ring.png").size();
    ASSERT_EQ(drawIn({QStringLiteral("QT_SCALE_FACTOR=2")}).status, 0);
    EXPECT_EQ(picture("ring.png").size(), 2 * size);
    EXPECT_EQ(picture("overview.png").size(), QSize(600, 580));
}

TEST_F(ComputePictures, AloneNeedAPlatformForWindows)
{
    const ProgramRun tables = runProgram(
        QStringLiteral("/usr/bin/env"),
        QStringList{QStringLiteral("QT_QPA_PLATFORM=none"), QStringLiteral(CORVANE_PROGRAM)} +
            arguments(threeSeeds));
    EXPECT_EQ(tables.status, 0) << tables.errors.constData();
    EXPECT_EQ(outputs().size(), 5);
}

// What can go wrong

TEST_F(ComputePictures, TakeNoValueAndNoOptionsOfWindows)
{
    for (const char *wrong : {"--plots=ring", "-platform", "-style"}) {
        const ProgramRun run = draw({QString::fromUtf8(wrong)});
        EXPECT_EQ(run.status, 2) << wrong;
        EXPECT_EQ(run.errorLines(), 1) << run.errors.constData();
        EXPECT_FALSE(QDir(folder.path("out")).exists());
    }
}

TEST_F(ComputePictures, AndTablesAreNotThereWhenTheTargetCannotBeWritten)
{
    QStringList blocked = arguments(threeSeeds + QStringList{QStringLiteral("--plots")});
    blocked[blocked.indexOf(QStringLiteral("--out")) + 1] = folder.path("run.vtc/out");
    const ProgramRun run = runCorvane(blocked);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errorLines(), 1) << run.errors.constData();
    EXPECT_THAT(run.errors.toStdString(), testing::HasSubstr("run.vtc/out"));
}

TEST_F(ComputePictures, AndTablesAreNotThereWhenTheDiskIsFull)
{
    // Room for the tables, and not for the ring.
    const ProgramRun run = runProgram(
        QStringLiteral("/bin/bash"),
        QStringList{QStringLiteral("-c"), QStringLiteral("trap '' XFSZ; ulimit -f 16; exec \"$@\""),
                    QStringLiteral("bash"), QStringLiteral(CORVANE_PROGRAM)} +
            arguments(threeSeeds + QStringList{QStringLiteral("--plots")}));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errorLines(), 1) << run.errors.constData();
    EXPECT_THAT(run.errors.toStdString(), testing::HasSubstr(".png"));
    EXPECT_FALSE(QDir(folder.path("out")).exists());
}

TEST_F(ComputePictures, StayAsTheyWereWhenTheNextOnesFail)
{
    ASSERT_EQ(draw().status, 0);
    const QStringList before = outputs();
    const QByteArray ring = bytesOf(folder.path("out/ring.png"));
    putBytes(folder.path("set.voi"), "{");
    EXPECT_EQ(draw().status, 1);
    EXPECT_EQ(outputs(), before);
    EXPECT_EQ(bytesOf(folder.path("out/ring.png")), ring);
}

TEST_F(ComputePictures, TellTheirProgressOnATerminal)
{
    QStringList quoted;
    for (const QString &word : QStringList{QStringLiteral(CORVANE_PROGRAM)} +
                                   arguments(threeSeeds + QStringList{QStringLiteral("--plots")}))
        quoted += '\'' + word + '\'';
    const ProgramRun run = runProgram(QStringLiteral("script"),
                                      {QStringLiteral("-qec"), quoted.join(' '), "/dev/null"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output.toStdString(), testing::HasSubstr("\r\x1b[Kdrawing 0 %"));
}

} // namespace

} // namespace corvane
