// SPDX-License-Identifier: GPL-3.0-or-later
// Results of every command as the connectome window takes them, from small files written here.
#include "host/explorer/edge_evidence.h"
#include "host/explorer/read_result.h"
#include "tests/host/explorer/result_folder.h"
#include "tests/host/support/host_files.h"

#include <QRegularExpression>
#include <cmath>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;

constexpr auto stem = "sub-01_task-rest_atlas-Two_";

/// A run of six volumes, of which volume 2 is left out, with two nodes and a condition.
class ConnectomeFolder
{
public:
    ConnectomeFolder()
    {
        put("stat-pearsoncorrelation_relmat.tsv", "Node\ta_L\tb\na_L\t1\t0.5\nb\t0.5\t1\n");
        put("stat-pearsoncorrelation_relmat.json",
            R"({"RelationshipMeasure": "Pearson correlation",
                "Ledger": {"DegreesOfFreedom": 102, "DegreesOfFreedomAreEstimate": true}})");
        put("cond-faces_stat-pearsoncorrelation_relmat.tsv",
            "Node\ta_L\tb\na_L\t1\t0.25\nb\t0.25\t1\n");
        put("cond-faces_stat-pearsoncorrelation_relmat.json",
            R"({"RelationshipMeasure": "Pearson correlation", "Part": {"Condition": "faces!",
                "Intervals": [[1, 3]], "Volumes": [1, 3], "DegreesOfFreedom": 40.5}})");
        put("desc-uncleaned_relmat.tsv", "Node\ta_L\tb\na_L\t1\t0.9\nb\t0.9\t1\n");
        put("desc-uncleaned_relmat.json",
            R"({"RelationshipMeasure": "Pearson correlation", "Uncleaned": true,
                "Ledger": {"DegreesOfFreedom": 102}})");
        put("stat-mean_timeseries.tsv", "a_L\tb\n1\t2\n3\tn/a\n5\t6\n7\t8\n9\t10\n");
        put("stat-mean_timeseries.json",
            R"({"RepetitionTime": 2, "Volumes": [0, 1, 3, 4, 5], "Ledger": {"Volumes": 6,
                "Kept": 5, "Rank": 2, "DegreesOfFreedom": 3, "DegreesOfFreedomAreEstimate": true},
                "Cleaning": {"Summary": "24P, order joint"}})");
        put("stat-coverage_bold.tsv", "Node\tcoverage\na_L\t1\nb\t0.75\n");
        put("nodes.tsv", "index\tname\tnetwork\themisphere\tx\ty\tz\tvoxels\tused_voxels\n"
                         "1\ta_L\tVisual\tL\t-10\t20\t5.5\t8\t8\n"
                         "2\tb\tn/a\tn/a\tn/a\tn/a\tn/a\t4\t3\n");
    }

    void put(const char *rest, const QByteArray &bytes)
    {
        putBytes(folder.path(QLatin1String(stem) + QLatin1String(rest)), bytes);
    }

    TemporaryFolder folder;
};

NetworkResult read(const TemporaryFolder &folder)
{
    ResultRequest request;
    request.path = folder.path();
    return readResult(request);
}

TEST(ReadResult, ConnectomeHasMatricesSeriesNodesAndLedger)
{
    const ConnectomeFolder files;
    const NetworkResult result = read(files.folder);
    ASSERT_EQ(result.matrices.size(), 3U);
    EXPECT_EQ(result.matrices[0].name, QStringLiteral("Pearson correlation, whole run"));
    EXPECT_EQ(result.matrices[1].name, QStringLiteral("Pearson correlation, condition faces!"));
    EXPECT_EQ(result.matrices[2].name, QStringLiteral("Pearson correlation, whole run, uncleaned"));
    EXPECT_EQ(result.matrices[1].values(0, 1), 0.25);
    EXPECT_EQ(result.matrices[1].degrees, 40.5);
    EXPECT_FALSE(result.matrices[2].degrees) << "a ledger of another matrix";
    EXPECT_EQ(result.matrices[1].volumes, std::vector<int>({1, 3}));
    ASSERT_EQ(result.nodes.size(), 2U);
    EXPECT_EQ(result.nodes[0].network, QStringLiteral("Visual"));
    EXPECT_EQ(result.nodes[0].hemisphere, QStringLiteral("Left"));
    EXPECT_EQ(*result.nodes[0].place, Eigen::Vector3d(-10, 20, 5.5));
    EXPECT_FALSE(result.nodes[1].place);
    EXPECT_EQ(result.nodes[1].coverage, 0.75);
    EXPECT_EQ(result.nodes[1].usedVoxels, 3);
    ASSERT_TRUE(result.series);
    EXPECT_EQ(result.series->values(2, 1), 6);
    EXPECT_TRUE(std::isnan(result.series->values(1, 1)));
    EXPECT_EQ(result.series->leftOut, std::vector<bool>({false, false, true, false, false, false}));
    ASSERT_EQ(result.series->bands.size(), 1U);
    EXPECT_EQ(result.series->bands[0].name, QStringLiteral("faces!"));
    EXPECT_EQ(result.series->bands[0].last, 3);
    EXPECT_EQ(result.ledger.value(0), QStringLiteral("24P, order joint"));
}

