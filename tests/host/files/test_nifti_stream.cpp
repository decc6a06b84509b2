// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/nifti_stream.h"
#include "host/files/sample_conversion.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/nifti_files.h"
#include "tests/host/support/notes.h"

#include <cmath>

namespace corvane
{

namespace
{

template <typename Case>
std::string caseName(const testing::TestParamInfo<Case> &info)
{
    return info.param.name;
}

const double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Two volumes of 3 x 2 x 2 samples from -5 on.
NiftiParts smallRun()
{
    NiftiParts parts;
    parts.setSize({3, 2, 2, 2});
    parts.setSpacing(3);
    parts.pixdim[4] = 2;
    std::vector<qint16> samples;
    for (int n = 0; n < 24; ++n)
        samples.push_back(static_cast<qint16>(n - 5));
    setSamples(parts, samples);
    return parts;
}

/// Reads a file to its end as the import does.
std::vector<double> readAll(const QString &path, QStringList *said = nullptr)
{
    NiftiStream stream(path);
    const NiftiHeader &header = stream.header();
    std::vector<double> values;
    std::vector<char> stored(static_cast<std::size_t>(header.bytesPerVolume()));
    std::vector<double> volume(static_cast<std::size_t>(header.voxelsPerVolume()));
    for (qint64 t = 0; t < header.dim[3]; ++t) {
        stream.read(stored.data(), header.voxelsPerVolume());
        toDouble(header, stored.data(), header.voxelsPerVolume(), volume.data());
        values.insert(values.end(), volume.begin(), volume.end());
    }
    QStringList notes;
    stream.finish(notes);
    if (said)
        *said = notes;
    return values;
}

std::vector<double> counting(int first, int count)
{
    std::vector<double> values;
    for (int n = 0; n < count; ++n)
        values.push_back(first + n);
    return values;
}

// ---- what is read

class EveryLayout : public testing::TestWithParam<std::tuple<int, bool, bool>>
{
};

TEST_P(EveryLayout, GivesTheSamplesAndTheHeader)
{
    NiftiParts parts = smallRun();
    std::tie(parts.version, parts.bigEndian, std::ignore) = GetParam();
    const bool packed = std::get<2>(GetParam());
    setSamples(parts, std::vector<qint16>{-300, 2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12,
                                          13,   14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 12345});
    parts.extension = numberBytes(1, parts.bigEndian) + numberBytes(16, parts.bigEndian) +
                      numberBytes(4, parts.bigEndian) + QByteArray("comment\0", 8);
    parts.sform = {{{-2, 0, 0, 90}, {0, 2.5, 0, -126}, {0, 0, 3, -72}}};

    const TemporaryFolder folder;
    const QString path = folder.path(packed ? "run.nii.gz" : "run.nii");
    putBytes(path, packed ? gzipped(niftiBytes(parts)) : niftiBytes(parts));
    const NiftiHeader header = NiftiStream(path).header();
    EXPECT_EQ(header.dimensions, 4);
    EXPECT_EQ(dimensionText(header.dim, 5), QStringLiteral("3 x 2 x 2 x 2 x 1"));
    EXPECT_EQ(header.kind, SampleKind::Int16);
    EXPECT_EQ(header.swapped, parts.bigEndian);
    EXPECT_FALSE(header.scaled);
    EXPECT_TRUE(header.hasOrientation);
    EXPECT_EQ(repetitionTimeSeconds(header), 2);
    Eigen::Matrix4d expected;
    expected << -2, 0, 0, 90, 0, 2.5, 0, -126, 0, 0, 3, -72, 0, 0, 0, 1;
    EXPECT_EQ(header.toWorld.matrix(), expected);

    const std::vector<double> values = readAll(path);
    ASSERT_EQ(values.size(), 24U);
    EXPECT_EQ(values[0], -300);
    EXPECT_EQ(values[1], 2);
    EXPECT_EQ(values[23], 12345);
}

INSTANTIATE_TEST_SUITE_P(VersionOrderPacked, EveryLayout,
                         testing::Combine(testing::Values(1, 2), testing::Bool(), testing::Bool()));

template <typename Sample>
class EverySampleKind : public testing::Test
{
};

using Samples =
    testing::Types<quint8, qint8, qint16, quint16, qint32, quint32, qint64, quint64, float, double>;
TYPED_TEST_SUITE(EverySampleKind, Samples);

TYPED_TEST(EverySampleKind, IsReadInBothOrdersOfBytesAndScaled)
{
    const std::vector<TypeParam> samples{
        std::numeric_limits<TypeParam>::lowest(), TypeParam(0), TypeParam(1), TypeParam(100),
        std::numeric_limits<TypeParam>::max(),    TypeParam(7)};
    for (const bool bigEndian : {false, true}) {
        for (const bool scaled : {false, true}) {
            NiftiParts parts;
            parts.bigEndian = bigEndian;
            parts.setSize({3, 2, 1});
            parts.slope = scaled ? 0.25 : 0;
            parts.intercept = scaled ? -3 : 5; // without a slope it says nothing
            setSamples(parts, samples);
            const TemporaryFolder folder;
            putBytes(folder.path("a.nii"), niftiBytes(parts));
            const std::vector<double> values = readAll(folder.path("a.nii"));
            ASSERT_EQ(values.size(), samples.size());
            for (std::size_t n = 0; n < samples.size(); ++n)
                EXPECT_EQ(values[n], scaled ? 0.25 * static_cast<double>(samples[n]) - 3
                                            : static_cast<double>(samples[n]));
        }
    }
}

TEST(SampleConversion, KeepsWholeNumbersOf16BitsOnlyWithoutScaling)
{
    struct Case {
        int datatype;
        int bitpix;
        double slope;
        bool fits;
    };
    for (const Case &kind :
         {Case{2, 8, 0, true}, Case{256, 8, 1, true}, Case{4, 16, notANumber, true},
          Case{4, 16, 2, false}, Case{512, 16, 0, false}, Case{8, 32, 0, false},
          Case{16, 32, 0, false}}) {
        NiftiParts parts = smallRun();
        parts.datatype = kind.datatype;
        parts.bitpix = kind.bitpix;
        parts.slope = kind.slope;
        EXPECT_EQ(fitsShort(parseNiftiHeader(niftiBytes(parts), 1 << 20, QString())), kind.fits)
            << kind.datatype << ' ' << kind.slope;
    }
}

TEST(NiftiStream, ReadsWhatItIsAskedForWhateverLiesBesideIt)
{
    NiftiParts wanted = smallRun();
    NiftiParts other = smallRun();
    setSamples(other, std::vector<qint16>(24, 99));
    const TemporaryFolder folder;
    putBytes(folder.path("a.nii.gz"), gzipped(niftiBytes(wanted)));
    for (const char *neighbour : {"a.nii", "a.hdr", "a.img", "a.hdr.gz", "a.nii.gz.nii", "a"})
        putBytes(folder.path(neighbour), niftiBytes(other));
    EXPECT_EQ(readAll(folder.path("a.nii.gz")), counting(-5, 24));
    EXPECT_EQ(readAll(folder.path("a.nii")), std::vector<double>(24, 99));
    // And without the file itself there is an error, not a neighbour.
    QFile::remove(folder.path("a.nii.gz"));
    EXPECT_NE(errorOf([&] { readAll(folder.path("a.nii.gz")); }), "no error");
}

TEST(NiftiStream, GoesByTheContentNotTheName)
{
    const TemporaryFolder folder;
    putBytes(folder.path("plain.nii.gz"), niftiBytes(smallRun()));
    putBytes(folder.path("packed.nii"), gzipped(niftiBytes(smallRun())));
    EXPECT_EQ(readAll(folder.path("plain.nii.gz")), counting(-5, 24));
    EXPECT_EQ(readAll(folder.path("packed.nii")), counting(-5, 24));
}

TEST(NiftiStream, ReadsFilesOfSeveralMembersWithZerosBehindThem)
{
    const QByteArray bytes = niftiBytes(smallRun());
    const TemporaryFolder folder;
    // Cut within the header, within a sample, and with a member that holds nothing.
    for (const int cut : {3, 100, 348, 357}) {
        putBytes(folder.path("a.nii.gz"), gzipped(bytes.left(cut)) + gzipped(QByteArray()) +
                                              gzipped(bytes.mid(cut)) + QByteArray(512, '\0'));
        EXPECT_EQ(readAll(folder.path("a.nii.gz")), counting(-5, 24)) << cut;
    }
}

TEST(NiftiStream, SaysBytesBehindTheLastVolume)
{
    const TemporaryFolder folder;
    const QByteArray bytes = niftiBytes(smallRun()) + QByteArray(23, 'x');
    for (const QByteArray &file : {bytes, gzipped(bytes)}) {
        putBytes(folder.path("a"), file);
        QStringList notes;
        EXPECT_EQ(readAll(folder.path("a"), &notes), counting(-5, 24));
        EXPECT_EQ(joined(notes), folder.path("a").toStdString() +
                                     ": 23 bytes behind the last volume are left out");
    }
}

TEST(NiftiStream, ReadsARunLargerThanItsBuffers)
{
    NiftiParts parts;
    parts.setSize({64, 64, 32, 5});
    parts.pixdim[4] = 1;
    std::vector<qint16> samples(64 * 64 * 32 * 5);
    quint32 state = 1;
    for (qint16 &sample : samples) {
        state = state * 1664525 + 1013904223;
        sample = static_cast<qint16>(state >> 16);
    }
    setSamples(parts, samples);
    const QByteArray bytes = niftiBytes(parts);
    const TemporaryFolder folder;
    putBytes(folder.path("one.nii.gz"), gzipped(bytes));
    QByteArray many;
    for (int from = 0; from < bytes.size(); from += 99991)
        many += gzipped(bytes.mid(from, 99991));
    putBytes(folder.path("many.nii.gz"), many);
    const std::vector<double> expected(samples.begin(), samples.end());
    EXPECT_EQ(readAll(folder.path("one.nii.gz")), expected);
    EXPECT_EQ(readAll(folder.path("many.nii.gz")), expected);
}

// ---- repetition time

struct TimeCase {
    const char *name;
    double stored;
    int units;
    double seconds;
};

void PrintTo(const TimeCase &time, std::ostream *stream)
{
    *stream << time.name;
}

class RepetitionTime : public testing::TestWithParam<TimeCase>
{
};

TEST_P(RepetitionTime, IsTheShortestDecimalInSeconds)
{
    for (const int version : {1, 2}) {
        NiftiParts parts = smallRun();
        parts.version = version;
        parts.pixdim[4] = GetParam().stored;
        parts.units = GetParam().units;
        const NiftiHeader header = parseNiftiHeader(niftiBytes(parts), 1 << 20, QString());
        EXPECT_EQ(repetitionTimeSeconds(header), GetParam().seconds) << "NIfTI-" << version;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Units, RepetitionTime,
    testing::Values(TimeCase{"Seconds", 0.72, 8, 0.72}, TimeCase{"Seconds2", 2.2, 2 | 8, 2.2},
                    TimeCase{"Milliseconds", 1350, 16, 1.35},
                    TimeCase{"MillisecondsWithFraction", 800.5, 16, 0.8005},
                    TimeCase{"Microseconds", 1600000, 2 | 24, 1.6},
                    TimeCase{"NoUnit", 1.35, 0, 1.35}, TimeCase{"Hertz", 2, 32, 0},
                    TimeCase{"Zero", 0, 8, 0}, TimeCase{"Negative", -2, 8, 0},
                    TimeCase{"NotANumber", std::nan(""), 8, 0},
                    TimeCase{"Infinite", std::numeric_limits<double>::infinity(), 8, 0}),
    caseName<TimeCase>);

// ---- orientation

TEST(Orientation, IsTheSformElseTheQformElseTheSpacing)
{
    NiftiParts parts = smallRun();
    parts.sform = {{{2, 0, 0, 1}, {0, 3, 0, 2}, {0, 0, 4, 3}}};
    parts.qform = {0, 0, 1, -7, -8, -9}; // half a turn about the third axis
    parts.pixdim = {-1, 5, 6, 7, 2, 0, 0, 0};
    const auto affine = [&](int sformCode, int qformCode) {
        parts.sformCode = sformCode;
        parts.qformCode = qformCode;
        return parseNiftiHeader(niftiBytes(parts), 1 << 20, QString());
    };
    Eigen::Matrix4d sform;
    sform << 2, 0, 0, 1, 0, 3, 0, 2, 0, 0, 4, 3, 0, 0, 0, 1;
    Eigen::Matrix4d qform;
    qform << -5, 0, 0, -7, 0, -6, 0, -8, 0, 0, -7, -9, 0, 0, 0, 1;
    const Eigen::Matrix4d spacing = Eigen::Vector4d(5, 6, 7, 1).asDiagonal();
    EXPECT_TRUE(affine(4, 1).toWorld.matrix().isApprox(sform));
    EXPECT_TRUE(affine(4, 0).toWorld.matrix().isApprox(sform));
    EXPECT_TRUE(affine(0, 1).toWorld.matrix().isApprox(qform));
    EXPECT_TRUE(affine(0, 0).toWorld.matrix().isApprox(spacing));
    EXPECT_TRUE(affine(0, 1).hasOrientation);
    EXPECT_FALSE(affine(0, 0).hasOrientation);
}

TEST(Orientation, AgreesWithAnotherReadingOfQuaternions)
{
    NiftiParts parts = smallRun();
    parts.sformCode = 0;
    parts.qformCode = 1;
    for (const double handed : {1.0, -1.0}) {
        parts.qform = {0.3, -0.5, 0.2, 11, 12, 13};
        parts.pixdim = {handed, 2, 3, 4, 2, 0, 0, 0};
        const NiftiHeader header = parseNiftiHeader(niftiBytes(parts), 1 << 20, QString());
        const Eigen::Affine3d expected = referenceQform(parts.qform, {handed, 2, 3, 4});
        EXPECT_TRUE(header.toWorld.isApprox(expected, 1e-6));
    }
}

TEST(Orientation, IsBroughtToMillimetres)
{
    NiftiParts parts = smallRun();
    parts.setSpacing(0.003, 0.01);
    parts.units = 1 | 8;
    EXPECT_NEAR(parseNiftiHeader(niftiBytes(parts), 1 << 20, QString()).toWorld(0, 0), 3, 1e-6);
    parts.setSpacing(3000, 10000);
    parts.units = 3 | 8;
    EXPECT_NEAR(parseNiftiHeader(niftiBytes(parts), 1 << 20, QString()).toWorld(0, 3), 10, 1e-6);
}

TEST(Orientation, SaysWhatItHadToChoose)
{
    const QString path = QStringLiteral("run.nii");
    const auto notes = [&](const NiftiParts &parts) {
        return orientationNotes(parseNiftiHeader(niftiBytes(parts), 1 << 20, path), path);
    };
    NiftiParts parts = smallRun();
    EXPECT_EQ(joined(notes(parts)), joined(QStringList()));
    parts.qformCode = 1;
    parts.pixdim[0] = 1;
    EXPECT_EQ(joined(notes(parts)), joined(QStringList()));
    parts.qform[3] = 0.05;
    EXPECT_EQ(joined(notes(parts)), joined(QStringList()));
    parts.qform[3] = 4;
    parts.qform[4] = 3;
    EXPECT_EQ(joined(notes(parts)),
              joined(QStringList{
                  QStringLiteral("run.nii: sform and qform disagree by up to 5.0 mm: the sform is "
                                 "used")}));
    parts.qform[3] = 4e30;
    EXPECT_EQ(joined(notes(parts)),
              "run.nii: sform and qform disagree by up to 4e30 mm: the sform is used");
    parts.qform[0] = notANumber;
    EXPECT_EQ(
        joined(notes(parts)),
        joined(QStringList{QStringLiteral("run.nii: the qform is damaged: the sform is used")}));
    parts.qformCode = parts.sformCode = 0;
    EXPECT_EQ(joined(notes(parts)),
              joined(QStringList{
                  QStringLiteral("run.nii: the header tells no orientation: its axes are taken to "
                                 "run to the right, to the front and up")}));
}

// ---- bad files

template <typename Change>
QByteArray changed(Change change)
{
    NiftiParts parts = smallRun();
    change(parts);
    return niftiBytes(parts);
}

std::vector<BadFile> badFiles()
{
    const QByteArray good = niftiBytes(smallRun()); // 352 bytes and 48 of samples
    QByteArray checksumWrong = gzipped(good);
    checksumWrong[checksumWrong.size() - 8] = char(checksumWrong[checksumWrong.size() - 8] ^ 1);
    QByteArray lengthWrong = gzipped(good);
    lengthWrong[lengthWrong.size() - 4] = char(lengthWrong[lengthWrong.size() - 4] ^ 1);
    const QByteArray packed = gzipped(good);
    const QString nothing;
    return {
        {"Empty", "", "header: found an empty file, expected a NIfTI file"},
        {"OneByte", "n",
         "header: found \"n\", expected a NIfTI file, which begins with the number 348 or 540"},
        {"SomethingElse", "GIF89a and more",
         "header: found \"GIF8\", expected a NIfTI file, which begins with the number 348 or 540"},
        {"HeaderCutShort", good.left(200), "header: found 200 bytes, expected 348"},
        {"HeaderAlone", good.left(348),
         "header, vox_offset: found 352, expected a file of more than "
         "352 bytes"},
        {"SecondVersionCutShort", changed([](NiftiParts &p) { p.version = 2; }).left(400),
         "header: found 400 bytes, expected 540"},
        {"SamplesCutShort", good.left(390),
         "header, dim: found 3 x 2 x 2 x 2 samples of 2 bytes, expected at most 38 bytes of "
         "samples in a file of this size"},
        {"AnotherVolume", good + QByteArray(24, 'x'),
         "samples: found another volume behind the last one, expected 48 bytes, as the header "
         "says"},
        {"PackedSamplesCutShort", gzipped(good.left(390)),
         "samples: found 38 bytes, 1 complete volumes, expected 48 bytes, 2 volumes"},
        {"AnotherPackedVolume", gzipped(good + QByteArray(240, 'x')),
         "samples: found another volume behind the last one, expected 48 bytes, as the header "
         "says"},
        {"PackedHeaderCutShort", gzipped(good.left(100)), "header: found 100 bytes, expected 348"},
        {"PackedEmpty", gzipped(""), "header: found an empty file, expected a NIfTI file"},
        {"PackedFileCutShort", packed.left(packed.size() - 20),
         "byte " + std::to_string(packed.size() - 20) +
             ": found the end of the file, expected more gzip data"},
        {"PackedTrailerCutShort", packed.left(packed.size() - 3),
         "byte " + std::to_string(packed.size() - 3) +
             ": found the end of the file, expected more gzip data"},
        {"WrongCheckSum", checksumWrong,
         "byte " + std::to_string(packed.size()) +
             ": found a wrong check sum, expected that of the unpacked data"},
        {"WrongLength", lengthWrong,
         "byte " + std::to_string(packed.size()) +
             ": found a wrong check sum, expected that of the unpacked data"},
        {"BytesBehindTheMember", packed + "abc",
         "byte " + std::to_string(packed.size()) +
             ": found bytes that are no gzip data, expected the end of the file"},
        {"PairOfFiles", changed([](NiftiParts &p) { p.magic = QByteArray("ni1\0", 4); }),
         "header, magic: found the header of a pair of files, expected \"n+1\", header and data in "
         "one file"},
        {"WrongMagic", changed([](NiftiParts &p) { p.magic = "abc "; }),
         "header, magic: found \"abc \", expected \"n+1\""},
        {"NoDimensions", changed([](NiftiParts &p) { p.dim[0] = 0; }),
         "header, dim[0]: found 0 dimensions, expected 1 to 7"},
        {"EightDimensions", changed([](NiftiParts &p) { p.dim[0] = 8; }),
         "header, dim[0]: found 8 dimensions, expected 1 to 7"},
        {"NegativeDimension", changed([](NiftiParts &p) { p.dim[2] = -2; }),
         "header, dim[2]: found -2, expected 1 or more"},
        {"ZeroDimension", changed([](NiftiParts &p) { p.dim[4] = 0; }),
         "header, dim[4]: found 0, expected 1 or more"},
        {"HugeDimensions", changed([](NiftiParts &p) {
             p.version = 2;
             p.setSize({1, 1, 1, 1, 1, 1, 1});
             std::fill(p.dim.begin() + 1, p.dim.end(), qint64(1) << 62);
         }),
         "header, dim: found 4611686018427387904 x 4611686018427387904 x 4611686018427387904 x "
         "4611686018427387904 x 4611686018427387904 x 4611686018427387904 x 4611686018427387904 "
         "samples of 2 bytes, expected at most 48 bytes of samples in a file of this size"},
        {"HugeDimensionsPacked", gzipped(changed([](NiftiParts &p) {
             p.setSize({32767, 32767, 32767, 32767});
         })),
         ""},
        {"UnknownKindOfSamples", changed([](NiftiParts &p) { p.datatype = 128; }),
         "header, datatype: found 128, expected whole numbers of 8 to 64 bits or floats of 32 or "
         "64 bits (2, 4, 8, 16, 64, 256, 512, 768, 1024 or 1280)"},
        {"WrongBitsPerSample", changed([](NiftiParts &p) { p.bitpix = 32; }),
         "header, bitpix: found 32, expected 16 for datatype 4"},
        {"OffsetInsideTheHeader", changed([](NiftiParts &p) { p.dataOffset = 348; }),
         "header, vox_offset: found 348, expected 352 to 400"},
        {"OffsetBehindTheFile", changed([](NiftiParts &p) { p.dataOffset = 4000; }),
         "header, vox_offset: found 4000, expected 352 to 400"},
        {"OffsetNotANumber", changed([](NiftiParts &p) { p.dataOffset = notANumber; }),
         "header, vox_offset: found no whole number, expected 352 to 400"},
        {"OffsetWithAFraction", changed([](NiftiParts &p) { p.dataOffset = 352.5; }),
         "header, vox_offset: found no whole number, expected 352 to 400"},
        {"SformNotANumber", changed([](NiftiParts &p) { p.sform[1][2] = notANumber; }),
         "header, sform: found a value that is no finite number, expected finite numbers"},
        {"SformWithoutVolume", changed([](NiftiParts &p) {
             p.sform[2] = {0, 0, 0, 0};
         }),
         "header, sform: found voxels without a volume, expected three axes with a length"},
        {"QformNotANumber", changed([](NiftiParts &p) {
             p.sformCode = 0;
             p.qformCode = 1;
             p.qform[5] = notANumber;
         }),
         "header, qform: found a value that is no finite number, expected finite numbers"},
        {"NoVoxelSize", changed([](NiftiParts &p) {
             p.sformCode = 0;
             p.pixdim[2] = 0;
         }),
         "header, pixdim: found voxels without a volume, expected three axes with a length"},
        {"InterceptNotANumber", changed([](NiftiParts &p) {
             p.slope = 1;
             p.intercept = notANumber;
         }),
         "header, scl_inter: found nan, expected a finite number"},
    };
}

class BadNifti : public testing::TestWithParam<BadFile>
{
};

TEST_P(BadNifti, IsRefusedInOneLine)
{
    const TemporaryFolder folder;
    const QString path = folder.path("bad.nii");
    putBytes(path, GetParam().bytes);
    const std::string error = errorOf([&] { readAll(path); });
    EXPECT_EQ(error.find('\n'), std::string::npos);
    if (GetParam().says.empty()) // the limit in the message depends on how well zlib packs
        EXPECT_EQ(error.rfind(path.toStdString() +
                                  ": header, dim: found 32767 x 32767 x 32767 x 32767 samples",
                              0),
                  0U)
            << error;
    else
        EXPECT_EQ(error, path.toStdString() + ": " + GetParam().says);
}

INSTANTIATE_TEST_SUITE_P(Files, BadNifti, testing::ValuesIn(badFiles()), nameOf);

/// Reads a file of these bytes to its end. A file of its own each time: writing over one makes the
/// file system wait for the disk.
bool isRefused(const QByteArray &bytes)
{
    const TemporaryFolder folder;
    putBytes(folder.path("a"), bytes);
    return errorOf([&] { readAll(folder.path("a")); }) != "no error";
}

TEST(NiftiStream, RefusesEveryLengthThatIsTooShort)
{
    const QByteArray plain = niftiBytes(smallRun());
    for (const QByteArray &bytes : {plain, gzipped(plain)})
        for (int length = 0; length < bytes.size(); ++length)
            EXPECT_TRUE(isRefused(bytes.left(length))) << length;
}

TEST(NiftiStream, NeverCrashesOnADamagedFile)
{
    const QByteArray plain = niftiBytes(smallRun());
    int refused = 0;
    for (const QByteArray &bytes : {plain, gzipped(plain)})
        for (int bit = 0; bit < 8 * bytes.size(); bit += 3) {
            QByteArray damaged = bytes;
            damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
            refused += isRefused(damaged);
        }
    EXPECT_GT(refused, 100);
}

TEST(NiftiStream, RefusesFoldersAndMissingFiles)
{
    const TemporaryFolder folder;
    EXPECT_EQ(errorOf([&] { NiftiStream stream(folder.path()); }),
              folder.path().toStdString() + ": opening: found a folder, expected a readable file");
    EXPECT_EQ(errorOf([&] { NiftiStream stream(folder.path("none.nii")); }),
              folder.path("none.nii").toStdString() +
                  ": opening: found No such file or directory, expected a readable file");
}

} // namespace

} // namespace corvane
