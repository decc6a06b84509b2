// SPDX-License-Identifier: GPL-3.0-or-later
// Corvane connectome: from a run, an atlas and confounds to matrices, by the program itself.
#include "tests/host/extract/json_schema.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/support/program.h"

#include <Eigen/Cholesky>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;
using testing::StartsWith;

constexpr int volumes = 40;
constexpr int voxels = 12; // 4 x 3 x 1, three for each of four regions
constexpr auto prefix = "sub-01_task-rest_space-T1w_atlas-Four_";

/// A number that looks random, the same everywhere, from -0.5 to 0.5.
double jitter(int a, int b)
{
    const unsigned mixed = unsigned(a * 7919 + b * 104729 + 12345) * 2654435761U;
    return double(mixed >> 8 & 0xffff) / 65536 - 0.5;
}

double confound(int t)
{
    return jitter(t, 99) + 0.4 * std::sin(0.7 * t);
}

/// Region 0 and 1 share a series; all share the confound.
double sample(int voxel, int t)
{
    const int region = voxel / 3;
    return 1000 + 100 * jitter(t, region < 2 ? 0 : region) + 30 * jitter(t, 50 + voxel) +
           200 * confound(t);
}

struct Table {
    QList<QByteArray> columns;
    QList<QList<QByteArray>> rows;

    double value(int row, int column) const
    {
        bool isNumber = false;
        const double number = rows[row][column].toDouble(&isNumber);
        EXPECT_TRUE(isNumber) << rows[row][column].constData();
        return number;
    }
};

Table readTsv(const QString &path)
{
    QList<QByteArray> lines = bytesOf(path).split('\n');
    EXPECT_EQ(lines.takeLast(), QByteArray()) << path.toStdString();
    Table table;
    table.columns = lines.takeFirst().split('\t');
    for (const QByteArray &line : lines) {
        table.rows += line.split('\t');
        EXPECT_EQ(table.rows.last().size(), table.columns.size()) << path.toStdString();
    }
    return table;
}

QJsonObject readJson(const QString &path)
{
    return QJsonDocument::fromJson(bytesOf(path)).object();
}

/// The residual of a least-squares fit of the columns.
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

class ConnectomeCommand : public testing::Test
{
protected:
    ConnectomeCommand()
    {
        writeRun();
        writeImage("tpl_atlas-Four_dseg.nii.gz", {1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4});
        putBytes(path("names.tsv"), "index\tname\n1\tA left\n2\tA right\n3\tB\n4\tC\n");
        QByteArray table = "framewise_displacement\ttrouble\n";
        for (int t = 0; t < volumes; ++t)
            table += (t == 0 ? QByteArray("n/a") : QByteArray(t == 20 ? "0.8" : "0.1")) + '\t' +
                     QByteArray::number(confound(t), 'g', 17) + '\n';
        putBytes(path("confounds.tsv"), table);
    }

    void writeRun(int constantVoxel = -1)
    {
        std::vector<float> samples;
        for (int t = 0; t < volumes; ++t)
            for (int v = 0; v < voxels; ++v)
                samples.push_back(v == constantVoxel ? 5.0f : float(sample(v, t)));
        NiftiParts parts;
        parts.setSize({4, 3, 1, volumes});
        parts.setSpacing(3);
        parts.pixdim[4] = 2;
        setSamples(parts, samples);
        putBytes(path(runName), gzipped(niftiBytes(parts)));
    }
    void writeImage(const char *name, const std::vector<qint16> &values)
    {
        NiftiParts parts;
        parts.setSize({4, 3, 1});
        parts.setSpacing(3);
        setSamples(parts, values);
        putBytes(path(name), gzipped(niftiBytes(parts)));
    }

    QString path(const char *name) const { return m_folder.path(name); }
    QString output(const char *rest) const
    {
        return path("out") + QLatin1Char('/') + QLatin1String(prefix) + QLatin1String(rest);
    }
    ProgramRun run(const QStringList &more = {})
    {
        return runCorvane(QStringList{QStringLiteral("connectome"), QStringLiteral("--bold"),
                                      path(runName), QStringLiteral("--atlas"),
                                      path("tpl_atlas-Four_dseg.nii.gz"),
                                      QStringLiteral("--labels"), path("names.tsv"),
                                      QStringLiteral("--out"), path("out")} +
                          more);
    }
    QStringList cleaned() const
    {
        return {QStringLiteral("--confounds"), path("confounds.tsv"), QStringLiteral("--clean"),
                QStringLiteral("columns:trouble")};
    }
    /// The mean of a region, as the run's single precision holds it.
    static Eigen::VectorXd region(int number)
    {
        Eigen::VectorXd series(volumes);
        for (int t = 0; t < volumes; ++t) {
            double sum = 0;
            for (int v = 0; v < 3; ++v)
                sum += double(float(sample(3 * number + v, t)));
            series[t] = sum / 3;
        }
        return series;
    }