TEST(ReadResult, EvidenceHasTheIntervalOfTheLedgersDegreesOfFreedom)
{
    const ConnectomeFolder files;
    const NetworkResult result = read(files.folder);
    const EdgeEvidence evidence = edgeEvidence(result, result.matrices[0], 0, 1);
    EXPECT_EQ(evidence.title, QStringLiteral("a_L - b"));
    // atanh 0.5 = 0.549306, +- 1.959964 / 10
    EXPECT_NEAR(evidence.low, std::tanh(0.5493061443340549 - 0.1959964), 1e-9);
    EXPECT_NEAR(evidence.high, std::tanh(0.5493061443340549 + 0.1959964), 1e-9);
    const QString text = evidence.lines.join(QLatin1Char('\n'));
    EXPECT_THAT(text.toStdString(), HasSubstr("95 % interval 0.339 to 0.632 (about 102 degrees"));
    EXPECT_THAT(text.toStdString(), HasSubstr("b: 3 of 4 voxels count, coverage 75.0 %"));
    const EdgeEvidence none = edgeEvidence(result, result.matrices[2], 0, 1);
    EXPECT_FALSE(none.hasInterval);
    EXPECT_THAT(none.lines.join(QLatin1Char('\n')).toStdString(), HasSubstr("no interval: "));
}

/// Two nodes that change slowly together, over 60 volumes; the second half is a condition's.
NetworkResult slowResult()
{
    NetworkResult result;
    result.nodes = {{QStringLiteral("a")}, {QStringLiteral("b")}};
    result.series.emplace();
    result.series->values.resize(60, 2);
    for (int volume = 0; volume < 60; ++volume) {
        result.series->values.row(volume) << std::sin(0.1 * volume), std::sin(0.1 * volume + 0.4);
        if (volume >= 30) // quick ones
            result.series->values.row(volume) << (volume % 2 == 0 ? 1.0 : -1.0),
                (volume % 4 < 2 ? 1.0 : -1.0);
        result.series->volumes.push_back(volume);
    }
    result.series->leftOut.assign(60, false);
    ResultMatrix whole;
    whole.name = QStringLiteral("whole");
    whole.kind = ValueKind::Correlation;
    whole.values = Eigen::MatrixXd::Constant(2, 2, 0.5);
    whole.degrees = 58;
    ResultMatrix part = whole;
    part.name = QStringLiteral("part");
    part.degrees = 28;
    for (int volume = 30; volume < 60; ++volume)
        part.volumes.push_back(volume);
    result.matrices = {whole, part};
    return result;
}

TEST(EdgeEvidence, TakesSerialCorrelationOffWithTheVolumesOfThePart)
{
    const NetworkResult result = slowResult();
    const auto serialDegrees = [&](int matrix) {
        static const QRegularExpression form(
            QStringLiteral("with serial correlation: .*\\(about ([0-9.]+) degrees"));
        const EdgeEvidence evidence =
            edgeEvidence(result, result.matrices[std::size_t(matrix)], 0, 1);
        return form.match(evidence.lines.join(QLatin1Char('\n'))).captured(1).toDouble();
    };
    EXPECT_GT(serialDegrees(0), 3);
    EXPECT_LT(serialDegrees(0), 52) << "of 58, since half of the volumes change slowly";
    EXPECT_GT(serialDegrees(1), 25) << "of 28, since the part has the quick half alone";
    EXPECT_LE(serialDegrees(1), 28);
}

