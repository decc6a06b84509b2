// SPDX-License-Identifier: GPL-3.0-or-later
//
// The command "compute" from files to tables, as a user runs it.
#include "tests/host/compute/compute_fixture.h"
#include "tests/host/support/notes.h"
#include "tests/host/support/traced_program.h"

#include <Eigen/LU>
#include <QFileInfo>
#include <QJsonArray>
#include <gmock/gmock.h>

#include <cmath>

namespace corvane
{

namespace
{

class Compute : public ComputeCommand
{
};

void expectConnectivity(const Eigen::MatrixXf &actual, const Eigen::MatrixXd &series,
                        Eigen::Index first, Eigen::Index count, double tolerance)
{
    ASSERT_EQ(actual.rows(), series.rows());
    ASSERT_EQ(actual.cols(), series.rows());
    for (Eigen::Index a = 0; a < actual.rows(); ++a) {
        EXPECT_EQ(actual(a, a), 0.0f);
        for (Eigen::Index b = 0; b < actual.cols(); ++b) {
            if (a != b) {
                EXPECT_NEAR(actual(a, b), std::abs(pearson(series, a, b, first, count)), tolerance)
                    << a << "," << b;
            }
        }
    }
}

TEST_F(Compute, WritesTheTablesOfTheWholeRun)
{
    const ProgramRun run =
        runCorvane(arguments({QStringLiteral("--seeds"), QStringLiteral("2,0,1")}));
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(outputs(), (QStringList{"connectivity.csv", "features.csv", "mst.csv", "summary.json",
                                      "timeseries.csv"}));
    const Eigen::MatrixXd expected = nodes({2, 0, 1});
    const Eigen::MatrixXf series = table("timeseries.csv");
    ASSERT_EQ(series.rows(), 3);
    ASSERT_EQ(series.cols(), volumes);
    EXPECT_LT((series.cast<double>() - expected).cwiseAbs().maxCoeff(), 1e-3);
    expectConnectivity(table("connectivity.csv"), expected, 0, volumes, 1e-5);
}

TEST_F(Compute, KeepsTheStrongestLinksInTheTree)
{
    ASSERT_EQ(runCorvane(arguments({QStringLiteral("--seeds"), QStringLiteral("0,1,2")})).status,
              0);
    const Eigen::MatrixXf weights = table("connectivity.csv");
    const Eigen::MatrixXf tree = table("mst.csv");
    float weakest = std::min({weights(0, 1), weights(0, 2), weights(1, 2)});
    for (int a = 0; a < 3; ++a) {
        for (int b = 0; b < 3; ++b)
            EXPECT_EQ(tree(a, b), weights(a, b) == weakest ? 0.0f : weights(a, b));
    }
}

TEST_F(Compute, TakesAllVoisAndTreatsTheEmptyOnesNaN)
{
    const ProgramRun run = runCorvane(arguments());
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    const Eigen::MatrixXf connectivity = table("connectivity.csv");
    ASSERT_EQ(connectivity.rows(), 4);
    EXPECT_TRUE(connectivity.row(3).isZero()); // the clean-up takes NaN for no connection
    EXPECT_TRUE(table("timeseries.csv").row(3).isZero());
    const QJsonArray nodeList = summary().value("nodes").toArray();
    ASSERT_EQ(nodeList.size(), 4);
    EXPECT_EQ(nodeList.at(0).toObject().value("name").toString(), "V, one");
    EXPECT_EQ(nodeList.at(0).toObject().value("voxels").toInt(), 2);
    EXPECT_EQ(nodeList.at(3).toObject().value("name").toString(), "none");
    EXPECT_EQ(nodeList.at(3).toObject().value("voxels").toInt(), 0);
}

TEST_F(Compute, WritesOneMatrixPerIntervalWithTheProtocolOfTheVtc)
{
    const ProgramRun run = runCorvane(arguments(
        {QStringLiteral("--use-protocol"), QStringLiteral("--seeds"), QStringLiteral("0,1,2")},
        "linked.vtc"));
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_THAT(outputs(),
                testing::UnorderedElementsAre(
                    "connectivity_0_left_right.csv", "connectivity_1_rest, eyes \"open\".csv",
                    "connectivity_2_left_right.csv", "connectivity_3_cue.csv",
                    "mst_0_left_right.csv", "mst_1_rest, eyes \"open\".csv", "mst_2_left_right.csv",
                    "mst_3_cue.csv", "timeseries.csv", "features.csv", "summary.json"));
    const Eigen::MatrixXd series = nodes({0, 1, 2});
    expectConnectivity(table("connectivity_0_left_right.csv"), series, 0, 10, 1e-4);
    expectConnectivity(table("connectivity_1_rest, eyes \"open\".csv"), series, 10, 10, 1e-4);
    expectConnectivity(table("connectivity_2_left_right.csv"), series, 20, 10, 1e-4);
    EXPECT_TRUE(table("connectivity_3_cue.csv").isZero()); // one volume: nothing to correlate
    const QJsonArray slices = summary().value("slices").toArray();
    ASSERT_EQ(slices.size(), 4);
    EXPECT_EQ(slices.at(1).toObject().value("condition").toString(), "rest, eyes \"open\"");
    EXPECT_FALSE(slices.at(1).toObject().value("event").toBool());
    EXPECT_TRUE(slices.at(3).toObject().value("event").toBool());
    EXPECT_EQ(slices.at(0).toObject().value("connectivity").toString(),
              "connectivity_0_left_right.csv");
}

TEST_F(Compute, TakesTheProtocolThatIsNamed)
{
    Prt other;
    other.conditions = {{QStringLiteral("only"), {{5, 30}}}};
    writePrtFile(folder.path("other.prt"), other);
    const ProgramRun run =
        runCorvane(arguments({QStringLiteral("--use-protocol"), QStringLiteral("--prt"),
                              folder.path("other.prt"), QStringLiteral("--no-mst")},
                             "linked.vtc"));
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_THAT(outputs(), testing::UnorderedElementsAre("connectivity_0_only.csv", "features.csv",
                                                         "summary.json", "timeseries.csv"));
    EXPECT_EQ(summary().value("inputs").toObject().value("protocol").toObject().value("file"),
              folder.path("other.prt"));
}

/// Paths that records for plugins cannot hold: the compute goes by the host's own.
TEST_F(Compute, TakesALinkedProtocolWhateverItsPath)
{
    QString deep;
    for (int n = 0; n < 4; ++n)
        deep += QString(150, QChar(u'a' + n)) + QLatin1Char('/');
    const struct {
        QString path;
        const char *warning;
    } cases[] = {
        {QString::fromUtf8("\xce\xb1\xce\xb2/\xe6\xb5\xb7.prt"),
         "characters that Latin-1 lacks, plugins get '?'"},
        {QString::fromUtf8("e\xcc\x81t\xc3\xa9.prt"), ""}, // an accent of its own, and one composed
        {deep + QStringLiteral("task.prt"), "bytes long, plugins get 523 of them"},
    };
    for (const auto &one : cases) {
        const QString protocolPath = folder.path(one.path);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(protocolPath).path()));
        writePrtFile(protocolPath, protocol());
        putBytes(folder.path("odd.vtc"), runFile(one.path));
        for (const QStringList &more :
             {QStringList{}, QStringList{QStringLiteral("--use-protocol")}}) {
            const ProgramRun run = runCorvane(arguments(more, "odd.vtc"));
            ASSERT_EQ(run.status, 0) << run.errors.constData();
            EXPECT_THAT(run.errors.toStdString(), testing::HasSubstr(one.warning));
            const QJsonObject used =
                summary().value("inputs").toObject().value("protocol").toObject();
            EXPECT_EQ(used.value("file"), protocolPath);
            EXPECT_EQ(used.value("sha1").toString().size(), 40);
            EXPECT_EQ(summary().value("slices").toArray().size(), more.isEmpty() ? 1 : 4);
            ASSERT_TRUE(QDir(folder.path("out")).removeRecursively());
        }
    }
}

