// SPDX-License-Identifier: GPL-3.0-or-later
//
// The examples of docs/file-formats.md are files that the readers take, in the very form in which
// the writers write them.
#include "tests/host/support/host_files.h"

#include <QDateTime>

namespace corvane
{

namespace
{

/// The first fenced block below a heading.
QByteArray blockBelow(const QByteArray &title)
{
    const QByteArray page = bytesOf(QStringLiteral(FILE_FORMATS_PAGE));
    const QByteArray heading = "\n## " + title + '\n';
    const int from = page.indexOf("\n```", page.indexOf(heading) + heading.size());
    EXPECT_GE(page.indexOf(heading), 0);
    const int start = page.indexOf('\n', from + 1) + 1;
    return page.mid(start, page.indexOf("\n```", start) + 1 - start);
}

QByteArray example(const QByteArray &format)
{
    return blockBelow("`." + format + '`');
}

} // namespace

TEST(DocumentedFormats, ShowARecord)
{
    const TemporaryFolder folder;
    QFile output(folder.path("connectivity.csv"));
    ASSERT_TRUE(output.open(QIODevice::ReadWrite) && output.resize(1384));
    ASSERT_TRUE(output.setFileTime(QDateTime({2026, 11, 21}, {9, 30, 12, 417}, Qt::UTC),
                                   QFileDevice::FileModificationTime));
    output.close();
    const QByteArray record = blockBelow("The record of a folder");
    const QString path = folder.path(outputRecordName);
    putBytes(path, record);
    EXPECT_EQ(recordOutputs(folder.path(), QStringLiteral("graph"), {}), QStringList());
    EXPECT_EQ(bytesOf(path).toStdString(), record.toStdString());
    EXPECT_EQ(recordOutputs(folder.path(), QStringLiteral("compute"), {}), QStringList());
    EXPECT_TRUE(folder.entries().isEmpty());
}

TEST(DocumentedFormats, ShowAVmr)
{
    const TemporaryFolder folder;
    const QByteArray header = example("vmr");
    putBytes(folder.path("a.vmr"), header);
    ASSERT_TRUE(QFile::resize(folder.path("a.vmr"), header.size() + Vmr::voxelCount));
    const Vmr vmr = readVmr(folder.path("a.vmr"));
    ASSERT_TRUE(vmr.space);
    writeVmr(folder.path("again.vmr"), vmr);
    EXPECT_EQ(bytesOf(folder.path("again.vmr")).left(header.size()).toStdString(),
              header.toStdString());
}

TEST(DocumentedFormats, ShowAVtc)
{
    const TemporaryFolder folder;
    const QByteArray header = example("vtc");
    putBytes(folder.path("a.vtc"), header);
    const qint64 samples = qint64(274) * 60 * 72 * 60;
    ASSERT_TRUE(QFile::resize(folder.path("a.vtc"), header.size() + 2 * samples));
    const VtcFile file(folder.path("a.vtc"));
    EXPECT_EQ(file.info().sampleCount(), samples);
    VtcInfo info = file.info();
    EXPECT_EQ(info.linkedProtocol, folder.path("block.prt"));
    EXPECT_EQ(info.provenance.space, QStringLiteral("MNI152NLin2009cAsym"));
    ASSERT_TRUE(info.cleaning);
    EXPECT_EQ(info.cleaning->kept, 274);
    ASSERT_TRUE(info.uncleaned);
    EXPECT_EQ(info.uncleaned->volumes.size(), 274U);
    EXPECT_EQ(info.uncleaned->volumes[16], 43);
    info.linkedProtocol = linkedProtocolText(file.path(), info.linkedProtocol);
    EXPECT_EQ(vtcFileHeader(info).toStdString(), header.toStdString());
}

TEST(DocumentedFormats, ShowAVoi)
{
    const TemporaryFolder folder;
    putBytes(folder.path("a.voi"), example("voi"));
    const VoiSet set = readVoiFile(folder.path("a.voi"));
    EXPECT_EQ(set.vois.size(), 2U);
    writeVoiFile(folder.path("again.voi"), set);
    EXPECT_EQ(bytesOf(folder.path("again.voi")).toStdString(), example("voi").toStdString());
}

TEST(DocumentedFormats, ShowAPrt)
{
    const TemporaryFolder folder;
    putBytes(folder.path("a.prt"), example("prt"));
    const Prt prt = readPrtFile(folder.path("a.prt"));
    EXPECT_EQ(prt.provenance.subject, QStringLiteral("sub-01"));
    ASSERT_EQ(prt.conditions.size(), 4U);
    EXPECT_EQ(prt.conditions[0].intervals.size(), 2U);
    EXPECT_EQ(prt.conditions[3].name, QStringLiteral("pause"));
    EXPECT_TRUE(prt.conditions[3].intervals.empty());
    writePrtFile(folder.path("again.prt"), prt);
    EXPECT_TRUE(readPrtFile(folder.path("again.prt")) == prt);
}

/// The checksum as the page describes it, in plain words of one loop.
TEST(DocumentedFormats, ShowTheChecksum)
{
    const auto mixed = [](quint64 z) {
        z = (z ^ (z >> 30)) * Q_UINT64_C(0xbf58476d1ce4e5b9);
        z = (z ^ (z >> 27)) * Q_UINT64_C(0x94d049bb133111eb);
        return z ^ (z >> 31);
    };
    const auto described = [&mixed](const auto &values) {
        quint64 sum = 0;
        quint64 weighted = 0;
        for (std::size_t n = 0; n < values.size(); ++n) {
            sum += values[n];
            weighted += n * values[n];
        }
        return QStringLiteral("%1").arg(mixed(sum + mixed(weighted)), 16, 16, QLatin1Char('0'));
    };
    std::vector<short> shorts(1000);
    std::vector<float> floats(1000);
    std::vector<quint64> shortValues(1000);
    std::vector<quint64> floatValues(1000);
    for (std::size_t n = 0; n < 1000; ++n) {
        shorts[n] = static_cast<short>(static_cast<int>(n * 7919 % 65536) - 32768);
        shortValues[n] = static_cast<quint64>(static_cast<qint64>(shorts[n]));
        floats[n] = 0.37F * static_cast<float>(static_cast<int>(n) - 500);
        quint32 bits = 0;
        std::memcpy(&bits, &floats[n], sizeof bits);
        floatValues[n] = bits;
    }
    VtcChecksum ofShorts;
    ofShorts.add(shorts.data(), 1000, 0);
    EXPECT_EQ(ofShorts.text(), described(shortValues));
    VtcChecksum ofFloats;
    ofFloats.add(floats.data(), 1000, 0);
    EXPECT_EQ(ofFloats.text(), described(floatValues));
}

} // namespace corvane
