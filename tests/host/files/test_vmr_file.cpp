// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/support/host_files.h"

#include <cmath>

namespace corvane
{

namespace
{

const QByteArray plainHeader = "NRRD0004\n"
                               "type: uchar\n"
                               "dimension: 3\n"
                               "sizes: 256 256 256\n"
                               "spacings: 1 1 1\n"
                               "endian: little\n"
                               "encoding: raw\n"
                               "vmr version:=1\n"
                               "\n";

const QByteArray placedHeader = replaced(plainHeader, "spacings: 1 1 1\n",
                                         "space: right-anterior-superior\n"
                                         "space directions: (1,0,0) (0,0,1) (0,-1,0)\n"
                                         "space origin: (-128,-100.5,1e2)\n");

/// A file with this header and `length` zeros behind it, which take no room on the disk.
void putSparse(const QString &path, const QByteArray &header, qint64 length)
{
    putBytes(path, header);
    ASSERT_TRUE(QFile::resize(path, header.size() + length));
}

} // namespace

TEST(VmrFile, GivesBackBytesAndWords)
{
    const TemporaryFolder folder;
    for (Vmr::SampleType type : {Vmr::UChar, Vmr::UShort}) {
        const Vmr written = zeroVmr(type);
        auto *bytes = static_cast<uchar *>(const_cast<void *>(written.voxels.get()));
        for (qint64 n = 0; n < written.byteCount(); n += 4093)
            bytes[n] = static_cast<uchar>(n * 31 + 1);
        writeVmr(folder.path("brain.vmr"), written);

        const Vmr read = readVmr(folder.path("brain.vmr"));
        EXPECT_EQ(read.type, type);
        EXPECT_FALSE(read.space);
        EXPECT_EQ(read.byteCount(), (type == Vmr::UChar ? 1 : 2) * 16777216);
        EXPECT_EQ(std::memcmp(read.voxels.get(), bytes, static_cast<std::size_t>(read.byteCount())),
                  0);
    }
}

TEST(VmrFile, KeepsItsPlaceInSpace)
{
    const TemporaryFolder folder;
    Vmr written = zeroVmr();
    const double c = std::cos(0.3);
    const double s = std::sin(0.3);
    written.space = VmrSpace{{{{{c, s, 0}}, {{-s, c, 0}}, {{0, 0, -1}}}}, {{-12.5, 1.0 / 3.0, 88}}};
    writeVmr(folder.path("brain.vmr"), written);
    const Vmr read = readVmr(folder.path("brain.vmr"));
    ASSERT_TRUE(read.space);
    EXPECT_EQ(read.space->directions, written.space->directions);
    EXPECT_EQ(read.space->origin, written.space->origin);
}

TEST(VmrFile, KeepsSubjectAndSpace)
{
    const TemporaryFolder folder;
    const QString path = folder.path("brain.vmr");
    Vmr written = zeroVmr();
    writeVmr(path, written);
    EXPECT_TRUE(readVmr(path).provenance == Provenance());
    written.provenance = {QString::fromUtf8("größe \\n"), QStringLiteral("T1w")};
    writeVmr(path, written);
    EXPECT_TRUE(readVmr(path).provenance == written.provenance);
    written.provenance.subject = QStringLiteral("a\nb");
    EXPECT_EQ(errorOf([&] { writeVmr(path, written); }),
              path.toStdString() + ": subject: found a control character (0a), expected at most "
                                   "255 characters, none of them a control character");
}

// The header that the other tests use is one of version 1.
TEST(VmrFile, ReadsItsFirstVersion)
{
    const TemporaryFolder folder;
    putSparse(folder.path("brain.vmr"), plainHeader, Vmr::voxelCount);
    const Vmr vmr = readVmr(folder.path("brain.vmr"));
    EXPECT_TRUE(vmr.provenance == Provenance());
    EXPECT_EQ(vmr.type, Vmr::UChar);
}

TEST(VmrFile, ReadsAHeaderWrittenByHand)
{
    const TemporaryFolder folder;
    const QString path = folder.path("brain.vmr");
    putSparse(path, replaced(placedHeader, "type:", "# a comment\ncontent: brain\ntype:"),
              Vmr::voxelCount);
    const Vmr vmr = readVmr(path);
    ASSERT_TRUE(vmr.space);
    EXPECT_EQ(vmr.space->directions[1], (std::array<double, 3>{0, 0, 1}));
    EXPECT_EQ(vmr.space->origin, (std::array<double, 3>{-128, -100.5, 100}));
}

TEST(VmrFile, WordsBeginAtAnEvenPlace)
{
    const TemporaryFolder folder;
    const QString path = folder.path("brain.vmr");
    QByteArray header = replaced(plainHeader, "uchar", "ushort");
    if (header.size() % 2 == 0)
        header = replaced(header, "endian", "##\nendian");
    ASSERT_EQ(header.size() % 2, 1);
    putSparse(path, header, 2 * Vmr::voxelCount);
    EXPECT_EQ(errorOf([&] { readVmr(path); }), path.toStdString() + ": data: found a header of " +
                                                   std::to_string(header.size()) +
                                                   " bytes, expected a multiple of 2");
}

TEST(VmrFile, VoxelsOutliveTheVolumeAndTheFileName)
{
    const TemporaryFolder folder;
    putSparse(folder.path("brain.vmr"), plainHeader, Vmr::voxelCount);
    std::shared_ptr<const void> voxels;
    {
        const Vmr vmr = readVmr(folder.path("brain.vmr"));
        voxels = vmr.voxels;
    }
    QFile::remove(folder.path("brain.vmr"));
    EXPECT_EQ(static_cast<const uchar *>(voxels.get())[Vmr::voxelCount - 1], 0);
}

TEST(VmrFile, RefusesToWriteAPlaceThatIsNone)
{
    const TemporaryFolder folder;
    Vmr vmr = zeroVmr();
    vmr.space = VmrSpace();
    vmr.space->directions[1] = {0, 2, 0};
    const QString path = folder.path("brain.vmr");
    EXPECT_EQ(errorOf([&] { writeVmr(path, vmr); }),
              path.toStdString() +
                  ": space directions: found (0,2,0), expected vectors of length 1");
    vmr.space->directions[1] = {0, std::nan(""), 0};
    EXPECT_NE(errorOf([&] { writeVmr(path, vmr); }), "no error");
    vmr.space->directions[1] = {0, 1, 0};
    vmr.space->origin[2] = std::nan("");
    EXPECT_EQ(errorOf([&] { writeVmr(path, vmr); }),
              path.toStdString() + ": space origin: found (0,0,nan), expected finite numbers");
    EXPECT_TRUE(folder.entries().isEmpty());
}

/// `length` is that of the data behind the header in `bytes`.
struct BadVmrFile {
    BadFile file;
    qint64 length = Vmr::voxelCount;
};

void PrintTo(const BadVmrFile &bad, std::ostream *stream)
{
    *stream << bad.file.name;
}

class BadVmr : public testing::TestWithParam<BadVmrFile>
{
};

TEST_P(BadVmr, IsRefusedInOneLine)
{
    const TemporaryFolder folder;
    const QString path = folder.path("bad.vmr");
    putSparse(path, GetParam().file.bytes, GetParam().length);
    EXPECT_EQ(errorOf([&] { readVmr(path); }), path.toStdString() + ": " + GetParam().file.says);
}

INSTANTIATE_TEST_SUITE_P(
    Table, BadVmr,
    testing::Values(
        BadVmrFile{{"Empty", "", "header: found an empty file, expected \"NRRD0004\""}, 0},
        BadVmrFile{{"WrongMagic", "P6\n256 256\n",
                    "line 1: found \"P6\", expected \"NRRD0004\" or \"NRRD0005\""}},
        BadVmrFile{{"HeaderCutShort", plainHeader.left(40),
                    "line 4: found the end of the file, expected the empty line that ends the "
                    "header"},
                   0},
        BadVmrFile{{"DataCutShort", plainHeader,
                    "data: found 16777215 bytes, expected 16777216 bytes (256 x 256 x 256 "
                    "samples)"},
                   Vmr::voxelCount - 1},
        BadVmrFile{{"TrailingByte", plainHeader,
                    "data: found 16777217 bytes, expected 16777216 bytes (256 x 256 x 256 "
                    "samples)"},
                   Vmr::voxelCount + 1},
        BadVmrFile{{"HalfOfItsWords", replaced(plainHeader, "uchar", "ushort"),
                    "data: found 16777216 bytes, expected 33554432 bytes (256 x 256 x 256 "
                    "samples)"}},
        BadVmrFile{{"OtherType", replaced(plainHeader, "uchar", "float"),
                    "line 2 (type): found \"float\", expected \"uchar\" or \"ushort\""}},
        BadVmrFile{{"SmallerCube", replaced(plainHeader, "256 256 256", "256 256 255"),
                    "line 4 (sizes): found \"256 256 255\", expected \"256 256 256\""}},
        BadVmrFile{{"NegativeSize", replaced(plainHeader, "256 256 256", "256 256 -256"),
                    "line 4 (sizes): found \"256 256 -256\", expected \"256 256 256\""}},
        BadVmrFile{{"HugeSize", replaced(plainHeader, "256 256 256", "99999999999 256 256"),
                    "line 4 (sizes): found \"99999999999 256 256\", expected \"256 256 256\""}},
        BadVmrFile{{"TwoMillimetres", replaced(plainHeader, "1 1 1", "1 1 2"),
                    "line 5 (spacings): found \"1 1 2\", expected \"1 1 1\""}},
        BadVmrFile{{"NotANumberForSpacing", replaced(plainHeader, "1 1 1", "1 1 nan"),
                    "line 5 (spacings): found \"1 1 nan\", expected \"1 1 1\""}},
        BadVmrFile{{"NoSpacings", replaced(plainHeader, "spacings: 1 1 1\n", ""),
                    "header: found no \"spacings\", expected it once"}},
        BadVmrFile{{"UnknownVersion", replaced(plainHeader, "version:=1", "version:=7"),
                    "line 8 (vmr version): found \"7\", expected \"1\" or \"2\""}},
        BadVmrFile{{"FirstVersionWithASubject",
                    replaced(plainHeader, "version:=1\n", "version:=1\nsubject:=sub-01\n"),
                    "line 9 (subject): found \"sub-01\", expected a file of version 2 for that "
                    "key"}},
        BadVmrFile{{"EmptySubject",
                    replaced(plainHeader, "version:=1\n", "version:=2\nsubject:=\n"),
                    "line 9 (subject): found \"\", expected a text, or no such line"}},
        BadVmrFile{{"LongSpaceName",
                    replaced(plainHeader, "version:=1\n",
                             "version:=2\nspace name:=" + QByteArray(256, 'x') + '\n'),
                    "line 9 (space name): found 256 characters, expected at most 255 characters, "
                    "none of them a control character"}},
        BadVmrFile{{"UnknownKey", replaced(plainHeader, "version:=1\n", "version:=2\nage:=33\n"),
                    "line 9: found the key \"age\", expected one of vmr version, subject, space "
                    "name"}},
        BadVmrFile{{"UnknownField", replaced(plainHeader, "endian:", "byte skip: 3\nendian:"),
                    "line 6: found the field \"byte skip\", expected one of type, dimension, "
                    "sizes, spacings, space, space directions, space origin, endian, encoding, "
                    "content"}},
        BadVmrFile{{"DetachedData", replaced(plainHeader, "endian:", "data file: x.raw\nendian:"),
                    "line 6: found the field \"data file\", expected one of type, dimension, "
                    "sizes, spacings, space, space directions, space origin, endian, encoding, "
                    "content"}},
        BadVmrFile{{"VolumeTimeCourse", smallVtcBytes(),
                    "line 5: found the field \"kinds\", expected one of type, dimension, sizes, "
                    "spacings, space, space directions, space origin, endian, encoding, "
                    "content"}},
        BadVmrFile{{"SpacingsAndSpace",
                    replaced(placedHeader, "endian:", "spacings: 1 1 1\nendian:"),
                    "line 8 (spacings): found \"1 1 1\", expected either it or a space"}},
        BadVmrFile{{"OtherSpace", replaced(placedHeader, "right-anterior", "left-posterior"),
                    "line 5 (space): found \"left-posterior-superior\", expected "
                    "\"right-anterior-superior\""}},
        BadVmrFile{{"NoOrigin", replaced(placedHeader, "space origin: (-128,-100.5,1e2)\n", ""),
                    "header: found no \"space origin\", expected it once"}},
        BadVmrFile{{"LongDirection", replaced(placedHeader, "(0,0,1)", "(0,0,1.01)"),
                    "line 6 (space directions): found \"(0,0,1.01)\", expected vectors of length "
                    "1"}},
        BadVmrFile{{"NoDirection", replaced(placedHeader, "(0,0,1)", "none"),
                    "line 6 (space directions): found \"none\", expected vectors \"(x,y,z)\" of "
                    "finite numbers"}},
        BadVmrFile{{"NotANumberInDirection", replaced(placedHeader, "(0,0,1)", "(0,0,nan)"),
                    "line 6 (space directions): found \"(0,0,nan)\", expected vectors \"(x,y,z)\" "
                    "of finite numbers"}},
        BadVmrFile{{"TwoDirections", replaced(placedHeader, " (0,0,1)", ""),
                    "line 6 (space directions): found \"(1,0,0) (0,-1,0)\", expected 3 values"}},
        BadVmrFile{{"OriginInThePlane", replaced(placedHeader, "(-128,-100.5,1e2)", "(-128,1)"),
                    "line 7 (space origin): found \"(-128,1)\", expected vectors \"(x,y,z)\" of "
                    "finite numbers"}}),
    [](const testing::TestParamInfo<BadVmrFile> &bad) { return bad.param.file.name; });

} // namespace corvane
