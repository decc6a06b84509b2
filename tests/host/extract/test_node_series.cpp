// SPDX-License-Identifier: GPL-3.0-or-later
// The one pass over a run.
#include "host/extract/node_series.h"
#include "host/files/functional_run.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/support/notes.h"

#include <cmath>
#include <gmock/gmock.h>

namespace corvane
{
namespace
{

using testing::HasSubstr;

constexpr int voxels = 6;
constexpr int volumes = 5;

/// Voxel v in volume t.
double plainSample(int v, int t)
{
    return 100 * v + 7 * ((t * t + 3 * t * v) % 11);
}

/// Nodes 0 1 1 - 0 1 of a run of six voxels.
NodeMap smallMap()
{
    NodeMap map;
    map.nodes = {{1, QStringLiteral("one"), 2, 2}, {2, QStringLiteral("two"), 3, 6}};
    map.stretches = {{0, 1, 0}, {1, 2, 1}, {4, 1, 0}, {5, 1, 1}};
    return map;
}

class RunOfSixVoxels : public testing::Test
{
protected:
    template <typename Sample>
    void write(const std::vector<Sample> &samples, bool bigEndian = false, bool packed = true)
    {
        NiftiParts parts;
        parts.bigEndian = bigEndian;
        parts.setSize({3, 2, 1, volumes});
        parts.pixdim[4] = 2;
        parts.slope = slope;
        parts.intercept = intercept;
        setSamples(parts, samples);
        const QByteArray bytes = niftiBytes(parts);
        putBytes(path(), packed ? gzipped(bytes) : bytes);
    }
    template <typename Sample = qint16>
    std::vector<Sample> plainSamples() const
    {
        std::vector<Sample> samples;
        for (int t = 0; t < volumes; ++t)
            for (int v = 0; v < voxels; ++v)
                samples.push_back(Sample(plainSample(v, t)));
        return samples;
    }
    NodeSeries read(const ProgressWatch &watch = {}, const NodeMap &map = smallMap())
    {
        notes.clear();
        return readNodeSeries(path(), readRunHeader(path(), notes), map, watch, notes);
    }
    QString path() const { return m_folder.path("run.nii.gz"); }

    /// The mean over some voxels, of samples as written.
    double mean(std::initializer_list<int> of, int t) const
    {
        double sum = 0;
        for (const int v : of)
            sum += (slope != 0 ? slope : 1) * plainSample(v, t) + intercept;
        return sum / double(of.size());
    }
    void expectMeans(const NodeSeries &series, std::initializer_list<int> ofOne,
                     std::initializer_list<int> ofTwo) const
    {
        ASSERT_EQ(series.values.rows(), volumes);
        ASSERT_EQ(series.values.cols(), 2);
        for (int t = 0; t < volumes; ++t) {
            EXPECT_NEAR(series.values(t, 0), mean(ofOne, t), 1e-12 * 1000);
            EXPECT_NEAR(series.values(t, 1), mean(ofTwo, t), 1e-12 * 1000);
        }
        EXPECT_EQ(series.used[0], qint64(ofOne.size()));
        EXPECT_EQ(series.used[1], qint64(ofTwo.size()));
    }