TEST(EdgeEvidence, APartialCorrelationLosesADegreeForEachOtherNodeAndTwoMore)
{
    NetworkResult result;
    ResultMatrix matrix;
    matrix.kind = ValueKind::PartialCorrelation;
    matrix.values = Eigen::MatrixXd::Constant(12, 12, 0.5);
    matrix.values.diagonal().setOnes();
    matrix.degrees = 112;
    result.nodes.resize(12);
    result.matrices = {matrix};
    const EdgeEvidence evidence = edgeEvidence(result, matrix, 0, 1);
    ASSERT_TRUE(evidence.hasInterval);
    // 1/sqrt(112 - 10 - 2), the others of a pair being 10
    EXPECT_NEAR(evidence.low, std::tanh(std::atanh(0.5) - 1.959964 / 10), 1e-9);
    EXPECT_NEAR(evidence.high, std::tanh(std::atanh(0.5) + 1.959964 / 10), 1e-9);
    matrix.isShrunk = true;
    const EdgeEvidence shrunk = edgeEvidence(result, matrix, 0, 1);
    EXPECT_FALSE(shrunk.hasInterval);
    EXPECT_THAT(shrunk.lines.join(QLatin1Char('\n')).toStdString(),
                HasSubstr("no interval is known for a shrunk matrix"));
}

TEST(ReadResult, SubjectsFolderHasItsRuns)
{
    ConnectomeFolder files;
    putBytes(files.folder.path("sub-01_task-nback_atlas-Two_stat-pearsoncorrelation_relmat.tsv"),
             "Node\tx\ty\nx\t1\t-0.1\ny\t-0.1\t1\n");
    const NetworkResult first = read(files.folder);
    EXPECT_EQ(first.runs, QStringList({QStringLiteral("sub-01_task-nback_atlas-Two"),
                                       QStringLiteral("sub-01_task-rest_atlas-Two")}));
    EXPECT_EQ(first.run, first.runs[0]);
    ResultRequest request;
    request.path = files.folder.path();
    request.run = first.runs[1];
    EXPECT_EQ(readResult(request).matrices.size(), 3U);
    request.run = QStringLiteral("sub-02");
    EXPECT_THAT(errorOf([&] { readResult(request); }),
                HasSubstr("found \"sub-02\", expected one of"));
}

TEST(ReadResult, LabelsAndPlacesOfOtherFilesCount)
{
    const ConnectomeFolder files;
    putBytes(files.folder.path("labels.tsv"), "index\tname\tYeo\tSystem\n1\tb\tx\tMotor\n");
    putBytes(files.folder.path("places.tsv"), "name\tx\ty\tz\nb\t1\t2\t3\n");
    ResultRequest request;
    request.path = files.folder.path();
    request.labels = files.folder.path("labels.tsv");
    request.centroids = files.folder.path("places.tsv");
    const NetworkResult result = readResult(request);
    EXPECT_EQ(result.nodes[1].network, QStringLiteral("Motor"));
    EXPECT_EQ(result.nodes[0].network, QString());
    EXPECT_EQ(result.nodes[0].hemisphere, QStringLiteral("Left")) << "of its name";
    EXPECT_EQ(*result.nodes[1].place, Eigen::Vector3d(1, 2, 3));
}

TEST(ReadResult, ComputeHasItsSlices)
{
    const TemporaryFolder folder;
    putBytes(folder.path("summary.json"),
             R"({"settings": {"measure": "correlation", "values": "absolute", "use protocol": true},
                 "nodes": [{"voi": 0, "name": "a", "voxels": 3}, {"voi": 1, "name": "b", "voxels": 4}],
                 "repetition time in seconds": 0.72,
                 "slices": [{"slice": 0, "condition": "rest", "connectivity": "c_0.csv"},
                            {"slice": 1, "condition": "task", "connectivity": "c_1.csv"}]})");
    putBytes(folder.path("c_0.csv"), "0,0.5\n0.5,0\n");
    putBytes(folder.path("c_1.csv"), "0,nan\nnan,0\n");
    putBytes(folder.path("timeseries.csv"), "1,2,3\n4,5,6\n");
    const NetworkResult result = read(folder);
    ASSERT_EQ(result.matrices.size(), 2U);
    EXPECT_EQ(result.matrices[0].name, QStringLiteral("correlation, 0 rest"));
    EXPECT_EQ(result.matrices[0].values(1, 0), 0.5);
    EXPECT_TRUE(std::isnan(result.matrices[1].values(1, 0)));
    EXPECT_EQ(result.nodes[1].voxels, 4);
    ASSERT_TRUE(result.series);
    EXPECT_EQ(result.series->values(2, 0), 3);
}