TEST_F(Compute, TreatsTheSignsAsAsked)
{
    // A run and its mirror image go against each other.
    VtcInfo vtc = info();
    std::vector<short> all = samples();
    const auto second = static_cast<std::size_t>(volumes); // lattice point (1, 0, 0)
    for (std::size_t t = 0; t < volumes; ++t)
        all[second + t] = static_cast<short>(3000 - all[t]);
    putBytes(folder.path("run.vtc"), vtcBytes(vtc, all));
    VoiSet set;
    set.vois = {{QStringLiteral("a"), 1, 1, 1, {{{60, 70, 80}}}},
                {QStringLiteral("b"), 2, 2, 2, {{{63, 70, 80}}}}};
    writeVoiFile(folder.path("set.voi"), set);
    const auto entry = [&](const char *values) {
        EXPECT_EQ(
            runCorvane(arguments({QStringLiteral("--values"), QString::fromUtf8(values)})).status,
            0);
        return table("connectivity.csv")(0, 1);
    };
    EXPECT_NEAR(entry("absolute"), 1.0f, 1e-5f);
    EXPECT_EQ(entry("positive"), 0.0f);
    EXPECT_NEAR(entry("negative"), 1.0f, 1e-5f);
}

TEST_F(Compute, ComputesThePartialMeasure)
{
    ASSERT_EQ(
        runCorvane(arguments({QStringLiteral("--measure"), QStringLiteral("partial-correlation"),
                              QStringLiteral("--seeds"), QStringLiteral("0,1,2")}))
            .status,
        0);
    const Eigen::MatrixXd series = nodes({0, 1, 2});
    Eigen::MatrixXd c(3, 3);
    for (int a = 0; a < 3; ++a) {
        for (int b = 0; b < 3; ++b)
            c(a, b) = pearson(series, a, b, 0, volumes);
    }
    const Eigen::MatrixXd p = c.inverse();
    const Eigen::MatrixXf actual = table("connectivity.csv");
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            const auto entry = [&](int a, int b) {
                return std::abs(p(a, b) / std::sqrt(p(a, a) * c(b, b)));
            };
            // The clean-up takes the mean of both triangles and clears the diagonal.
            const double expected = i == j ? 0.0 : (entry(i, j) + entry(j, i)) / 2.0;
            EXPECT_NEAR(actual(i, j), expected, 1e-4 * std::max(1.0, expected));
        }
    }
}

