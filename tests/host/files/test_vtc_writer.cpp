// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/vtc_writer.h"
#include "tests/host/support/host_files.h"

namespace corvane
{

namespace
{

VtcInfo runInfo(VtcInfo::SampleType type, int volumes)
{
    VtcInfo info = smallVtcInfo(type);
    info.xEnd = info.xStart + 3 * 13;
    info.yEnd = info.yStart + 3 * 11;
    info.zEnd = info.zStart + 3 * 7;
    info.nrOfVolumes = volumes;
    return info;
}

/// Different for every volume and voxel.
template <typename Sample>
Sample valueAt(int volume, qint64 voxel)
{
    return static_cast<Sample>((volume * 7919 + static_cast<int>(voxel) * 31) % 65536 - 32768);
}

template <typename Sample>
void fill(VtcWriter &writer, const VtcInfo &info, Sample *(VtcWriter::*next)())
{
    const qint64 voxels = qint64(info.dimX()) * info.dimY() * info.dimZ();
    for (int t = 0; t < info.nrOfVolumes; ++t) {
        Sample *const volume = (writer.*next)();
        for (qint64 voxel = 0; voxel < voxels; ++voxel)
            volume[voxel] = valueAt<Sample>(t, voxel);
        writer.addVolume();
    }
}

template <typename Sample>
void expectValues(const VtcInfo &info, const Sample *samples)
{
    ASSERT_NE(samples, nullptr);
    const qint64 voxels = qint64(info.dimX()) * info.dimY() * info.dimZ();
    for (qint64 voxel = 0; voxel < voxels; ++voxel)
        for (int t = 0; t < info.nrOfVolumes; ++t)
            ASSERT_EQ(samples[t + voxel * info.nrOfVolumes], valueAt<Sample>(t, voxel));
}

/// Bytes of memory for waiting volumes: one volume of shorts has 2002 bytes.
class BlockSizes : public testing::TestWithParam<qint64>
{
};

TEST_P(BlockSizes, MakeNoDifference)
{
    const TemporaryFolder folder;
    const QString path = folder.path("run.vtc");
    const VtcInfo info = runInfo(VtcInfo::Short, 29);
    VtcWriter writer(path, info, GetParam());
    fill(writer, info, &VtcWriter::shortVolume);
    EXPECT_FALSE(QFile::exists(path));
    writer.commit();
    EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("run.vtc")});
    const VtcFile file(path);
    expectValues(info, file.shortSamples());
    EXPECT_TRUE(verifyVtcChecksum(file));
    EXPECT_EQ(file.info().checksum, writer.checksum());

    const QString floatPath = folder.path("float.vtc");
    const VtcInfo floatInfo = runInfo(VtcInfo::Float, 29);
    VtcWriter floatWriter(floatPath, floatInfo, GetParam());
    fill(floatWriter, floatInfo, &VtcWriter::floatVolume);
    floatWriter.commit();
    const VtcFile floatFile(floatPath);
    expectValues(floatInfo, floatFile.floatSamples());
    EXPECT_TRUE(verifyVtcChecksum(floatFile));
}

INSTANTIATE_TEST_SUITE_P(Bytes, BlockSizes,
                         testing::Values(0, 1, 2002, 6006, 10010, 58058, 1 << 20));

TEST(VtcWriter, ReplacesAnOlderFileOnlyWhenItIsDone)
{
    const TemporaryFolder folder;
    const QString path = folder.path("run.vtc");
    putBytes(path, "older");
    const VtcInfo info = runInfo(VtcInfo::Short, 3);
    {
        VtcWriter writer(path, info);
        fill(writer, info, &VtcWriter::shortVolume);
    }
    EXPECT_EQ(bytesOf(path), "older");
    EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("run.vtc")});
    VtcWriter writer(path, info);
    fill(writer, info, &VtcWriter::shortVolume);
    writer.commit();
    EXPECT_TRUE(verifyVtcChecksum(VtcFile(path)));
}

TEST(VtcWriter, RefusesPlacesWhereNoFileCanBe)
{
    const TemporaryFolder folder;
    putBytes(folder.path("file"), "x");
    const VtcInfo info = runInfo(VtcInfo::Short, 3);
    const QString below = folder.path("file/run.vtc");
    EXPECT_EQ(errorOf([&] { VtcWriter writer(below, info); }),
              below.toStdString() +
                  ": writing: found Not a directory, expected a place where a file can be written");
    EXPECT_EQ(errorOf([&] { VtcWriter writer(folder.path(), info); }),
              folder.path().toStdString() +
                  ": writing: found a folder, expected a place where a file can be written");
}

// ---- the checksum

TEST(VtcChecksum, IsTheSameInEveryOrder)
{
    std::vector<short> samples(5000);
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] = valueAt<short>(static_cast<int>(n), 17);
    VtcChecksum straight;
    straight.add(samples.data(), 5000, 0);
    VtcChecksum halves;
    halves.add(samples.data() + 1777, 5000 - 1777, 1777);
    halves.add(samples.data(), 1777, 0);
    EXPECT_EQ(straight.value(), halves.value());
    // Every tenth sample at a time, as volumes come.
    VtcChecksum volumes;
    for (quint64 t = 0; t < 10; ++t) {
        std::vector<short> volume;
        for (std::size_t n = t; n < samples.size(); n += 10)
            volume.push_back(samples[n]);
        volumes.add(volume.data(), 500, t, 10);
    }
    EXPECT_EQ(straight.value(), volumes.value());
    EXPECT_EQ(straight.text().size(), 16);
}

template <typename Sample>
quint64 checksumOf(const std::vector<Sample> &samples)
{
    VtcChecksum checksum;
    checksum.add(samples.data(), static_cast<qint64>(samples.size()), 0);
    return checksum.value();
}

TEST(VtcChecksum, NoticesEveryChangeOfOneSampleAndEverySwap)
{
    std::vector<short> samples(600);
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] = valueAt<short>(static_cast<int>(n), 3);
    const quint64 before = checksumOf(samples);
    for (std::size_t n = 0; n < samples.size(); ++n) {
        std::vector<short> changed = samples;
        changed[n] = static_cast<short>(changed[n] ^ 1);
        EXPECT_NE(checksumOf(changed), before) << n;
        changed = samples;
        std::swap(changed[n], changed[(n + 1) % samples.size()]);
        EXPECT_NE(checksumOf(changed), before) << n;
    }
    const std::vector<float> zeros{0.0f, 1.0f};
    const std::vector<float> signedZeros{-0.0f, 1.0f};
    EXPECT_NE(checksumOf(zeros), checksumOf(signedZeros));
}

TEST(VtcChecksum, StaysAsItWasDefined)
{
    // Sum 6 - 1 + 3 and weighted sum 0 * 6 - 1 * 1 + 2 * 3, mixed: fixed for good, since files
    // hold it.
    EXPECT_EQ(checksumOf(std::vector<short>{6, -1, 3}), Q_UINT64_C(0x919ea871940abfbc));
    EXPECT_EQ(checksumOf(std::vector<float>{1.0f, -2.5f}), Q_UINT64_C(0x6537abcf5c9d9223));
}

} // namespace

} // namespace corvane