TEST(ReadResult, EventsOfAComputeHaveNoMatrix)
{
    const TemporaryFolder folder;
    const auto write = [&](const char *first) {
        putBytes(folder.path("summary.json"),
                 R"({"settings": {"measure": "correlation", "values": "signed",
                                  "use protocol": true},
                     "nodes": [{"voi": 0, "name": "a"}, {"voi": 1, "name": "b"}],
                     "slices": [{"slice": 0, "condition": "cue", "event": true,
                                 "connectivity": "c_0.csv"},
                                {"slice": 1, "condition": "task", "event": )" +
                     QByteArray(first) + R"(, "connectivity": "c_1.csv"}]})");
    };
    putBytes(folder.path("c_0.csv"), "0,0\n0,0\n");
    putBytes(folder.path("c_1.csv"), "0,-0.5\n-0.5,0\n");
    write("false");
    const NetworkResult result = read(folder);
    ASSERT_EQ(result.matrices.size(), 1U);
    EXPECT_EQ(result.matrices[0].name, QStringLiteral("correlation, 1 task"));
    EXPECT_EQ(result.notes, QStringList{QStringLiteral(
                                "left out, since one volume has no correlation: 1 event")});
    write("true"); // there is nothing else to show
    EXPECT_EQ(read(folder).matrices.size(), 2U);
}

TEST(ReadResult, GroupHasItsTestsAndComponents)
{
    const TemporaryFolder folder;
    putBytes(folder.path("group.json"),
             R"({"Participants": ["s1", "s2"], "Nodes": ["a", "b", "c"],
                 "LeftOut": ["sub-09: node c is missing"],
                 "Contrasts": [{"Name": "old", "Statistic": "t"}]})");
    putBytes(folder.path("edges.tsv"),
             "contrast\tnode_1\tnode_2\testimate\tt\tF\tdf\tp\tp_perm\tp_fwe\tq\n"
             "old\ta\tb\t0.25\t3.5\tn/a\t18\t0.001\t0.002\t0.03\t0.004\n"
             "old\tb\tc\t-0.5\t-1\tn/a\t18\t0.5\t0.6\t0.7\t0.8\n");
    putBytes(folder.path("components.tsv"),
             "contrast\tthreshold\tside\tedges\tintensity\tp_extent\tp_intensity\tmembers\n"
             "old\t2.5\tgreater\t2\t1\t0.04\t0.05\t0-1 1-2\n");
    const NetworkResult result = read(folder);
    ASSERT_EQ(result.matrices.size(), 2U);
    EXPECT_EQ(result.matrices[0].name, QStringLiteral("old: t"));
    EXPECT_EQ(result.matrices[0].values(1, 0), 3.5);
    EXPECT_EQ(result.matrices[0].limit, 3.5);
    EXPECT_EQ(result.matrices[1].values(1, 2), -0.5);
    EXPECT_EQ(result.contrasts[0].pFamily(0, 1), 0.03);
    ASSERT_EQ(result.components.size(), 1U);
    EXPECT_EQ(result.components[0].edges[1], std::pair(1, 2));
    EXPECT_EQ(result.leftOut.size(), 1);
    const EdgeEvidence evidence = edgeEvidence(result, result.matrices[0], 0, 1);
    EXPECT_THAT(evidence.lines.join(QLatin1Char('\n')).toStdString(),
                HasSubstr("p 0.0010, family-wise p 0.0300, q 0.0040"));
    putBytes(folder.path("components.tsv"),
             "contrast\tthreshold\tside\tedges\tintensity\tp_extent\tp_intensity\tmembers\n"
             "old\t2.5\tgreater\t2\t1\t0.04\t0.05\t0-3\n");
    EXPECT_THAT(errorOf([&] { read(folder); }), HasSubstr("expected two numbers of nodes"));
}

TEST(ReadResult, GroupTakesNodesFromItsStudy)
{
    const TemporaryFolder folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("study/sub-01/ses-a/func")));
    putBytes(folder.path("study/sub-01/ses-a/func/r_atlas-T_nodes.tsv"),
             "index\tname\tnetwork\themisphere\tx\ty\tz\n1\ta\tVisual\tR\t1\t2\t3\n"
             "2\tb\tMotor\tn/a\t4\t5\tn/a\n3\tdropped\tn/a\tn/a\tn/a\tn/a\tn/a\n");
    putBytes(folder.path("group.json"),
             R"({"Nodes": ["a", "b"], "Settings": {"Study": {"Folder": ")" +
                 folder.path("study").toUtf8() +
                 R"("}}, "Contrasts": [{"Name": "c", "Statistic": "t"}]})");
    putBytes(folder.path("edges.tsv"),
             "contrast\tnode_1\tnode_2\testimate\tt\tF\tdf\tp\tp_perm\tp_fwe\tq\n"
             "c\ta\tb\t1\t2\tn/a\t3\t0.1\t0.2\t0.3\t0.4\n");
    const NetworkResult result = read(folder);
    EXPECT_EQ(result.nodes[0].network, QStringLiteral("Visual"));
    EXPECT_EQ(result.nodes[0].hemisphere, QStringLiteral("Right"));
    EXPECT_EQ(*result.nodes[0].place, Eigen::Vector3d(1, 2, 3));
    EXPECT_EQ(result.nodes[1].network, QStringLiteral("Motor"));
    EXPECT_FALSE(result.nodes[1].place);
}