TEST_F(Compute, WritesTheMeasuresOfEveryNode)
{
    ASSERT_EQ(runCorvane(arguments({QStringLiteral("--seeds"), QStringLiteral("0,1,2")})).status,
              0);
    const QList<QByteArray> lines = bytesOf(folder.path("out/features.csv")).trimmed().split('\n');
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines.at(0), "slice,node,name,empty,clustering_coeff,local_efficiency,degree,"
                           "eigenvector_centrality,strength,nodal_global_efficiency,"
                           "global_efficiency");
    EXPECT_TRUE(lines.at(1).startsWith("0,0,\"V, one\",0,"));
    const Eigen::MatrixXf weights = table("connectivity.csv");
    const QList<QByteArray> second = lines.at(2).split(',');
    ASSERT_EQ(second.size(), 11);
    EXPECT_EQ(second.at(2), "two");
    EXPECT_EQ(second.at(6).toFloat(), 2.0f);
    EXPECT_NEAR(second.at(8).toFloat(), weights.row(1).sum(), 1e-6f);
}

TEST_F(Compute, WritesTheMeasuresOfEverySliceWithItsCondition)
{
    ASSERT_EQ(runCorvane(arguments({QStringLiteral("--use-protocol")}, "linked.vtc")).status, 0);
    const QList<QByteArray> lines = bytesOf(folder.path("out/features.csv")).trimmed().split('\n');
    ASSERT_EQ(lines.size(), 1 + 4 * 4);
    EXPECT_TRUE(lines.at(0).startsWith("slice,condition,event,node,name,empty,clustering_coeff,"));
    EXPECT_TRUE(lines.at(1).startsWith("0,left/right,0,0,\"V, one\","));
    EXPECT_TRUE(lines.at(5).startsWith("1,\"rest, eyes \"\"open\"\"\",0,0,"));
    EXPECT_TRUE(lines.at(16).startsWith("3,cue,1,3,none,1,"));
}

TEST_F(Compute, CallsNodesByTheWholeNamesOfTheirVois)
{
    // Longer than plugins get it, and in letters that their records lack.
    VoiSet set = vois();
    set.vois[1].name = QString::fromUtf8("\xce\x94\xce\xb5\xce\xbe\xce\xb9\xce\xac ").repeated(60) +
                       QStringLiteral("(empty)");
    writeVoiFile(folder.path("set.voi"), set);
    ASSERT_EQ(runCorvane(arguments({QStringLiteral("--seeds"), QStringLiteral("1,3")})).status, 0);
    const QJsonArray nodes = summary().value("nodes").toArray();
    EXPECT_EQ(nodes.at(0).toObject().value("name").toString(), set.vois[1].name);
    EXPECT_FALSE(nodes.at(0).toObject().value("empty").toBool());
    EXPECT_EQ(nodes.at(1).toObject().value("name").toString(), QStringLiteral("none"));
    EXPECT_TRUE(nodes.at(1).toObject().value("empty").toBool());
    EXPECT_TRUE(bytesOf(folder.path("out/features.csv")).contains(set.vois[1].name.toUtf8()));
}

