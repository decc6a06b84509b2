// SPDX-License-Identifier: GPL-3.0-or-later
//
// Valid files of every format, cut at every length and damaged at every byte: a reader either says
// in one line what is wrong or gives a result that can be used to its last sample.
#include "tests/host/support/host_files.h"

#include <functional>
#include <random>

namespace corvane
{

namespace
{

/// Reads one file and uses all of the result.
using Use = std::function<void(const QString &path)>;

/// Looks at every sample, so that a reader that promised too many is caught.
void useVtc(const QString &path)
{
    const VtcFile file(path);
    const VtcInfo &info = file.info();
    double sum = 0;
    for (qint64 n = 0; n < info.sampleCount(); ++n)
        sum += info.type == VtcInfo::Short ? file.shortSamples()[n]
                                           : static_cast<double>(file.floatSamples()[n]);
    EXPECT_TRUE(sum == sum || info.type == VtcInfo::Float);
    VtcInfo again = info;
    EXPECT_EQ(errorOf([&] { vtcFileHeader(again); }), "no error");
}

void useVoi(const QString &path)
{
    const VoiSet set = readVoiFile(path);
    const QString copy = path + QStringLiteral(".again");
    writeVoiFile(copy, set);
    EXPECT_TRUE(readVoiFile(copy) == set);
}

void usePrt(const QString &path)
{
    const Prt prt = readPrtFile(path);
    const QString copy = path + QStringLiteral(".again");
    writePrtFile(copy, prt);
    EXPECT_TRUE(readPrtFile(copy) == prt);
}

/// True when the file was refused. The error must be one line that begins with the path.
bool refused(const QString &path, const Use &use)
{
    const std::string said = errorOf([&] { use(path); });
    if (said == "no error")
        return false;
    EXPECT_EQ(said.rfind(path.toStdString() + ": ", 0), 0U) << said;
    EXPECT_EQ(said.find('\n'), std::string::npos) << said;
    EXPECT_NE(said.find(": found "), std::string::npos) << said;
    EXPECT_NE(said.find(", expected "), std::string::npos) << said;
    return true;
}

struct Format {
    const char *name;
    std::function<QByteArray()> bytes;
    Use use;
};

void PrintTo(const Format &format, std::ostream *stream)
{
    *stream << format.name;
}

QByteArray voiBytes()
{
    const TemporaryFolder folder;
    writeVoiFile(folder.path("a.voi"), smallVoiSet());
    return bytesOf(folder.path("a.voi"));
}

QByteArray prtBytes()
{
    const TemporaryFolder folder;
    writePrtFile(folder.path("a.prt"), smallPrt());
    return bytesOf(folder.path("a.prt"));
}

QByteArray floatVtcBytes()
{
    const VtcInfo info = smallVtcInfo(VtcInfo::Float);
    return vtcBytes(info, numberedSamples<float>(info));
}

} // namespace

class DamagedFile : public testing::TestWithParam<Format>
{
protected:
    TemporaryFolder folder;
    QString path = folder.path("damaged");
    QByteArray whole = GetParam().bytes();
    Use use = GetParam().use;
};

TEST_P(DamagedFile, IsTakenWhole)
{
    putBytes(path, whole);
    EXPECT_EQ(errorOf([&] { use(path); }), "no error");
}

TEST_P(DamagedFile, IsRefusedAtEveryShorterLength)
{
    // A JSON document is complete before the line feed behind it.
    const bool endsWithJson = QByteArray(GetParam().name) == "Voi";
    for (int length = 0; length < whole.size(); ++length) {
        putBytes(path, whole.left(length));
        const bool complete = endsWithJson && length == whole.size() - 1;
        EXPECT_EQ(refused(path, use), !complete) << "cut to " << length << " bytes";
    }
}

TEST_P(DamagedFile, SurvivesEveryChangedByte)
{
    for (int at = 0; at < whole.size(); ++at) {
        const char good = whole[at];
        for (const int other : {good ^ 1, good ^ 0x10, good ^ 0x80, 0, 0xff, int('\n'), int('9'),
                                int('-'), int('"'), int('\t')}) {
            QByteArray bytes = whole;
            bytes[at] = static_cast<char>(other);
            putBytes(path, bytes);
            refused(path, use);
        }
    }
}

TEST_P(DamagedFile, SurvivesPiecesThatMovedRepeatedOrVanished)
{
    std::mt19937 random(20);
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    int refusals = 0;
    constexpr int rounds = 2000;
    for (int round = 0; round < rounds; ++round) {
        QByteArray bytes = whole;
        for (int change = 0; change <= round % 3; ++change) {
            const int from = below(bytes.size());
            const QByteArray piece = bytes.mid(from, 1 + below(40));
            switch (below(3)) {
            case 0:
                bytes.remove(from, piece.size());
                break;
            case 1:
                bytes.insert(below(bytes.size() + 1), piece);
                break;
            default:
                bytes.replace(below(bytes.size()), piece.size(), piece);
            }
            if (bytes.isEmpty())
                bytes = whole;
        }
        putBytes(path, bytes);
        refusals += refused(path, use) ? 1 : 0;
    }
    EXPECT_GT(refusals, rounds / 2);
}

INSTANTIATE_TEST_SUITE_P(Every, DamagedFile,
                         testing::Values(Format{"Vtc", [] { return smallVtcBytes(); }, useVtc},
                                         Format{"FloatVtc", floatVtcBytes, useVtc},
                                         Format{"Voi", voiBytes, useVoi},
                                         Format{"Prt", prtBytes, usePrt}),
                         [](const testing::TestParamInfo<Format> &format) {
                             return format.param.name;
                         });

/// The same for `.vmr`, whose 16 MB of voxels stay in place.
class DamagedVmr : public testing::Test
{
protected:
    void SetUp() override
    {
        Vmr vmr = zeroVmr();
        vmr.space = VmrSpace();
        writeVmr(path, vmr);
        header = bytesOf(path);
        header.truncate(header.indexOf("\n\n") + 2);
        size = header.size() + Vmr::voxelCount;
    }

    void putHeader(const QByteArray &bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    static void use(const QString &path)
    {
        const Vmr vmr = readVmr(path);
        const auto *bytes = static_cast<const uchar *>(vmr.voxels.get());
        EXPECT_EQ(bytes[0], 0);
        EXPECT_EQ(bytes[vmr.byteCount() - 1], 0);
    }

    TemporaryFolder folder;
    QString path = folder.path("a.vmr");
    QByteArray header;
    qint64 size = 0;
};

TEST_F(DamagedVmr, IsRefusedAtEveryShorterLength)
{
    EXPECT_FALSE(refused(path, use));
    for (qint64 length = size - 1; length > 0;
         length = length > header.size() + 8 ? length / 2 : length - 1) {
        ASSERT_TRUE(QFile::resize(path, length));
        EXPECT_TRUE(refused(path, use)) << "cut to " << length << " bytes";
    }
}

TEST_F(DamagedVmr, SurvivesEveryChangedByteOfItsHeader)
{
    for (int at = 0; at < header.size(); ++at) {
        for (const int other : {header[at] ^ 1, header[at] ^ 0x80, 0, int('\n'), int('9')}) {
            QByteArray bytes = header;
            bytes[at] = static_cast<char>(other);
            putHeader(bytes);
            refused(path, use);
        }
    }
}

} // namespace corvane