TEST(ReadResult, IsFoundInAStudyAndNotLookedForInAllOfADisk)
{
    const TemporaryFolder folder;
    const QByteArray matrix = matrixText(3, exampleValue);
    const QString func = folder.path("studies/mine/sub-01/ses-a/func");
    ASSERT_TRUE(QDir().mkpath(func));
    putBytes(func + "/r_atlas-T_stat-pearsoncorrelation_relmat.tsv", matrix);
    ResultRequest request;
    for (const char *above : {"studies", "studies/mine", "studies/mine/sub-01",
                              "studies/mine/sub-01/ses-a", "studies/mine/sub-01/ses-a/func"}) {
        request.path = folder.path(above);
        EXPECT_EQ(readResult(request).nodes.size(), 3u) << above;
    }
    request.path = folder.path();
    EXPECT_THAT(errorOf([&] { readResult(request); }), HasSubstr("none of a finished result"));

    // Links are not followed: a ring of them has no end.
    ASSERT_TRUE(QFile::link(folder.path("studies/mine"), func + "/sub-02"));
    request.path = folder.path("studies");
    EXPECT_EQ(readResult(request).nodes.size(), 3u);
}

TEST(ReadResult, OneMatrixIsAResult)
{
    const TemporaryFolder folder;
    putBytes(folder.path("m.csv"), "0,2,3\n2,0,4\n3,4,0\n");
    ResultRequest request;
    request.path = folder.path("m.csv");
    const NetworkResult result = readResult(request);
    EXPECT_EQ(result.nodes[2].name, QStringLiteral("2"));
    EXPECT_EQ(result.matrices[0].limit, 4);
}

TEST(ReadResult, ListOfNamesNamesTheNodesOfAMatrixWithout)
{
    const TemporaryFolder folder;
    putBytes(folder.path("m.csv"), "0,2,3\n2,0,4\n3,4,0\n");
    putBytes(folder.path("names.csv"), "L_cuneus,R_cuneus,brainstem\n");
    ResultRequest request;
    request.path = folder.path("m.csv");
    request.labels = folder.path("names.csv");
    const NetworkResult result = readResult(request);
    EXPECT_EQ(result.nodes[1].name, QStringLiteral("R_cuneus"));
    EXPECT_EQ(result.nodes[1].hemisphere, QStringLiteral("Right"));
    putBytes(folder.path("names.csv"), "a,b\n");
    EXPECT_THAT(errorOf([&] { readResult(request); }), HasSubstr("expected a column \"index\""));
}

TEST(ReadResult, FolderAboveTheMatricesOpensThemOrTellsWhichThereAre)
{
    const TemporaryFolder folder;
    const auto put = [&](const char *path) {
        QDir().mkpath(QFileInfo(folder.path(path)).path());
        putBytes(folder.path(path), "Node\tx\ty\nx\t1\t-0.1\ny\t-0.1\t1\n");
    };
    put("sub-01/ses-a/func/sub-01_atlas-T_stat-pearsoncorrelation_relmat.tsv");
    EXPECT_EQ(read(folder).run, QStringLiteral("sub-01_atlas-T"));
    put("sub-02/func/sub-02_atlas-T_stat-pearsoncorrelation_relmat.tsv");
    EXPECT_THAT(errorOf([&] { read(folder); }),
                testing::AllOf(HasSubstr("found 2 folders with matrices, expected one of them"),
                               HasSubstr("sub-01/ses-a/func")));
}

TEST(ReadResult, SaysWhatItExpects)
{
    const TemporaryFolder folder;
    EXPECT_THAT(errorOf([&] { read(folder); }),
                HasSubstr("found none of a finished result, expected a folder with *_relmat.tsv"));
    ResultRequest request;
    request.path = folder.path("nothing");
    EXPECT_THAT(errorOf([&] { readResult(request); }), HasSubstr("no such folder"));
}

} // namespace
} // namespace corvane
