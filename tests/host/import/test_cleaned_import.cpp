// SPDX-License-Identifier: GPL-3.0-or-later
// Corvane import --clean, by the program itself: samples, ledger, protocol, and what compute says.
#include "host/files/input_error.h"
#include "host/import/uncleaned_course.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/support/program.h"

#include <Eigen/Cholesky>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;

constexpr int volumes = 40;
constexpr int left = 12; // volume that is left out, from 0
constexpr std::array<int, 3> size{4, 3, 2};

double jitter(int a, int b)
{
    const unsigned mixed = unsigned(a * 7919 + b * 104729 + 12345) * 2654435761U;
    return double(mixed >> 8 & 0xffff) / 65536 - 0.5;
}

double confound(int t)
{
    return jitter(t, 99) + 0.5 * std::sin(0.4 * t);
}

float sample(int voxel, int t)
{
    if (voxel == 3)
        return 77; // never changes
    if (voxel == 7 && t == 20)
        return NAN;
    return float(1000 + 10 * voxel + 100 * jitter(t, voxel) + 200 * confound(t) + 2 * t);
}

class CleanedImport : public testing::Test
{
protected:
    CleanedImport()
    {
        NiftiParts run;
        run.setSize({size[0], size[1], size[2], volumes});
        run.setSpacing(3);
        run.pixdim[4] = 2;
        std::vector<float> samples;
        for (int t = 0; t < volumes; ++t)
            for (int v = 0; v < 24; ++v)
                samples.push_back(sample(v, t));
        setSamples(run, samples);
        putBytes(path("run.nii"), niftiBytes(run));
        writeLabels("anatomy.nii", std::vector<qint16>(24, 100));
        std::vector<qint16> labels(24, 0);
        labels[0] = labels[1] = labels[2] = 1;
        labels[12] = labels[13] = 2;
        writeLabels("atlas.nii", labels);
        QByteArray table = "framewise_displacement\ttrouble\n";
        for (int t = 0; t < volumes; ++t)
            table += QByteArray(t == left ? "0.9" : "0.1") + '\t' +
                     QByteArray::number(confound(t), 'g', 17) + '\n';
        putBytes(path("confounds.tsv"), table);
        putBytes(path("events.tsv"), "onset\tduration\ttrial_type\n0\t20\ta\n20\t20\tb\n");
    }
    void writeLabels(const char *name, const std::vector<qint16> &values)
    {
        NiftiParts parts;
        parts.setSize({size[0], size[1], size[2]});
        parts.setSpacing(3);
        setSamples(parts, values);
        putBytes(path(name), niftiBytes(parts));
    }
    QString path(const char *name) const { return m_folder.path(name); }
    ProgramRun import(const QStringList &more)
    {
        return runCorvane(QStringList{QStringLiteral("import"), QStringLiteral("--anatomy"),
                                      path("anatomy.nii"), QStringLiteral("--functional"),
                                      path("run.nii"), QStringLiteral("--atlas"), path("atlas.nii"),
                                      QStringLiteral("--events"), path("events.tsv"),
                                      QStringLiteral("--name"), QStringLiteral("s"),
                                      QStringLiteral("--out"), path("out")} +
                          more);
    }
    QStringList cleaned() const
    {
        return {QStringLiteral("--confounds"),    path("confounds.tsv"),
                QStringLiteral("--clean"),        QStringLiteral("columns:trouble"),
                QStringLiteral("--fd-threshold"), QStringLiteral("0.5")};
    }
    /// What is left of a voxel of the run, by textbook normal equations, with its mean.
    static Eigen::VectorXd wanted(int voxel)
    {
        Eigen::MatrixXd design(volumes - 1, 3);
        Eigen::VectorXd series(volumes - 1);
        int row = 0;
        for (int t = 0; t < volumes; ++t)
            if (t != left) {
                design.row(row) << 1, t, confound(t);
                series[row++] = double(sample(voxel, t));
            }
        return (series -
                design * (design.transpose() * design).ldlt().solve(design.transpose() * series))
                   .array() +
               series.mean();
    }

private:
    TemporaryFolder m_folder;
};