TEST_F(Compute, TellsOfNodesWithoutConnections)
{
    const ProgramRun run = runCorvane(arguments());
    ASSERT_EQ(run.status, 0);
    const char *const line = "1 node without voxels: \"none\"; it has no connections";
    EXPECT_THAT(run.errors.toStdString(), testing::HasSubstr(line));
    EXPECT_THAT(summary().value("warnings").toArray().toVariantList(),
                testing::Contains(QVariant(QString::fromUtf8(line))));
}

TEST_F(Compute, RefusesAPartialCorrelationThatIsNotDefinedUnlessAllowed)
{
    const QStringList partial{QStringLiteral("--measure"), QStringLiteral("partial-correlation")};
    const ProgramRun refused = runCorvane(arguments(partial));
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(
        refused.errors.toStdString(),
        testing::EndsWith(
            "set.voi: partial correlation: found 1 node without voxels: \"none\"; no partial "
            "correlation is known, expected nodes that have one: --seeds 0,1,2; or "
            "--allow-singular for a matrix of zeros\n"));
    EXPECT_FALSE(QFileInfo::exists(folder.path("out")));
    // As told.
    EXPECT_EQ(runCorvane(arguments(partial +
                                   QStringList{QStringLiteral("--seeds"), QStringLiteral("0,1,2")}))
                  .status,
              0);
    const ProgramRun allowed =
        runCorvane(arguments(partial + QStringList{QStringLiteral("--allow-singular")}));
    EXPECT_EQ(allowed.status, 0);
    EXPECT_TRUE(table("connectivity.csv").isZero());
    EXPECT_THAT(allowed.errors.toStdString(),
                testing::HasSubstr("no partial correlation is known"));
    EXPECT_TRUE(summary().value("settings").toObject().value("allow singular").toBool());
}

TEST_F(Compute, RefusesFilesOfDifferentSubjectsOrSpacesUnlessAllowed)
{
    Vmr anatomy = zeroVmr();
    anatomy.provenance = {QStringLiteral("sub-01"), QStringLiteral("T1w")};
    writeVmr(folder.path("a.vmr"), anatomy);
    VoiSet set = vois();
    set.provenance = {QString(), QStringLiteral("MNI")};
    writeVoiFile(folder.path("set.voi"), set);
    const ProgramRun other = runCorvane(arguments());
    EXPECT_EQ(other.status, 1);
    EXPECT_EQ(other.errorLines(), 1);
    EXPECT_THAT(other.errors.toStdString(),
                testing::EndsWith("set.voi: space name: found \"MNI\", expected \"T1w\" as in " +
                                  folder.path("a.vmr").toStdString() + "; or --allow-mismatch\n"));
    EXPECT_FALSE(QFileInfo::exists(folder.path("out")));
    const QStringList allow{QStringLiteral("--allow-mismatch")};
    const ProgramRun allowed = runCorvane(arguments(allow));
    EXPECT_EQ(allowed.status, 0);
    EXPECT_THAT(allowed.errors.toStdString(),
                testing::HasSubstr("set.voi: its space name is \"MNI\", that of a.vmr \"T1w\"\n"));

    // A run of another subject; the VOIs are the anatomy's.
    set.provenance = {QStringLiteral("sub-01"), QString()};
    writeVoiFile(folder.path("set.voi"), set);
    VtcInfo run = info();
    run.provenance.subject = QStringLiteral("sub-02");
    putBytes(folder.path("run.vtc"), vtcBytes(run, samples()));
    EXPECT_THAT(runCorvane(arguments()).errors.toStdString(),
                testing::HasSubstr("run.vtc: subject: found \"sub-02\", expected \"sub-01\""));
    run.provenance.subject = QStringLiteral("sub-01");
    putBytes(folder.path("run.vtc"), vtcBytes(run, samples()));
    EXPECT_EQ(runCorvane(arguments()).status, 0);
}

