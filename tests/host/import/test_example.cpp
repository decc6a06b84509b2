// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/import/example_signals.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/support/program.h"

#include <QCryptographicHash>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

using namespace example;

QByteArray digest(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().left(16);
}

// ---- the signals

TEST(ExampleSignals, CorrelateAsTheirNetworksDo)
{
    const std::array<Series, regionCount> series = regionSeries();
    for (std::size_t a = 0; a < regionCount; ++a)
        for (std::size_t b = 0; b < a; ++b) {
            const Network first = regions[a].network;
            const Network second = regions[b].network;
            // While the subject moves, motor follows visual; cues excite the visual network.
            if (first != second && (first == Motor || second == Motor))
                continue;
            EXPECT_NEAR(correlation(series[a], series[b]),
                        correlationWithinNetwork * networkCorrelation(first, second), 0.03)
                << regions[a].name << ", " << regions[b].name;
        }
}

/// Mean correlation of motor and visual regions over the volumes of one condition.
double motorVisual(const char *condition)
{
    const std::array<Series, regionCount> series = regionSeries();
    std::vector<int> volumes;
    for (const TaskEvent &event : taskEvents())
        if (qstrcmp(event.condition, condition) == 0)
            for (int t = static_cast<int>(event.onset / repetitionTime);
                 t < (event.onset + event.duration) / repetitionTime; ++t)
                volumes.push_back(t);
    double sum = 0;
    for (std::size_t visual = 0; visual < 4; ++visual)
        for (std::size_t motor = 4; motor < 8; ++motor) {
            Eigen::MatrixXd both(2, static_cast<Eigen::Index>(volumes.size()));
            for (std::size_t n = 0; n < volumes.size(); ++n) {
                both(0, static_cast<Eigen::Index>(n)) = series[visual][std::size_t(volumes[n])];
                both(1, static_cast<Eigen::Index>(n)) = series[motor][std::size_t(volumes[n])];
            }
            sum += pearson(both, 0, 1, 0, both.cols());
        }
    return sum / 16;
}

TEST(ExampleSignals, JoinMotorAndVisualDuringMovement)
{
    EXPECT_GT(motorVisual("movement"), 0.3);
    EXPECT_LT(std::abs(motorVisual("rest")), 0.25);
}

TEST(ExampleRandom, IsTheSameOnEveryMachine)
{
    Random random(1);
    EXPECT_EQ(random.next(), Q_UINT64_C(0x910a2dec89025cc1));
    EXPECT_EQ(random.next(), Q_UINT64_C(0xbeeb8da1658eec67));
    double sum = 0;
    double squares = 0;
    for (int n = 0; n < 100000; ++n) {
        const double value = random.normal();
        sum += value;
        squares += value * value;
    }
    EXPECT_NEAR(sum / 100000, 0, 0.02);
    EXPECT_NEAR(squares / 100000, 1, 0.02);
}

// ---- the files

class Example : public testing::Test
{
protected:
    // Once for all tests: it takes a second.
    static void SetUpTestSuite()
    {
        s_folder = new TemporaryFolder;
        s_run = new ProgramRun(runCorvane({QStringLiteral("example"), s_folder->path("out")}));
    }
    static void TearDownTestSuite()
    {
        delete s_folder;
        delete s_run;
    }

    static QString path(const char *name)
    {
        return s_folder->path("out/") + QString::fromLatin1(name);
    }

    static TemporaryFolder *s_folder;
    static ProgramRun *s_run;
};

TemporaryFolder *Example::s_folder = nullptr;
ProgramRun *Example::s_run = nullptr;

TEST_F(Example, IsWrittenAndImportedWithoutADoubt)
{
    EXPECT_EQ(s_run->status, 0);
    EXPECT_EQ(s_run->errors, "");
    EXPECT_EQ(s_run->output,
              (path("example.vmr") + ": 180 x 216 x 180 voxels of 1 x 1 x 1 mm, copied\n" +
               path("example.voi") + ": 16 VOIs, 2176 functional voxels, 0 VOIs empty\n" +
               path("example.prt") + ": 3 conditions, 16 intervals\n" + path("example.vtc") +
               ": 72 x 60 x 60 samples 3 mm apart, 200 volumes 2 s apart, short, copied\n")
                  .toUtf8());
    EXPECT_EQ(namesIn(s_folder->path("out")).join(QLatin1Char(' ')),
              QStringLiteral("README.txt correlations.tsv example.prt example.vmr example.voi "
                             "example.vtc rest_correlations.tsv sub-01_T1w.nii.gz "
                             "sub-01_dseg.nii.gz sub-01_dseg.tsv "
                             "sub-01_task-movement_bold.nii.gz sub-01_task-movement_events.tsv "
                             "sub-01_task-rest_desc-confounds_timeseries.json "
                             "sub-01_task-rest_desc-confounds_timeseries.tsv "
                             "sub-01_task-rest_space-T1w_desc-brain_mask.nii.gz "
                             "sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz"));
}