TEST_F(CleanedImport, SamplesAreCleanedAndKeepTheirLevel)
{
    const ProgramRun ran = import(cleaned());
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    EXPECT_THAT(ran.output.toStdString(),
                HasSubstr("39 volumes 2 s apart, float, copied, cleaned: columns:trouble, order "
                          "joint, FD > 0.5 mm left out"));
    const VtcFile vtc(path("out/s.vtc"));
    EXPECT_TRUE(verifyVtcChecksum(vtc));
    ASSERT_EQ(vtc.info().nrOfVolumes, volumes - 1);
    // Which sample is which voxel of the run: each has a level of its own.
    int found = 0;
    int broken = 0;
    int constant = 0;
    const qint64 lattice = vtc.info().sampleCount() / vtc.info().nrOfVolumes;
    for (qint64 point = 0; point < lattice; ++point) {
        const Eigen::VectorXd series = Eigen::Map<const Eigen::VectorXf>(
                                           vtc.floatSamples() + point * (volumes - 1), volumes - 1)
                                           .cast<double>();
        if (!series.allFinite()) {
            EXPECT_TRUE(series.array().isNaN().all());
            ++broken;
            continue;
        }
        if ((series.array() == 77).all()) {
            ++constant;
            continue;
        }
        for (int voxel = 0; voxel < 24; ++voxel)
            found += (series - wanted(voxel)).cwiseAbs().maxCoeff() < 1e-3 ? 1 : 0;
    }
    EXPECT_EQ(found, 22);
    EXPECT_EQ(broken, 1);
    EXPECT_EQ(constant, 1);
    EXPECT_THAT(ran.errors.toStdString(), HasSubstr("1 voxels hold samples that are not finite"));
}

// At every lattice point, copied and interpolated.
TEST_F(CleanedImport, TheCourseBeforeTheCleaningIsThatOfTheImportWithoutIt)
{
    for (const char *resolution : {"3", "2"}) {
        const QStringList more{QStringLiteral("--resolution"), QLatin1String(resolution)};
        ASSERT_EQ(import(more).status, 0);
        const VtcFile plain(path("out/s.vtc"));
        const auto samples = [&](int point, int t) {
            const qint64 at = qint64(point) * volumes + t;
            return plain.info().type == VtcInfo::Short ? float(plain.shortSamples()[at])
                                                       : plain.floatSamples()[at];
        };
        EXPECT_FALSE(plain.info().uncleaned.has_value());
        ASSERT_EQ(import(cleaned() + more).status, 0);
        const VtcInfo info = VtcFile(path("out/s.vtc")).info();
        ASSERT_TRUE(info.uncleaned.has_value());
        EXPECT_EQ(info.uncleaned->path, path("run.nii"));
        ASSERT_EQ(info.uncleaned->volumes.size(), 39U);
        int point = 0;
        const std::atomic<bool> outdated(false);
        for (int k = 0; k < info.dimZ(); ++k)
            for (int j = 0; j < info.dimY(); ++j)
                for (int i = 0; i < info.dimX(); ++i, ++point) {
                    const auto course = uncleanedCourseAt(info, {i, j, k}, outdated);
                    ASSERT_EQ(course.size(), 39U);
                    for (int row = 0; row < 39; ++row) {
                        const float expected = samples(point, row < left ? row : row + 1);
                        if (std::isfinite(expected)) {
                            EXPECT_NEAR(course[std::size_t(row)], double(expected), 1e-2)
                                << resolution << ' ' << point << ' ' << row;
                        }
                    }
                }
        EXPECT_GT(point, 20);
    }
}

TEST_F(CleanedImport, TheCourseBeforeTheCleaningIsOfNoOtherRun)
{
    ASSERT_EQ(import(cleaned()).status, 0);
    const VtcInfo info = VtcFile(path("out/s.vtc")).info();
    std::atomic<bool> outdated(true);
    EXPECT_TRUE(uncleanedCourseAt(info, {0, 0, 0}, outdated).empty());
    outdated = false;
    QByteArray run = bytesOf(path("run.nii"));
    run[run.size() - 1] = char(run[run.size() - 1] ^ 1);
    putBytes(path("run.nii"), run);
    EXPECT_THROW(uncleanedCourseAt(info, {0, 0, 0}, outdated), InputError);
    ASSERT_TRUE(QFile::remove(path("run.nii")));
    EXPECT_THROW(uncleanedCourseAt(info, {0, 0, 0}, outdated), InputError);
}