    double slope = 0;
    double intercept = 0;
    QStringList notes;

private:
    TemporaryFolder m_folder;
};

TEST_F(RunOfSixVoxels, ANodeIsTheMeanOfItsVoxels)
{
    write(plainSamples());
    const NodeSeries series = read();
    expectMeans(series, {0, 4}, {1, 2, 5});
    EXPECT_EQ(joined(notes), "");
    const std::vector<double> coverage = series.coverage(smallMap().nodes);
    EXPECT_DOUBLE_EQ(coverage[0], 1);
    EXPECT_DOUBLE_EQ(coverage[1], 0.5);
}

TEST_F(RunOfSixVoxels, AnyKindOfSampleAndOrderOfBytes)
{
    slope = 0.5;
    intercept = -3;
    write(plainSamples(), true, false);
    expectMeans(read(), {0, 4}, {1, 2, 5});
    write(plainSamples<float>());
    expectMeans(read(), {0, 4}, {1, 2, 5});
    write(plainSamples<double>(), true);
    expectMeans(read(), {0, 4}, {1, 2, 5});
    write(plainSamples<qint32>());
    expectMeans(read(), {0, 4}, {1, 2, 5});
}

TEST_F(RunOfSixVoxels, AVoxelThatNeverChangesIsLeftOut)
{
    std::vector<qint16> samples = plainSamples();
    for (int t = 0; t < volumes; ++t)
        samples[std::size_t(t * voxels + 2)] = 1234;
    write(samples);
    expectMeans(read(), {0, 4}, {1, 5});
    EXPECT_EQ(joined(notes), "");
}

TEST_F(RunOfSixVoxels, AConstantVoxelLeavesNoTraceHoweverLargeItIs)
{
    std::vector<double> samples = plainSamples<double>();
    for (int t = 0; t < volumes; ++t)
        samples[std::size_t(t * voxels + 2)] = 1e30;
    write(samples);
    expectMeans(read(), {0, 4}, {1, 5});
}

TEST_F(RunOfSixVoxels, AVoxelThatIsNotFiniteFromTheStartIsLeftOutInOnePass)
{
    std::vector<float> samples = plainSamples<float>();
    samples[4] = NAN;
    samples[1] = INFINITY;
    write(samples);
    int calls = 0;
    const NodeSeries series = read([&](qint64, qint64) { return ++calls > 0; });
    expectMeans(series, {0}, {2, 5});
    EXPECT_EQ(calls, volumes);
    EXPECT_EQ(joined(notes), "");
}

TEST_F(RunOfSixVoxels, AVoxelInTheMiddleIsLeftOutAloneOfThoseThatFollowEachOther)
{
    NodeMap row;
    row.nodes = {{1, QStringLiteral("one"), 6, 6}};
    row.stretches = {{0, 6, 0}};
    for (const int broken : {1, 2, 4}) {
        auto samples = plainSamples<float>();
        samples[std::size_t(broken)] = NAN;
        write(samples);
        const NodeSeries series = read({}, row);
        EXPECT_EQ(series.used[0], 5);
        for (int t = 0; t < volumes; ++t) {
            const double all = 6 * mean({0, 1, 2, 3, 4, 5}, t);
            EXPECT_NEAR(series.values(t, 0), (all - plainSample(broken, t)) / 5, 1e-9);
        }
    }
}

TEST_F(RunOfSixVoxels, AVoxelThatTurnsNonFiniteNeedsASecondPassWhichIsSaid)
{
    std::vector<float> samples = plainSamples<float>();
    samples[std::size_t(3 * voxels + 4)] = NAN;
    samples[std::size_t(4 * voxels + 1)] = -INFINITY;
    samples[2] = NAN; // in the first volume
    write(samples);
    int calls = 0;
    const NodeSeries series = read([&](qint64, qint64) { return ++calls > 0; });
    expectMeans(series, {0}, {5});
    EXPECT_EQ(calls, 2 * volumes);
    EXPECT_THAT(joined(notes),
                HasSubstr("2 voxels are not finite behind the first volume and left out: the run "
                          "was read a second time"));
}

TEST_F(RunOfSixVoxels, ANodeWithoutVoxelsHasNoSeries)
{
    std::vector<float> samples = plainSamples<float>();
    samples[0] = samples[4] = NAN;
    write(samples);
    const NodeSeries series = read();
    EXPECT_TRUE(series.values.col(0).array().isNaN().all());
    EXPECT_EQ(series.used[0], 0);
    EXPECT_EQ(series.coverage(smallMap().nodes)[0], 0);
    EXPECT_TRUE(series.values.col(1).allFinite());
}

TEST_F(RunOfSixVoxels, DataThatEndEarlyAreRefused)
{
    write(plainSamples(), false, false);
    const QByteArray bytes = bytesOf(path());
    putBytes(path(), gzipped(bytes.left(bytes.size() - 3)));
    EXPECT_THAT(errorOf([&] { read(); }),
                HasSubstr("samples: found 57 bytes, 4 complete volumes, expected 60 bytes, 5 "
                          "volumes"));
}

TEST_F(RunOfSixVoxels, DataBehindTheLastVolumeAreSaidAndAWholeVolumeIsRefused)
{
    write(plainSamples(), false, false);
    const QByteArray whole = bytesOf(path());
    putBytes(path(), whole + "abc");
    expectMeans(read(), {0, 4}, {1, 2, 5});
    EXPECT_THAT(joined(notes), HasSubstr("3 bytes behind the last volume are left out"));
    putBytes(path(), whole + QByteArray(voxels * 2, '\0'));
    EXPECT_THAT(errorOf([&] { read(); }), HasSubstr("found another volume behind the last one"));
}

TEST_F(RunOfSixVoxels, DamagedPackedDataAreRefused)
{
    write(plainSamples());
    QByteArray bytes = bytesOf(path());
    bytes[bytes.size() - 6] = char(bytes[bytes.size() - 6] ^ 1);
    putBytes(path(), bytes);
    EXPECT_THAT(errorOf([&] { read(); }), HasSubstr("a wrong check sum"));
}

TEST_F(RunOfSixVoxels, AnotherFileThanAMomentAgoIsRefused)
{
    write(plainSamples());
    const NiftiHeader header = readRunHeader(path(), notes);
    write(plainSamples<float>());
    EXPECT_THAT(errorOf([&] { readNodeSeries(path(), header, smallMap(), {}, notes); }),
                HasSubstr("found another run than a moment ago"));
}

TEST_F(RunOfSixVoxels, AWatchStopsTheWork)
{
    write(plainSamples());
    EXPECT_THROW(read([](qint64 done, qint64) { return done < 2; }), WorkStopped);
}

} // namespace
} // namespace corvane