TEST_F(Compute, TellsWhereAPartialCorrelationHasTooFewVolumesAndWhatTheRunCutsOff)
{
    Prt prt;
    prt.conditions = {{QStringLiteral("short"), {{1, 3}}},
                      {QStringLiteral("late"), {{volumes - 9, volumes + 5}}},
                      {QStringLiteral("gone"), {{volumes + 1, volumes + 2}}}};
    writePrtFile(folder.path("other.prt"), prt);
    const ProgramRun run = runCorvane(arguments(
        {QStringLiteral("--use-protocol"), QStringLiteral("--prt"), folder.path("other.prt"),
         QStringLiteral("--measure"), QStringLiteral("partial-correlation"),
         QStringLiteral("--seeds"), QStringLiteral("0,1,2")}));
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_THAT(run.errors.toStdString(),
                testing::AllOf(
                    testing::HasSubstr("1 interval cut off at the end of the run, which has "),
                    testing::HasSubstr("1 interval beyond the end of the run, which has "),
                    testing::HasSubstr("partial correlation of 3 nodes takes at least 4 volumes: "
                                       "interval 1 (\"short\") has 3\n")));
    EXPECT_EQ(summary().value("warnings").toArray().size(), 3);
}

TEST_F(Compute, NamesItsInputsAndSettingsInTheSummary)
{
    ASSERT_EQ(runCorvane(arguments({}, "linked.vtc")).status, 0);
    const QJsonObject inputs = summary().value("inputs").toObject();
    EXPECT_EQ(inputs.value("anatomy").toObject().value("file"), folder.path("a.vmr"));
    EXPECT_EQ(inputs.value("anatomy").toObject().value("sha1").toString().size(), 40);
    EXPECT_EQ(inputs.value("vtc").toObject().value("samples checksum").toString(),
              VtcFile(folder.path("run.vtc")).info().checksum);
    EXPECT_EQ(inputs.value("protocol").toObject().value("file"), folder.path("task.prt"));
    const QJsonObject settings = summary().value("settings").toObject();
    EXPECT_EQ(settings.value("measure"), "correlation");
    EXPECT_EQ(settings.value("values"), "absolute");
    EXPECT_EQ(settings.value("spanning tree"), true);
    EXPECT_EQ(settings.value("use protocol"), false);
    EXPECT_EQ(summary().value("volumes"), volumes);
    EXPECT_EQ(summary().value("repetition time in seconds"), 2);
    EXPECT_FALSE(summary().value("versions").toObject().value("Nodalis").toString().isEmpty());
}

TEST_F(Compute, GivesTheSameBytesEachTime)
{
    ASSERT_EQ(runCorvane(arguments({}, "linked.vtc")).status, 0);
    std::vector<QByteArray> before;
    for (const QString &name : outputs())
        before.push_back(bytesOf(folder.path("out/" + name)));
    ASSERT_EQ(runCorvane(arguments({}, "linked.vtc")).status, 0);
    std::vector<QByteArray> after;
    for (const QString &name : outputs())
        after.push_back(bytesOf(folder.path("out/" + name)));
    EXPECT_EQ(before, after);
}

TEST_F(Compute, SaysWhichVoxelsLieOutsideTheRun)
{
    VoiSet set = vois();
    set.vois[1].voxels.push_back({{200, 200, 200}});
    writeVoiFile(folder.path("set.voi"), set);
    const ProgramRun run = runCorvane(arguments());
    ASSERT_EQ(run.status, 0);
    const char *line = "Plugin> 1 of 2 voxels lie outside the VTC and count as 0 in VOI two";
    EXPECT_THAT(run.errors.toStdString(), testing::HasSubstr(line));
    EXPECT_TRUE(summary().value("warnings").toArray().contains(QString::fromUtf8(line)));
}

TEST_F(Compute, CutsAnIntervalBeyondTheRun)
{
    Prt prt;
    prt.conditions = {{QStringLiteral("late"), {{31, 400}}}, {QStringLiteral("never"), {{90, 99}}}};
    writePrtFile(folder.path("task.prt"), prt);
    const ProgramRun run = runCorvane(arguments(
        {QStringLiteral("--use-protocol"), QStringLiteral("--seeds"), QStringLiteral("0,1,2")},
        "linked.vtc"));
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    expectConnectivity(table("connectivity_0_late.csv"), nodes({0, 1, 2}), 30, 10, 1e-4);
    EXPECT_TRUE(table("connectivity_1_never.csv").isZero());
}