    static constexpr auto runName = "sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz";

private:
    TemporaryFolder m_folder;
};

TEST_F(ConnectomeCommand, CorrelationsOfCleanedSeries)
{
    const ProgramRun ran = run(cleaned());
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_THAT(ran.output.toStdString(), HasSubstr("4 nodes, 1 matrix\n40 volumes in the file"));

    Eigen::MatrixXd design(volumes, 3);
    for (int t = 0; t < volumes; ++t)
        design.row(t) << 1, t, confound(t);
    const Table table = readTsv(output("stat-pearsoncorrelation_relmat.tsv"));
    EXPECT_EQ(table.columns, (QList<QByteArray>{"Node", "A left", "A right", "B", "C"}));
    ASSERT_EQ(table.rows.size(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(table.rows[i][0], table.columns[i + 1]);
        for (int j = 0; j < 4; ++j)
            EXPECT_NEAR(table.value(i, j + 1),
                        correlation(residual(region(i), design), residual(region(j), design)),
                        1e-9);
    }
    EXPECT_GT(table.value(0, 2), 0.7);
    EXPECT_LT(std::abs(table.value(0, 3)), 0.5);

    const Table series = readTsv(output("stat-mean_timeseries.tsv"));
    ASSERT_EQ(series.rows.size(), volumes);
    const Eigen::VectorXd wanted = residual(region(2), design);
    for (int t = 0; t < volumes; ++t)
        EXPECT_NEAR(series.value(t, 2), wanted[t], 1e-9);
}

TEST_F(ConnectomeCommand, TheSameVolumesUncleanedStandBeside)
{
    ASSERT_EQ(run(cleaned() + QStringList{QStringLiteral("--fd-threshold"), QStringLiteral("0.5")})
                  .status,
              0);
    const Table table = readTsv(output("desc-uncleaned_relmat.tsv"));
    std::vector<int> kept;
    for (int t = 0; t < volumes; ++t)
        if (t != 20)
            kept.push_back(t);
    EXPECT_NEAR(table.value(0, 3), correlation(region(0)(kept), region(2)(kept)), 1e-9);
    EXPECT_GT(table.value(0, 3), 0.5);
}

TEST_F(ConnectomeCommand, ALedgerStandsBesideEachMatrix)
{
    ASSERT_EQ(run(cleaned() + QStringList{QStringLiteral("--fd-threshold"), QStringLiteral("0.5")})
                  .status,
              0);
    const QJsonObject json = readJson(output("stat-pearsoncorrelation_relmat.json"));
    EXPECT_EQ(json[QLatin1String("RelationshipMeasure")].toString(),
              QStringLiteral("Pearson correlation"));
    EXPECT_FALSE(json[QLatin1String("Directed")].toBool(true));
    EXPECT_TRUE(json[QLatin1String("Weighted")].toBool());
    EXPECT_FALSE(json[QLatin1String("ValidDiagonal")].toBool(true));
    EXPECT_EQ(json[QLatin1String("NodeFiles")].toArray(),
              QJsonArray{QStringLiteral("tpl_atlas-Four_dseg.nii.gz")});
    EXPECT_EQ(json[QLatin1String("Sources")].toArray(),
              (QJsonArray{QLatin1String(runName), QStringLiteral("tpl_atlas-Four_dseg.nii.gz"),
                          QStringLiteral("confounds.tsv")}));
    const QJsonObject ledger = json[QLatin1String("Ledger")].toObject();
    EXPECT_EQ(ledger[QLatin1String("Volumes")].toInt(), 40);
    EXPECT_EQ(ledger[QLatin1String("Censored")].toInt(), 1);
    EXPECT_EQ(ledger[QLatin1String("Kept")].toInt(), 39);
    EXPECT_EQ(ledger[QLatin1String("Rank")].toInt(), 3);
    EXPECT_EQ(ledger[QLatin1String("DegreesOfFreedom")].toDouble(), 36);
    EXPECT_EQ(ledger[QLatin1String("SecondsKept")].toDouble(), 78);
    EXPECT_NEAR(ledger[QLatin1String("MeanFDBefore")].toDouble(), (0.8 + 38 * 0.1) / 39, 1e-12);
    EXPECT_NEAR(ledger[QLatin1String("MeanFDAfter")].toDouble(), 0.1, 1e-12);

    const Table outliers = readTsv(output("outliers.tsv"));
    ASSERT_EQ(outliers.rows.size(), volumes);
    EXPECT_EQ(outliers.rows[20][0], QByteArray("1"));
    EXPECT_EQ(outliers.rows[19][0], QByteArray("0"));
    EXPECT_EQ(readTsv(output("design.tsv")).columns,
              (QList<QByteArray>{"intercept", "trend", "trouble"}));
    EXPECT_EQ(readTsv(output("motion.tsv")).rows[0][0], QByteArray("n/a"));
}

TEST_F(ConnectomeCommand, InputsOfADatasetAreNamedByTheirPlaceInIt)
{
    ASSERT_EQ(run({QStringLiteral("--dataset-root"), path("")}).status, 0);
    EXPECT_EQ(readJson(output("stat-pearsoncorrelation_relmat.json"))[QLatin1String("Sources")]
                  .toArray()[0]
                  .toString(),
              QStringLiteral("bids:input:") + QLatin1String(runName));
}

TEST_F(ConnectomeCommand, ANodeWithoutCoverageKeepsItsPlace)
{
    writeRun(9);
    writeImage("mask.nii.gz", {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0});
    const ProgramRun ran = run({QStringLiteral("--mask"), path("mask.nii.gz")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_THAT(ran.errors.toStdString(),
                HasSubstr("1 of 4 nodes with a coverage below 0.5 and n/a everywhere: C"));
    const Table coverage = readTsv(output("stat-coverage_bold.tsv"));
    EXPECT_EQ(coverage.columns, (QList<QByteArray>{"Node", "coverage"}));
    EXPECT_EQ(coverage.value(0, 1), 1);
    EXPECT_NEAR(coverage.value(3, 1), 1.0 / 3, 1e-12);
    const Table table = readTsv(output("stat-pearsoncorrelation_relmat.tsv"));
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(table.rows[3][i + 1], QByteArray("n/a"));
        EXPECT_EQ(table.rows[i][4], QByteArray("n/a"));
    }
    EXPECT_NEAR(table.value(0, 2), correlation(region(0), region(1)), 1e-9);
    EXPECT_EQ(readTsv(output("stat-mean_timeseries.tsv")).rows[5][3], QByteArray("n/a"));
    EXPECT_EQ(readTsv(output("stat-graphmeasures_nodes.tsv")).rows[3][1], QByteArray("n/a"));
    EXPECT_EQ(
        readJson(output("stat-pearsoncorrelation_relmat.json"))[QLatin1String("UncoveredNodes")]
            .toArray(),
        QJsonArray{QStringLiteral("C")});
}

TEST_F(ConnectomeCommand, TellsOfEachNodeWhereItIsAndToWhatItBelongs)
{
    putBytes(path("names.tsv"), "index\tname\tnetwork\themisphere\n"
                                "1\tA left\tVisual\tL\n2\tA right\tVisual\tR\n3\tB\t\t\n"
                                "4\tC\tn/a\tn/a\n5\tNowhere\t\t\n");
    writeImage("mask.nii.gz", {0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    ASSERT_EQ(run({QStringLiteral("--mask"), path("mask.nii.gz")}).status, 0);
    const Table nodes = readTsv(output("nodes.tsv"));
    // Voxels of 3 mm in rows of four: a region lies in the mean of its three, masked or not.
    EXPECT_EQ(nodes.rows[0].join(' '), QByteArray("1 A left Visual L 3 0 0 3 2"));
    EXPECT_EQ(nodes.rows[1].join(' '), QByteArray("2 A right Visual R 4 2 0 3 3"));
    EXPECT_EQ(nodes.rows[2].join(' '), QByteArray("3 B n/a n/a 5 4 0 3 3"));
    EXPECT_EQ(nodes.rows[4].join(' '), QByteArray("5 Nowhere n/a n/a n/a n/a n/a 0 0"));
}

TEST_F(ConnectomeCommand, ANodeWithJustTheLeastCoverageIsThere)
{
    const ProgramRun ran = run({QStringLiteral("--min-coverage"), QStringLiteral("1")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_EQ(
        readJson(output("stat-pearsoncorrelation_relmat.json"))[QLatin1String("UncoveredNodes")],
        QJsonArray());
}

TEST_F(ConnectomeCommand, SeveralMeasuresWindowsAndConditions)
{
    putBytes(path("events.tsv"),
             "onset\tduration\ttrial_type\n0\t24\twork\n24\t16\trest\n40\t24\twork\n");
    const ProgramRun ran =
        run({QStringLiteral("--measure"), QStringLiteral("fisherz,spearman,covariance"),
             QStringLiteral("--window"), QStringLiteral("40"), QStringLiteral("--step"),
             QStringLiteral("20"), QStringLiteral("--events"), path("events.tsv"),
             QStringLiteral("--per-interval")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    for (const char *stat : {"fisherz", "spearmancorrelation", "covariance"})
        for (const char *part :
             {"", "window-1_", "window-3_", "cond-work_", "cond-rest_", "cond-work_interval-2_"}) {
            const QByteArray stem = QByteArray(part) + "stat-" + stat;
            EXPECT_TRUE(QFile::exists(output((stem + "_relmat.tsv").constData())))
                << stem.constData();
            EXPECT_TRUE(QFile::exists(output((stem + "_relmat.json").constData())));
        }
    EXPECT_FALSE(QFile::exists(output("window-4_stat-fisherz_relmat.tsv")));
    const Table window = readTsv(output("window-2_stat-fisherz_relmat.tsv"));
    EXPECT_NEAR(window.value(0, 3),
                std::atanh(correlation(region(0).segment(10, 20), region(2).segment(10, 20))),
                1e-8);
    const QJsonObject part =
        readJson(output("window-2_stat-fisherz_relmat.json"))[QLatin1String("Part")].toObject();
    EXPECT_EQ(part[QLatin1String("Volumes")].toArray().size(), 20);
    EXPECT_EQ(part[QLatin1String("Volumes")].toArray()[0].toInt(), 10);
    // Eight volumes of rest are too few.
    EXPECT_EQ(readTsv(output("cond-rest_stat-fisherz_relmat.tsv")).rows[0][1], QByteArray("n/a"));
    EXPECT_THAT(ran.errors.toStdString(), HasSubstr("6 matrices are n/a: fewer than 10 volumes"));
    EXPECT_THAT(ran.errors.toStdString(), HasSubstr("hold the shared response to the stimulus"));
}

TEST_F(ConnectomeCommand, TheRepetitionTimeCanBeGiven)
{
    ASSERT_EQ(run({QStringLiteral("--tr"), QStringLiteral("3")}).status, 0);
    const QJsonObject json = readJson(output("stat-pearsoncorrelation_relmat.json"));
    EXPECT_EQ(json[QLatin1String("RepetitionTime")].toDouble(), 3);
    EXPECT_EQ(json[QLatin1String("Ledger")].toObject()[QLatin1String("SecondsKept")].toDouble(),
              120);
}

TEST_F(ConnectomeCommand, AWindowHasItsShareOfTheDegreesOfFreedom)
{
    ASSERT_EQ(run(cleaned() + QStringList{QStringLiteral("--fd-threshold"), QStringLiteral("0.5"),
                                          QStringLiteral("--window"), QStringLiteral("40"),
                                          QStringLiteral("--step"), QStringLiteral("20")})
                  .status,
              0);
    // Volumes 10 to 29 without the 20th; of the run 39 volumes are kept, on 36 degrees.
    const QJsonObject part =
        readJson(output("window-2_stat-pearsoncorrelation_relmat.json"))[QLatin1String("Part")]
            .toObject();
    EXPECT_NEAR(part[QLatin1String("EffectiveVolumes")].toDouble(), 19, 1e-12);
    EXPECT_NEAR(part[QLatin1String("DegreesOfFreedom")].toDouble(), 36.0 * 19 / 39, 1e-12);
}

TEST_F(ConnectomeCommand, WindowsBeginBehindTheVolumesThatAreNotSteady)
{
    const ProgramRun ran =
        run({QStringLiteral("--dummy-scans"), QStringLiteral("3"), QStringLiteral("--window"),
             QStringLiteral("40"), QStringLiteral("--step"), QStringLiteral("20"),
             QStringLiteral("--high-pass"), QStringLiteral("0.02")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    const QJsonObject part =
        readJson(output("window-1_stat-pearsoncorrelation_relmat.json"))[QLatin1String("Part")]
            .toObject();
    EXPECT_EQ(part[QLatin1String("Intervals")].toArray(), (QJsonArray{QJsonArray{3, 22}}));
    EXPECT_THAT(ran.errors.toStdString(),
                HasSubstr("windows of 40 s are shorter than the slowest waves that are left, of "
                          "50 s"));
}

TEST_F(ConnectomeCommand, IntervalsOnTheirOwnMeans)
{
    putBytes(path("events.tsv"), "onset\tduration\ttrial_type\n0\t24\twork\n40\t24\tWork\n"
                                 "50\t10\twork\n");
    ASSERT_EQ(
        run({QStringLiteral("--events"), path("events.tsv"), QStringLiteral("--centre-intervals")})
            .status,
        0);
    // The other one's name is the same to some disks.
    EXPECT_TRUE(QFile::exists(output("cond-Work2_stat-pearsoncorrelation_relmat.tsv")));
    const auto centred = [](const Eigen::VectorXd &series) {
        Eigen::VectorXd both(17);
        both << series.head(12).array() - series.head(12).mean(),
            series.segment(25, 5).array() - series.segment(25, 5).mean();
        return both;
    };
    EXPECT_NEAR(readTsv(output("cond-work_stat-pearsoncorrelation_relmat.tsv")).value(0, 3),
                correlation(centred(region(0)), centred(region(2))), 1e-9);
}

TEST_F(ConnectomeCommand, ANodeWithoutAnyVoxelHasNoValuesWhateverCoverageIsEnough)
{
    writeImage("mask.nii.gz", {1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0});
    const QStringList masked{QStringLiteral("--mask"), path("mask.nii.gz"),
                             QStringLiteral("--min-coverage")};
    const ProgramRun ran = run(masked + QStringList{QStringLiteral("0")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_EQ(readTsv(output("stat-pearsoncorrelation_relmat.tsv")).rows[3][1], QByteArray("n/a"));
    writeImage("mask.nii.gz", {1, 1, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0});
    const ProgramRun refused = run(masked + QStringList{QStringLiteral("1")});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.errors.toStdString(),
                HasSubstr("coverage: found no node with enough voxels, expected a run that covers "
                          "regions of the atlas"));
}

TEST_F(ConnectomeCommand, NodesOfOneNameAreSaid)
{
    putBytes(path("names.tsv"), "index\tname\n1\tA\n2\tA\n3\tB\n4\tC\n");
    const ProgramRun ran = run();
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_THAT(ran.errors.toStdString(), HasSubstr("2 nodes are called A"));
}

TEST_F(ConnectomeCommand, SidecarsAreAsTheirSchemasSay)
{
    putBytes(path("events.tsv"), "onset\tduration\ttrial_type\n0\t40\twork\n");
    const QStringList measures{QStringLiteral("--measure"), QStringLiteral("fisherz,covariance"),
                               QStringLiteral("--shrinkage"), QStringLiteral("ledoit-wolf")};
    const QStringList runs[] = {
        cleaned() + QStringList{QStringLiteral("--fd-threshold"), QStringLiteral("0.5")},
        measures + QStringList{QStringLiteral("--window"), QStringLiteral("40"),
                               QStringLiteral("--step"), QStringLiteral("20")},
        measures + QStringList{QStringLiteral("--events"), path("events.tsv")}};
    const QJsonObject matrix =
        readJson(QStringLiteral(SCHEMA_FOLDER) + QStringLiteral("/relmat.schema.json"));
    const QJsonObject series =
        readJson(QStringLiteral(SCHEMA_FOLDER) + QStringLiteral("/timeseries.schema.json"));
    int matrices = 0;
    for (const QStringList &options : runs) {
        const ProgramRun ran = run(options);
        ASSERT_EQ(ran.status, 0) << ran.errors.constData();
        EXPECT_EQ(schemaFaults(readJson(output("stat-mean_timeseries.json")), series),
                  QStringList());
        const QDir out(path("out"));
        for (const QString &name : out.entryList({QStringLiteral("*_relmat.json")})) {
            EXPECT_EQ(schemaFaults(readJson(out.filePath(name)), matrix), QStringList())
                << name.toStdString();
            ++matrices;
        }
    }
    EXPECT_GT(matrices, 10);
}

// The check sees what it is to see.
TEST_F(ConnectomeCommand, ASchemaFindsWhatIsMissingTooMuchOrOfAnotherKind)
{
    ASSERT_EQ(run().status, 0);
    const QJsonObject schema =
        readJson(QStringLiteral(SCHEMA_FOLDER) + QStringLiteral("/relmat.schema.json"));
    const QJsonObject good = readJson(output("stat-pearsoncorrelation_relmat.json"));
    const auto faults = [&](auto change) {
        QJsonObject json = good;
        change(json);
        return schemaFaults(json, schema).join(QLatin1Char(';')).toStdString();
    };
    EXPECT_EQ(faults([](QJsonObject &json) { json.remove(QLatin1String("Ledger")); }),
              ": no Ledger");
    EXPECT_EQ(faults([](QJsonObject &json) { json[QLatin1String("Extra")] = 1; }),
              ": Extra is not known");
    EXPECT_EQ(faults([](QJsonObject &json) { json[QLatin1String("Directed")] = 0; }),
              "/Directed: another type");
    EXPECT_EQ(faults([](QJsonObject &json) { json[QLatin1String("Sources")] = QJsonArray{1}; }),
              "/Sources/0: another type");
    EXPECT_EQ(faults([](QJsonObject &json) { json[QLatin1String("MinCoverage")] = -1; }),
              "/MinCoverage: too small");
    EXPECT_EQ(faults([](QJsonObject &json) {
                  QJsonObject cleaning = json[QLatin1String("Cleaning")].toObject();
                  cleaning[QLatin1String("Order")] = QStringLiteral("random");
                  json[QLatin1String("Cleaning")] = cleaning;
              }),
              "/Cleaning/Order: another value");
}

TEST_F(ConnectomeCommand, PicturesOfTheMatrix)
{
    ASSERT_EQ(run({QStringLiteral("--plots")}).status, 0);
    for (const char *name :
         {"stat-pearsoncorrelation_matrix.png", "stat-pearsoncorrelation_ring.png"}) {
        const QImage picture(output(name));
        ASSERT_FALSE(picture.isNull()) << name;
        EXPECT_EQ(picture.width(), 1000);
    }
}

TEST_F(ConnectomeCommand, TheSameBytesEachTime)
{
    ASSERT_EQ(run(cleaned()).status, 0);
    const auto all = [&] {
        QByteArray bytes;
        for (const QString &name : QDir(path("out")).entryList(QDir::Files))
            bytes += name.toUtf8() + bytesOf(path("out") + QLatin1Char('/') + name);
        return bytes;
    };
    const QByteArray first = all();
    ASSERT_EQ(run(cleaned()).status, 0);
    EXPECT_EQ(all(), first);
}

TEST_F(ConnectomeCommand, FilesThatAreNotMadeAgainGoWithTheRunBefore)
{
    ASSERT_EQ(run({QStringLiteral("--window"), QStringLiteral("40"), QStringLiteral("--step"),
                   QStringLiteral("20")})
                  .status,
              0);
    ASSERT_TRUE(QFile::exists(output("window-3_stat-pearsoncorrelation_relmat.tsv")));
    ASSERT_EQ(run().status, 0);
    EXPECT_FALSE(QFile::exists(output("window-3_stat-pearsoncorrelation_relmat.tsv")));
    EXPECT_TRUE(QFile::exists(output("stat-pearsoncorrelation_relmat.tsv")));
}

TEST_F(ConnectomeCommand, WhatCannotBeAskedForIsWrongUsage)
{
    const auto refusal = [&](const QStringList &more) {
        const ProgramRun ran = run(more);
        EXPECT_EQ(ran.status, 2) << ran.errors.constData();
        EXPECT_EQ(ran.errorLines(), 1);
        return ran.errors.toStdString();
    };
    EXPECT_THAT(refusal({QStringLiteral("--confounds"), path("confounds.tsv")}),
                HasSubstr("--confounds needs --clean with one of: none, simple"));
    EXPECT_THAT(refusal({QStringLiteral("--clean"), QStringLiteral("36P")}),
                HasSubstr("--clean 36P needs --confounds"));
    EXPECT_THAT(refusal(QStringList{QStringLiteral("--confounds"), path("confounds.tsv"),
                                    QStringLiteral("--clean"), QStringLiteral("best")}),
                HasSubstr("there is no strategy \"best\": expected one of none, simple"));
    EXPECT_THAT(refusal({QStringLiteral("--measure"), QStringLiteral("pearson,cosine")}),
                HasSubstr("--measure: found \"cosine\", expected one or more of: pearson"));
    EXPECT_THAT(refusal({QStringLiteral("--window"), QStringLiteral("30")}),
                HasSubstr("--window goes with --step"));
    EXPECT_THAT(refusal({QStringLiteral("--shrinkage"), QStringLiteral("ledoit-wolf")}),
                HasSubstr("none of which is asked for"));
    EXPECT_THAT(refusal({QStringLiteral("--dvars-scale"), QStringLiteral("0")}),
                HasSubstr("--dvars-scale: found \"0\", expected a number above 0"));
    EXPECT_THAT(refusal({QStringLiteral("--dvars-scale"), QStringLiteral("1000"),
                         QStringLiteral("--standardize"), QStringLiteral("psc")}),
                HasSubstr("--dvars-scale is for series in the unit of the run"));
    EXPECT_THAT(refusal({QStringLiteral("--delay"), QStringLiteral("4")}),
                HasSubstr("--delay goes with --events"));
    EXPECT_THAT(refusal({QStringLiteral("--min-coverage"), QStringLiteral("2")}),
                HasSubstr("expected 0 to 1"));
    EXPECT_THAT(refusal({QStringLiteral("--atlas-name"), QStringLiteral("a_b")}),
                HasSubstr("expected letters and digits"));
    EXPECT_FALSE(QFile::exists(path("out")));
}

TEST_F(ConnectomeCommand, BadInputIsOneLineAndLeavesNothing)
{
    const auto refusal = [&](const QStringList &more) {
        const ProgramRun ran = run(more);
        EXPECT_EQ(ran.status, 1) << ran.errors.constData();
        EXPECT_EQ(ran.errorLines(), 1);
        EXPECT_FALSE(QFile::exists(path("out")));
        return ran.errors.toStdString();
    };
    const QStringList strict =
        cleaned() + QStringList{QStringLiteral("--min-seconds"), QStringLiteral("240")};
    EXPECT_THAT(refusal(strict),
                HasSubstr("80 s, expected at least 240 s (40 volumes in the file"));
    EXPECT_THAT(refusal({QStringLiteral("--confounds"), path("confounds.tsv"),
                         QStringLiteral("--clean"), QStringLiteral("motion6")}),
                HasSubstr("confounds.tsv: the strategy motion6 needs columns that the table lacks: "
                          "rot_x"));
    EXPECT_THAT(refusal({QStringLiteral("--measure"), QStringLiteral("partial"),
                         QStringLiteral("--window"), QStringLiteral("20"), QStringLiteral("--step"),
                         QStringLiteral("200"), QStringLiteral("--min-coverage"),
                         QStringLiteral("2e-1"), QStringLiteral("--mask"), path("missing.nii")}),
                HasSubstr("missing.nii"));
    const QByteArray whole = bytesOf(path(runName));
    putBytes(path(runName), whole.left(whole.size() / 2));
    EXPECT_THAT(refusal(cleaned()), HasSubstr("sub-01_task-rest_space-T1w_desc-preproc_bold"));
}

TEST_F(ConnectomeCommand, APageIsWrittenWhenItIsAskedFor)
{
    ASSERT_EQ(run(cleaned()).status, 0);
    EXPECT_FALSE(QFile::exists(output("report.html")));
    const ProgramRun ran = run(cleaned() + QStringList{QStringLiteral("--page")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    const QByteArray page = bytesOf(output("report.html"));
    EXPECT_TRUE(page.startsWith("<!DOCTYPE html>"));
    EXPECT_TRUE(page.contains("columns:trouble, order joint"));
    EXPECT_EQ(page.count("<img "), 7);
    // Without the option the page of an earlier call is not left beside newer tables.
    ASSERT_EQ(run(cleaned()).status, 0);
    EXPECT_FALSE(QFile::exists(output("report.html")));
}

TEST_F(ConnectomeCommand, TheListOfStrategies)
{
    const ProgramRun ran = runCorvane(
        {QStringLiteral("connectome"), QStringLiteral("--clean"), QStringLiteral("help")});
    EXPECT_EQ(ran.status, 0);
    EXPECT_THAT(ran.output.toStdString(), StartsWith("none "));
    EXPECT_THAT(ran.output.toStdString(), HasSubstr("\n36P "));
}

} // namespace
} // namespace corvane