TEST_F(CleanedImport, TheHeaderHasTheLedger)
{
    ASSERT_EQ(import(cleaned()).status, 0);
    const std::optional<CleaningLedger> ledger = VtcFile(path("out/s.vtc")).info().cleaning;
    ASSERT_TRUE(ledger.has_value());
    EXPECT_EQ(ledger->method, QStringLiteral("columns:trouble, order joint, FD > 0.5 mm left out"));
    EXPECT_EQ(ledger->volumes, 40);
    EXPECT_EQ(ledger->censored, 1);
    EXPECT_EQ(ledger->kept, 39);
    EXPECT_EQ(ledger->rank, 3);
    EXPECT_EQ(ledger->degreesOfFreedom, 36);
    EXPECT_NEAR(ledger->meanFdAfter.value(), 0.1, 1e-12);
}

TEST_F(CleanedImport, TheProtocolCountsTheVolumesThatAreKept)
{
    const ProgramRun ran = import(cleaned());
    const Prt prt = readPrtFile(path("out/s.prt"));
    ASSERT_EQ(prt.conditions.size(), 2U);
    EXPECT_EQ(prt.conditions[0].intervals[0], std::make_pair(1, 10));
    EXPECT_EQ(prt.conditions[1].intervals[0], std::make_pair(11, 19));
    EXPECT_THAT(ran.errors.toStdString(),
                HasSubstr("protocol: \"b\" 11-20 keeps 9 of 10 volumes, now 11-19"));
}

TEST_F(CleanedImport, LeavesTheFilesOfAnImportAndNoOthers)
{
    ASSERT_EQ(import(cleaned()).status, 0);
    EXPECT_EQ(QDir(path("out"))
                  .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name)
                  .join(QLatin1Char(' ')),
              QStringLiteral(".corvane-outputs.json s.prt s.vmr s.voi s.vtc"));
}

TEST_F(CleanedImport, ComputeTellsTheLedgerAndTakesMeansOfCleanedVoxels)
{
    ASSERT_EQ(import(cleaned()).status, 0);
    const ProgramRun ran =
        runCorvane({QStringLiteral("compute"), QStringLiteral("--anatomy"), path("out/s.vmr"),
                    QStringLiteral("--vtc"), path("out/s.vtc"), QStringLiteral("--voi"),
                    path("out/s.voi"), QStringLiteral("--out"), path("results")});
    ASSERT_EQ(ran.status, 0) << ran.errors.constData();
    const QJsonObject cleaning = QJsonDocument::fromJson(bytesOf(path("results/summary.json")))
                                     .object()[QLatin1String("cleaning")]
                                     .toObject();
    EXPECT_EQ(cleaning[QLatin1String("method")].toString(),
              QStringLiteral("columns:trouble, order joint, FD > 0.5 mm left out"));
    EXPECT_EQ(cleaning[QLatin1String("kept volumes")].toInt(), 39);
    EXPECT_EQ(cleaning[QLatin1String("degrees of freedom")].toDouble(), 36);
    // Averaging and cleaning are linear: the order of the two makes no difference.
    const Eigen::MatrixXf series = readTable(path("results/timeseries.csv"));
    const Eigen::VectorXd mean = (wanted(12) + wanted(13)) / 2;
    EXPECT_LT((series.row(1).transpose().cast<double>() - mean).cwiseAbs().maxCoeff(), 1e-3);
}

TEST_F(CleanedImport, ARunThatIsNotCleanedHasNoLedger)
{
    ASSERT_EQ(import({}).status, 0);
    EXPECT_FALSE(VtcFile(path("out/s.vtc")).info().cleaning.has_value());
    EXPECT_EQ(VtcFile(path("out/s.vtc")).info().nrOfVolumes, 40);
}

TEST_F(CleanedImport, WhatCannotBeAskedForIsWrongUsage)
{
    const auto refusal = [&](const QStringList &more) {
        const ProgramRun ran = import(more);
        EXPECT_EQ(ran.status, 2) << ran.errors.constData();
        EXPECT_EQ(ran.errorLines(), 1);
        EXPECT_FALSE(QFile::exists(path("out")));
        return ran.errors.toStdString();
    };
    EXPECT_THAT(refusal({QStringLiteral("--fd-threshold"), QStringLiteral("0.5")}),
                HasSubstr("--fd-threshold goes with --clean, which is missing"));
    EXPECT_THAT(refusal({QStringLiteral("--confounds"), path("confounds.tsv")}),
                HasSubstr("--confounds needs --clean with one of: none"));
    EXPECT_THAT(
        refusal(cleaned() + QStringList{QStringLiteral("--standardize"), QStringLiteral("zscore")}),
        HasSubstr("an import keeps the unit of the run"));
}

} // namespace
} // namespace corvane