// What can go wrong

TEST_F(Compute, RefusesInputThatIsBadInOneLine)
{
    putBytes(folder.path("cut.vtc"), runFile(QString()).chopped(1));
    putBytes(folder.path("bad.voi"), "{");
    putBytes(folder.path("bad.vmr"), "NRRD");
    putBytes(folder.path("bad.prt"), "x");
    VoiSet coarse = vois();
    coarse.resolution[1] = 2;
    writeVoiFile(folder.path("coarse.voi"), coarse);

    struct Case {
        const char *option;
        QString value;
        const char *says;
    };
    const std::vector<Case> cases = {
        {"--anatomy", folder.path("missing.vmr"), "missing.vmr"},
        {"--anatomy", folder.path("bad.vmr"), "bad.vmr"},
        {"--vtc", folder.path("missing.vtc"), "missing.vtc"},
        {"--vtc", folder.path("cut.vtc"), "cut.vtc"},
        {"--voi", folder.path("missing.voi"), "missing.voi"},
        {"--voi", folder.path("bad.voi"), "bad.voi"},
        {"--voi", folder.path("coarse.voi"), "1 x 2 x 1 mm"},
        {"--prt", folder.path("missing.prt"), "missing.prt"},
        {"--prt", folder.path("bad.prt"), "bad.prt"},
        {"--seeds", QStringLiteral("0,4"), "seed 4: found 4 VOIs, expected a number from 0 to 3"},
        {"--out", folder.path("run.vtc/out"), "run.vtc/out"},
        {"--out", folder.path("run.vtc"), "run.vtc"},
    };
    for (const Case &c : cases) {
        QStringList changed = arguments();
        const int at = changed.indexOf(QString::fromUtf8(c.option));
        if (at >= 0)
            changed[at + 1] = c.value;
        else
            changed += {QString::fromUtf8(c.option), c.value};
        const ProgramRun run = runCorvane(changed);
        EXPECT_EQ(run.status, 1) << c.says;
        EXPECT_EQ(run.errorLines(), 1) << run.errors.constData();
        EXPECT_THAT(run.errors.toStdString(), testing::HasSubstr(c.says));
        EXPECT_TRUE(run.output.isEmpty()) << run.output.constData();
        EXPECT_FALSE(QDir(folder.path("out")).exists()) << c.says;
    }
}

TEST_F(Compute, WantsProtocolWhereOneIsAskedFor)
{
    const ProgramRun run = runCorvane(arguments({QStringLiteral("--use-protocol")}));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errorLines(), 1);
    EXPECT_THAT(run.errors.toStdString(), testing::HasSubstr("linked protocol: found none"));
    EXPECT_FALSE(QDir(folder.path("out")).exists());
}

TEST_F(Compute, SaysThatTheLinkedProtocolIsMissing)
{
    QFile::remove(folder.path("task.prt"));
    const ProgramRun run = runCorvane(arguments({}, "linked.vtc"));
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.errors.toStdString(), testing::HasSubstr("task.prt"));
    EXPECT_EQ(runCorvane(arguments({QStringLiteral("--use-protocol")}, "linked.vtc")).status, 1);
}

TEST_F(Compute, RefusesWrongUsage)
{
    const std::vector<QStringList> wrong = {
        {QStringLiteral("--seeds"), QStringLiteral("1,x")},
        {QStringLiteral("--seeds"), QStringLiteral("-1")},
        {QStringLiteral("--seeds"), QString()},
        {QStringLiteral("--measure"), QStringLiteral("tangent")},
        {QStringLiteral("--values"), QStringLiteral("both")},
        {QStringLiteral("--no-such-option")},
        {QStringLiteral("stray")},
    };
    for (const QStringList &more : wrong) {
        const ProgramRun run = runCorvane(arguments(more));
        EXPECT_EQ(run.status, 2) << more.join(' ').toStdString();
        EXPECT_FALSE(QDir(folder.path("out")).exists());
    }
    for (const char *made : {"--vtc", "--voi"}) {
        QStringList images = arguments();
        images[images.indexOf(QString::fromUtf8(made)) + 1] = QStringLiteral("image.nii.gz");
        const ProgramRun run = runCorvane(images);
        EXPECT_EQ(run.status, 2);
        EXPECT_THAT(run.errors.toStdString(), testing::HasSubstr("which Corvane import makes"));
    }
    for (const char *needed : {"--anatomy", "--vtc", "--voi", "--out"}) {
        QStringList few = arguments();
        const int at = few.indexOf(QString::fromUtf8(needed));
        few.erase(few.begin() + at, few.begin() + at + 2);
        EXPECT_EQ(runCorvane(few).status, 2) << needed;
    }
}