TEST_F(Example, IsTheSameOnEveryMachine)
{
    struct File {
        const char *name;
        const char *digest;
    };
    // What is inside: packing may differ between processors.
    for (const File &file :
         {File{"sub-01_T1w.nii.gz", "504a654f61c0ed95"},
          File{"sub-01_dseg.nii.gz", "1320e7d21685c0cf"},
          File{"sub-01_dseg.tsv", "46bf13491601984e"}, File{"correlations.tsv", "c6d34ccf8e8a743f"},
          File{"sub-01_task-movement_bold.nii.gz", "d14727b57962d712"},
          File{"sub-01_task-movement_events.tsv", "0d93366330616a35"},
          File{"rest_correlations.tsv", "a6fe268232847c02"},
          File{"sub-01_task-rest_desc-confounds_timeseries.json", "6d19accec2e848cf"},
          File{"sub-01_task-rest_space-T1w_desc-brain_mask.nii.gz", "130c9364f1dbfbcf"},
          File{"sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz", "26cbe9265f58d004"}})
        EXPECT_EQ(digest(unpackedBytes(path(file.name))).toStdString(), file.digest) << file.name;
}

TEST_F(Example, HasTheRunOfTheNifti)
{
    const QByteArray run = unpackedBytes(path("sub-01_task-movement_bold.nii.gz"));
    ASSERT_EQ(run.size(), 352 + 2 * 60 * 72 * 60 * 200);
    const VtcFile vtc(path("example.vtc"));
    EXPECT_TRUE(verifyVtcChecksum(vtc));
    EXPECT_EQ(vtc.info().linkedProtocol, path("example.prt"));
    // A few voxels over all volumes: the cube's axes run back, down and left.
    for (int n = 0; n < 1000; ++n) {
        const int x = n * 7 % 60;
        const int y = n * 11 % 72;
        const int z = n * 13 % 60;
        const int place = (71 - y) + 72 * ((59 - z) + 60 * (59 - x));
        for (int t = 0; t < 200; ++t)
            ASSERT_EQ(vtc.shortSamples()[t + 200 * place],
                      get<qint16>(run, 352 + 2 * (x + 60 * (y + 72 * (z + 60 * t)))));
    }
}

TEST_F(Example, HasThreeConditionsOneOfThemOfEvents)
{
    const Prt prt = readPrtFile(path("example.prt"));
    ASSERT_EQ(prt.conditions.size(), 3U);
    EXPECT_EQ(prt.conditions[0].name, QStringLiteral("rest"));
    EXPECT_EQ(prt.conditions[0].intervals.size(), 6U);
    EXPECT_EQ(prt.conditions[0].intervals[1], std::make_pair(35, 49));
    EXPECT_EQ(prt.conditions[1].name, QStringLiteral("cue"));
    for (const auto &[from, to] : prt.conditions[1].intervals)
        EXPECT_EQ(from, to);
    EXPECT_EQ(prt.conditions[2].name, QStringLiteral("movement"));
    EXPECT_EQ(prt.conditions[2].intervals[0], std::make_pair(18, 32));
}

/// Means of the VOIs over the run.
Eigen::MatrixXd means(const VtcFile &vtc, const VoiSet &set)
{
    const VtcInfo &info = vtc.info();
    Eigen::MatrixXd result =
        Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(set.vois.size()), info.nrOfVolumes);
    for (std::size_t v = 0; v < set.vois.size(); ++v) {
        for (const auto &voxel : set.vois[v].voxels) {
            const int i = (voxel[0] - info.xStart) / info.resolution;
            const int j = (voxel[1] - info.yStart) / info.resolution;
            const int k = (voxel[2] - info.zStart) / info.resolution;
            const short *const series =
                vtc.shortSamples() + info.nrOfVolumes * (i + info.dimX() * (j + info.dimY() * k));
            for (int t = 0; t < info.nrOfVolumes; ++t)
                result(static_cast<Eigen::Index>(v), t) += series[t];
        }
        result.row(static_cast<Eigen::Index>(v)) /= double(set.vois[v].voxels.size());
    }
    return result;
}

TEST_F(Example, ShowsItsNetworksThroughDriftAndNoise)
{
    const VoiSet set = readVoiFile(path("example.voi"));
    ASSERT_EQ(set.vois.size(), std::size_t(regionCount));
    const Eigen::MatrixXd series = means(VtcFile(path("example.vtc")), set);
    const std::array<Series, regionCount> truth = regionSeries();
    for (int a = 0; a < regionCount; ++a) {
        EXPECT_EQ(set.vois[std::size_t(a)].name, QString::fromUtf8(regions[std::size_t(a)].name));
        for (int b = 0; b < a; ++b) {
            const double found = pearson(series, a, b, 0, series.cols());
            EXPECT_NEAR(found, correlation(truth[std::size_t(a)], truth[std::size_t(b)]), 0.12);
        }
    }
}

TEST_F(Example, ReplacesNothingAndLeavesNothingWhenItFails)
{
    const TemporaryFolder folder;
    const ProgramRun run =
        runProgram(QStringLiteral("prlimit"),
                   {QStringLiteral("--fsize=20000000"), QStringLiteral(CORVANE_PROGRAM),
                    QStringLiteral("example"), folder.path("out")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errorLines(), 1) << run.errors.constData();
    EXPECT_TRUE(folder.entries().isEmpty());
    EXPECT_EQ(runCorvane({QStringLiteral("example")}).status, 2);
}

} // namespace

} // namespace corvane