TEST_F(Compute, KeepsOlderTablesWhenItFails)
{
    ASSERT_EQ(runCorvane(arguments()).status, 0);
    const QStringList before = outputs();
    putBytes(folder.path("set.voi"), "{");
    EXPECT_EQ(runCorvane(arguments()).status, 1);
    EXPECT_EQ(outputs(), before);
}

/// Another program shortens the run when it is open and its samples have not been read yet: at the
/// second reading of the VOIs, behind which the samples are taken.
TEST_F(Compute, SaysThatARunBecameShorterWhileItWasOpen)
{
    const std::string vois = folder.path("set.voi").toStdString();
    const auto length = static_cast<qint64>(bytesOf(folder.path("run.vtc")).size());
    // In the middle of its last page, and before its second.
    for (const qint64 left : {length - 10, qint64(4000)}) {
        putBytes(folder.path("run.vtc"), runFile(QString()));
        int openings = 0;
        const TracedRun run =
            runTraced(QStringLiteral(CORVANE_PROGRAM), arguments(), [&](const SystemCall &call) {
                if (call.kind == SystemCall::Open && call.path == vois && ++openings == 2) {
                    EXPECT_TRUE(QFile::resize(folder.path("run.vtc"), left));
                }
                return Fate::GoesOn;
            });
        EXPECT_EQ(openings, 2);
        EXPECT_EQ(run.signal, 0);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.errors,
                  QStringLiteral("Corvane: %1: reading: found %2 bytes: it became shorter while it "
                                 "was open, expected %3 bytes\n")
                      .arg(folder.path("run.vtc"))
                      .arg(left)
                      .arg(length)
                      .toStdString());
        EXPECT_FALSE(QDir(folder.path("out")).exists());
    }
}

/// Otherwise pictures and matrices of other settings stand among the new ones.
TEST_F(Compute, RemovesWhatItWroteBeforeWithOtherSettings)
{
    ASSERT_EQ(runCorvane(arguments({QStringLiteral("--no-mst")})).status, 0);
    const QStringList fresh = outputs();
    putBytes(folder.path("out/notes.txt"), "mine");
    ASSERT_EQ(runCorvane(arguments({QStringLiteral("--use-protocol"), QStringLiteral("--plots")},
                                   "linked.vtc"))
                  .status,
              0);
    EXPECT_GT(outputs().size(), fresh.size() + 10);
    const ProgramRun run = runCorvane(arguments({QStringLiteral("--no-mst")}));
    EXPECT_EQ(run.status, 0);
    QStringList found = outputs();
    EXPECT_TRUE(found.removeOne(QStringLiteral("notes.txt")));
    EXPECT_EQ(found, fresh);
    EXPECT_FALSE(run.errors.contains("earlier run")) << run.errors.constData();
}

TEST_F(Compute, SaysWhichOfItsFilesItLeavesSinceTheyWereChanged)
{
    ASSERT_EQ(runCorvane(arguments()).status, 0);
    putBytes(folder.path("out/mst.csv"), "mine");
    const ProgramRun run = runCorvane(arguments({QStringLiteral("--no-mst")}));
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.errors.toStdString(),
                testing::EndsWith(folder.path("out/mst.csv").toStdString() +
                                  ": an earlier run wrote it and this one did not; it stays, since "
                                  "it was changed meanwhile\n"));
    EXPECT_EQ(bytesOf(folder.path("out/mst.csv")), "mine");
}

TEST_F(Compute, LeavesNothingWhenTheDiskIsFull)
{
    const ProgramRun run = runProgram(
        QStringLiteral("/bin/bash"),
        QStringList{QStringLiteral("-c"), QStringLiteral("trap '' XFSZ; ulimit -f 0; exec \"$@\""),
                    QStringLiteral("bash"), QStringLiteral(CORVANE_PROGRAM)} +
            arguments());
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errorLines(), 1) << run.errors.constData();
    EXPECT_THAT(run.errors.toStdString(),
                testing::StartsWith("Corvane: " + folder.path("out").toStdString() +
                                    "/timeseries.csv: writing: found File too large, expected room "
                                    "for "));
    EXPECT_FALSE(QDir(folder.path("out")).exists());
}

/// A disk of its own, with room for so many blocks of 4096 bytes and so many files.
TEST_F(Compute, SaysWhyATableCannotBeWritten)
{
    const struct {
        const char *options;
        std::string says;
    } rows[] = {
        {"nr_blocks=3", "/out/features.csv: writing: found No space left on device, expected room "
                        "for "},
        {"nr_inodes=4", "/out/connectivity.csv: writing: found No space left on device, expected a "
                        "place where a file can be written\n"},
        {"nr_inodes=2",
         "/out: output folder: found No space left on device, expected a folder that "
         "can be written to\n"},
    };
    if (runProgram(QStringLiteral("unshare"), {QStringLiteral("-m"), QStringLiteral("true")})
            .status != 0)
        GTEST_SKIP() << "this user can make no disk";
    const QString disk = folder.path("disk");
    ASSERT_TRUE(QDir().mkpath(disk));
    for (const auto &row : rows) {
        QStringList words = arguments();
        words.replace(words.indexOf(folder.path("out")), disk + QStringLiteral("/out"));
        const ProgramRun run = runProgram(
            QStringLiteral("unshare"),
            QStringList{
                QStringLiteral("-m"), QStringLiteral("bash"), QStringLiteral("-c"),
                QStringLiteral("mount -t tmpfs -o \"$1\" tmpfs \"$2\" && disk=$2 && shift 2 "
                               "&& \"$@\"; status=$?; ls -A \"$disk\"; exit $status"),
                QStringLiteral("bash"), QString::fromLatin1(row.options), disk,
                QStringLiteral(CORVANE_PROGRAM)} +
                words);
        EXPECT_EQ(run.status, 1) << row.options;
        EXPECT_THAT(run.errors.toStdString(),
                    testing::StartsWith("Corvane: " + disk.toStdString() + row.says))
            << row.options;
        EXPECT_EQ(run.errorLines(), 1);
        EXPECT_EQ(run.output, "") << "something is left";
    }
}

TEST_F(Compute, NamesFilesAfterConditionsAsFarAsTheFileSystemHasRoom)
{
    const QString plain(230, QLatin1Char('x'));
    const QString accented = QString::fromUtf8("\xc3\xb6"); // two bytes
    Prt prt;
    prt.name = QStringLiteral("task");
    prt.conditions = {{plain, {{1, 10}}},
                      {accented.repeated(150), {{11, 20}}},
                      {QLatin1Char('x') + accented.repeated(150), {{21, 30}}}};
    writePrtFile(folder.path("long.prt"), prt);
    const ProgramRun run =
        runCorvane(arguments({QStringLiteral("--use-protocol"), QStringLiteral("--prt"),
                              folder.path("long.prt"), QStringLiteral("--no-mst")}));
    EXPECT_EQ(run.status, 0) << run.errors.constData();
    // 255 bytes have room for "connectivity_0_", ".csv" and 236 more.
    const QStringList names = outputs().filter(QStringLiteral("connectivity_"));
    EXPECT_EQ(joined(names), "connectivity_0_" + plain.toStdString() + ".csv\nconnectivity_1_" +
                                 accented.repeated(118).toStdString() + ".csv\nconnectivity_2_x" +
                                 accented.repeated(117).toStdString() + ".csv");
    QStringList named;
    for (const QJsonValue slice : summary()[QStringLiteral("slices")].toArray())
        named += slice.toObject()[QStringLiteral("connectivity")].toString();
    EXPECT_EQ(joined(named), joined(names));
}

/// The file of VOIs is opened more than once.
TEST_F(Compute, SaysAWarningOnce)
{
    VoiSet set = vois();
    set.vois[1].name = QString(300, QLatin1Char('n'));
    writeVoiFile(folder.path("set.voi"), set);
    const ProgramRun run = runCorvane(arguments());
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors.count("is 300 bytes long, plugins get"), 1) << run.errors.constData();
    QStringList warnings;
    for (const QJsonValue warning : summary()[QStringLiteral("warnings")].toArray())
        warnings += warning.toString();
    EXPECT_EQ(warnings.size(), run.errorLines());
    EXPECT_EQ(warnings.removeDuplicates(), 0);
}

} // namespace

} // namespace corvane
