// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/support/host_files.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>

namespace corvane
{

namespace
{

QByteArray altered(const QByteArray &piece, const QByteArray &by)
{
    return replaced(smallVtcBytes(), piece, by);
}

VtcInfo cleanedVtcInfo()
{
    VtcInfo info = smallVtcInfo();
    CleaningLedger ledger;
    ledger.method = QStringLiteral("scrubbing, order joint");
    ledger.volumes = 300;
    ledger.nonSteady = 4;
    ledger.censored = 26;
    ledger.kept = 270;
    ledger.rank = 31;
    ledger.degreesOfFreedom = 238.5;
    ledger.secondsKept = 194.4;
    ledger.meanFdAfter = 0.125;
    info.cleaning = ledger;
    return info;
}

/// Of the four volumes that the small file has.
UncleanedRun smallUncleanedRun()
{
    UncleanedRun run;
    run.path = QString::fromUtf8("Läufe/rest.nii.gz");
    run.bytes = 5000000000;
    run.signature = QString(40, QLatin1Char('a'));
    run.toRun.matrix().topRows<3>() << 0, -1, 0, 7, 0.1, 0, 0, 0, 0, 0, 1.0 / 3, -2;
    run.volumes = {3, 4, 5, 9};
    return run;
}

QByteArray uncleanedVtcBytes()
{
    VtcInfo info = cleanedVtcInfo();
    info.uncleaned = smallUncleanedRun();
    return vtcBytes(info, numberedSamples<short>(info));
}

QByteArray cleanedVtcBytes()
{
    const VtcInfo info = cleanedVtcInfo();
    return vtcBytes(info, numberedSamples<short>(info));
}

std::string checksumText()
{
    const auto samples = numberedSamples<short>(smallVtcInfo());
    VtcChecksum checksum;
    checksum.add(samples.data(), static_cast<qint64>(samples.size()), 0);
    return checksum.text().toStdString();
}

} // namespace

TEST(VtcFile, GivesBackWhatItsHeaderSays)
{
    const TemporaryFolder folder;
    VtcInfo written = smallVtcInfo();
    written.linkedProtocol = QString::fromUtf8("Läufe/block.prt");
    const auto samples = numberedSamples<short>(written);
    putBytes(folder.path("run.vtc"), vtcBytes(written, samples));

    const VtcFile file(folder.path("run.vtc"));
    const VtcInfo &info = file.info();
    EXPECT_EQ(file.path(), folder.path("run.vtc"));
    EXPECT_EQ(info.xStart, 57);
    EXPECT_EQ(info.xEnd, 66);
    EXPECT_EQ(info.yStart, 52);
    EXPECT_EQ(info.yEnd, 58);
    EXPECT_EQ(info.zStart, 59);
    EXPECT_EQ(info.zEnd, 65);
    EXPECT_EQ(info.resolution, 3);
    EXPECT_EQ(info.nrOfVolumes, 4);
    EXPECT_EQ(info.dimX(), 3);
    EXPECT_EQ(info.dimY(), 2);
    EXPECT_EQ(info.dimZ(), 2);
    EXPECT_EQ(info.type, VtcInfo::Short);
    EXPECT_EQ(info.repetitionTime, 0.72);
    EXPECT_EQ(info.linkedProtocol, folder.path(QString::fromUtf8("Läufe/block.prt")));
    EXPECT_EQ(file.floatSamples(), nullptr);
    ASSERT_NE(file.shortSamples(), nullptr);
    EXPECT_EQ(std::vector<short>(file.shortSamples(), file.shortSamples() + info.sampleCount()),
              samples);
    EXPECT_TRUE(verifyVtcChecksum(file));
}

TEST(VtcFile, ReadsItsFirstVersion)
{
    const TemporaryFolder folder;
    const auto samples = numberedSamples<short>(smallVtcInfo());
    QByteArray bytes = "NRRD0004\n"
                       "type: short\n"
                       "dimension: 4\n"
                       "sizes: 4 3 2 2\n"
                       "kinds: time domain domain domain\n"
                       "spacings: 0.72 3 3 3\n"
                       "units: \"s\" \"mm\" \"mm\" \"mm\"\n"
                       "endian: little\n"
                       "encoding: raw\n"
                       "vtc version:=1\n"
                       "box start:=57 52 59\n"
                       "linked protocol:=block.prt\n"
                       "samples checksum:=" +
                       QByteArray::fromStdString(checksumText()) + "\n\n";
    bytes.append(reinterpret_cast<const char *>(samples.data()),
                 static_cast<int>(samples.size() * sizeof(short)));
    putBytes(folder.path("run.vtc"), bytes);
    const VtcFile file(folder.path("run.vtc"));
    EXPECT_EQ(file.info().xEnd, 66);
    EXPECT_EQ(file.info().linkedProtocol, folder.path("block.prt"));
    EXPECT_TRUE(file.info().provenance == Provenance());
    EXPECT_FALSE(file.info().cleaning);
    EXPECT_TRUE(verifyVtcChecksum(file));
}

TEST(VtcFile, KeepsSubjectSpaceAndTheLedgerOfItsCleaning)
{
    const TemporaryFolder folder;
    VtcInfo written = cleanedVtcInfo();
    written.provenance = {QStringLiteral("sub-01"), QStringLiteral("MNI152NLin2009cAsym")};
    putBytes(folder.path("run.vtc"), vtcBytes(written, numberedSamples<short>(written)));
    const VtcInfo info = VtcFile(folder.path("run.vtc")).info();
    EXPECT_TRUE(info.provenance == written.provenance);
    ASSERT_TRUE(info.cleaning);
    EXPECT_EQ(info.cleaning->method, written.cleaning->method);
    EXPECT_EQ(info.cleaning->volumes, 300);
    EXPECT_EQ(info.cleaning->nonSteady, 4);
    EXPECT_EQ(info.cleaning->censored, 26);
    EXPECT_EQ(info.cleaning->kept, 270);
    EXPECT_EQ(info.cleaning->rank, 31);
    EXPECT_EQ(info.cleaning->degreesOfFreedom, 238.5);
    EXPECT_EQ(info.cleaning->secondsKept, 194.4);
    EXPECT_EQ(info.cleaning->meanFdBefore, std::nullopt);
    EXPECT_EQ(info.cleaning->meanFdAfter, 0.125);
}

TEST(VtcFile, KeepsWhereTheRunWasThatItWasCleanedFrom)
{
    const TemporaryFolder folder;
    putBytes(folder.path("run.vtc"), uncleanedVtcBytes());
    const auto run = VtcFile(folder.path("run.vtc")).info().uncleaned;
    const UncleanedRun written = smallUncleanedRun();
    ASSERT_TRUE(run);
    EXPECT_EQ(run->path, folder.path("Läufe/rest.nii.gz"));
    EXPECT_EQ(run->bytes, written.bytes);
    EXPECT_EQ(run->signature, written.signature);
    EXPECT_EQ(run->toRun.matrix(), written.toRun.matrix());
    EXPECT_EQ(run->volumes, written.volumes);
    EXPECT_THAT(uncleanedVtcBytes().toStdString(),
                testing::HasSubstr("uncleaned run volumes:=3-5 9\n"));
}

TEST(UncleanedRun, IsAtHandWhileItsFileIsWhatItWas)
{
    const TemporaryFolder folder;
    // Longer than what the signature covers at each end.
    QByteArray bytes(200000, 'x');
    putBytes(folder.path("rest.nii.gz"), bytes);
    UncleanedRun run = smallUncleanedRun();
    run.path = folder.path("rest.nii.gz");
    run.bytes = bytes.size();
    run.signature = runSignature(run.path);
    EXPECT_EQ(uncleanedFault(run), std::nullopt);
    const QString changed =
        QStringLiteral("The run at %1 has changed since it was imported.").arg(run.path);
    for (const int place : {0, 65535, 200000 - 65536, 199999}) {
        QByteArray other = bytes;
        other[place] = 'y';
        putBytes(run.path, other);
        EXPECT_EQ(uncleanedFault(run), changed) << place;
    }
    // As many bytes more in the middle leave the signature alone.
    putBytes(run.path, bytes + QByteArray(4, 'x'));
    EXPECT_EQ(uncleanedFault(run), changed);
    ASSERT_TRUE(QFile::remove(run.path));
    EXPECT_EQ(uncleanedFault(run), QStringLiteral("The run is not at %1 any more.").arg(run.path));
}

TEST(VtcFile, HoldsFloatsAsTheyAre)
{
    const TemporaryFolder folder;
    VtcInfo written = smallVtcInfo(VtcInfo::Float);
    auto samples = numberedSamples<float>(written);
    samples[7] = -1.25e-38F;
    samples[8] = std::numeric_limits<float>::infinity();
    putBytes(folder.path("run.vtc"), vtcBytes(written, samples));

    const VtcFile file(folder.path("run.vtc"));
    EXPECT_EQ(file.shortSamples(), nullptr);
    ASSERT_NE(file.floatSamples(), nullptr);
    EXPECT_EQ(
        std::vector<float>(file.floatSamples(), file.floatSamples() + file.info().sampleCount()),
        samples);
    EXPECT_TRUE(verifyVtcChecksum(file));
    EXPECT_TRUE(file.info().linkedProtocol.isEmpty());
}

TEST(VtcFile, StaysUsableWhenMoved)
{
    const TemporaryFolder folder;
    putBytes(folder.path("run.vtc"), smallVtcBytes());
    VtcFile first(folder.path("run.vtc"));
    const short *samples = first.shortSamples();
    const VtcFile second(std::move(first));
    EXPECT_EQ(second.shortSamples(), samples);
    EXPECT_EQ(second.shortSamples()[23], 3);
}

TEST(VtcFile, ChecksumTellsADamagedSample)
{
    const TemporaryFolder folder;
    QByteArray bytes = smallVtcBytes();
    bytes[bytes.size() - 1] = static_cast<char>(bytes[bytes.size() - 1] ^ 1);
    putBytes(folder.path("run.vtc"), bytes);
    EXPECT_FALSE(verifyVtcChecksum(VtcFile(folder.path("run.vtc"))));
}

TEST(VtcFile, WritingThroughThePointerLeavesTheFile)
{
    const TemporaryFolder folder;
    const QByteArray bytes = smallVtcBytes();
    putBytes(folder.path("run.vtc"), bytes);
    {
        const VtcFile file(folder.path("run.vtc"));
        const_cast<short *>(file.shortSamples())[0] = 1234;
        EXPECT_EQ(file.shortSamples()[0], 1234);
    }
    EXPECT_EQ(bytesOf(folder.path("run.vtc")), bytes);
}

TEST(VtcHeader, HasTheSameLengthWithAndWithoutItsChecksum)
{
    VtcInfo info = smallVtcInfo();
    const QByteArray empty = vtcFileHeader(info);
    info.checksum = QStringLiteral("0123456789abcdef");
    const QByteArray full = vtcFileHeader(info);
    EXPECT_EQ(empty.size(), full.size());
    EXPECT_EQ(empty.size() % 64, 0);
    EXPECT_NE(empty, full);
}

TEST(VtcHeader, IsAlignedForEveryLengthOfItsTexts)
{
    const TemporaryFolder folder;
    VtcInfo info = smallVtcInfo(VtcInfo::Float);
    for (int length = 1; length <= 130; ++length) {
        info.linkedProtocol = QString(length, QLatin1Char('p'));
        const QByteArray bytes = vtcBytes(info, numberedSamples<float>(info));
        EXPECT_EQ(vtcFileHeader(info).size() % 64, 0);
        putBytes(folder.path("run.vtc"), bytes);
        EXPECT_EQ(VtcFile(folder.path("run.vtc")).info().linkedProtocol,
                  folder.path(info.linkedProtocol));
    }
}

TEST(VtcHeader, KeepsEveryRepetitionTimeExactly)
{
    const TemporaryFolder folder;
    VtcInfo info = smallVtcInfo();
    for (double seconds : {0.72, 0.8, 1.35, 1.6, 2.2, 2.0, 1e-3, 0.1 + 0.2, 1.0 / 3.0, 1e9}) {
        info.repetitionTime = seconds;
        putBytes(folder.path("run.vtc"), vtcBytes(info, numberedSamples<short>(info)));
        EXPECT_EQ(VtcFile(folder.path("run.vtc")).info().repetitionTime, seconds);
    }
}

TEST(VtcHeader, KeepsOddPathsOfProtocols)
{
    const TemporaryFolder folder;
    for (const char *path : {"/a\\b.prt", "/back\\n.prt", "/line\nfeed.prt", "/a:=b: c.prt",
                             "/ blanks .prt", "/\xc3\xa9\xf0\x9f\xa7\xa0.prt", "/#.prt"}) {
        const QString protocol = QString::fromUtf8(path);
        putBytes(folder.path("run.vtc"), smallVtcBytes(protocol));
        EXPECT_EQ(VtcFile(folder.path("run.vtc")).info().linkedProtocol, protocol) << path;
    }
}

TEST(VtcHeader, RefusesWhatTheReaderWouldRefuse)
{
    const auto error = [](auto change) {
        VtcInfo info = smallVtcInfo();
        change(info);
        return errorOf([&] { vtcFileHeader(info); });
    };
    EXPECT_EQ(error([](VtcInfo &) {}), "no error");
    EXPECT_EQ(error([](VtcInfo &info) { info.nrOfVolumes = 0; }),
              ".vtc: sizes: found 0 volumes, expected 1 or more");
    EXPECT_EQ(error([](VtcInfo &info) { info.resolution = 0; }),
              ".vtc: spacings: found a resolution of 0, expected 1 to 256 VMR voxels");
    EXPECT_EQ(error([](VtcInfo &info) { info.xEnd = info.xStart; }),
              ".vtc: sizes: found a box from 57 to 57, expected a whole number of samples, "
              "1 or more");
    EXPECT_EQ(error([](VtcInfo &info) { info.yEnd += 1; }),
              ".vtc: sizes: found a box from 52 to 59, expected a whole number of samples, "
              "1 or more");
    EXPECT_EQ(error([](VtcInfo &info) { info.zEnd = info.zStart - 3; }),
              ".vtc: sizes: found a box from 59 to 56, expected a whole number of samples, "
              "1 or more");
    EXPECT_EQ(error([](VtcInfo &info) { info.xStart = -1; }),
              ".vtc: box start: found -1, expected 0 to 255");
    EXPECT_EQ(error([](VtcInfo &info) { info.xEnd = 57 + 3 * 68; }),
              ".vtc: sizes: found a last sample at VMR voxel 258, expected all samples at 0 to "
              "255");
    EXPECT_EQ(error([](VtcInfo &info) { info.xEnd = 57 + 3 * 67; }), "no error");
    EXPECT_EQ(error([](VtcInfo &info) { info.repetitionTime = 0; }),
              ".vtc: spacings: found a repetition time of 0, expected seconds above 0");
    EXPECT_EQ(error([](VtcInfo &info) { info.repetitionTime = std::nan(""); }),
              ".vtc: spacings: found a repetition time of nan, expected seconds above 0");
    EXPECT_EQ(error([](VtcInfo &info) { info.checksum = QStringLiteral("12"); }),
              ".vtc: samples checksum: found \"12\", expected 16 lower-case hexadecimal digits");
    EXPECT_EQ(error([](VtcInfo &info) { info.provenance.space = QString(256, QLatin1Char('x')); }),
              ".vtc: space name: found 256 characters, expected at most 255 characters, none of "
              "them a control character");
    const auto ledgerError = [&error](auto change) {
        return error([&change](VtcInfo &info) {
            info = cleanedVtcInfo();
            change(*info.cleaning);
        });
    };
    EXPECT_EQ(ledgerError([](CleaningLedger &) {}), "no error");
    EXPECT_EQ(ledgerError([](CleaningLedger &ledger) { ledger.method.clear(); }),
              ".vtc: cleaning: found an empty text, expected a line of 1 to 4096 characters");
    EXPECT_EQ(ledgerError(
                  [](CleaningLedger &ledger) { ledger.method = QString(4097, QLatin1Char('x')); }),
              ".vtc: cleaning: found 4097 characters, expected a line of 1 to 4096 characters");
    EXPECT_EQ(ledgerError([](CleaningLedger &ledger) { ledger.censored = -1; }),
              ".vtc: cleaning censored volumes: found -1, expected 0 or more");
    EXPECT_EQ(ledgerError([](CleaningLedger &ledger) { ledger.volumes = 299; }),
              ".vtc: cleaning volumes: found 299, expected the sum of those non-steady, censored "
              "and kept, 1 or more");
    EXPECT_EQ(ledgerError([](CleaningLedger &ledger) { ledger.meanFdBefore = std::nan(""); }),
              ".vtc: cleaning mean FD before: found nan, expected a finite number, 0 or more");
    EXPECT_EQ(ledgerError([](CleaningLedger &ledger) { ledger.secondsKept = -1; }),
              ".vtc: cleaning seconds kept: found -1, expected a finite number, 0 or more");
}

TEST(LinkedProtocolText, IsRelativeInAndBelowTheFolderOfTheVtc)
{
    const auto text = [](const char *vtc, const char *prt) {
        return linkedProtocolText(QString::fromUtf8(vtc), QString::fromUtf8(prt)).toStdString();
    };
    EXPECT_EQ(text("/data/run.vtc", "/data/block.prt"), "block.prt");
    EXPECT_EQ(text("/data/run.vtc", "/data/sub/block.prt"), "sub/block.prt");
    EXPECT_EQ(text("/data/run.vtc", "/data/sub/../block.prt"), "block.prt");
    EXPECT_EQ(text("/data/run.vtc", "/other/block.prt"), "/other/block.prt");
    EXPECT_EQ(text("/data/run.vtc", "/database/block.prt"), "/database/block.prt");
    EXPECT_EQ(text("run.vtc", "block.prt"), "block.prt");
    EXPECT_EQ(text("/data/run.vtc", "/data/..block.prt"), "..block.prt");
    EXPECT_EQ(text("/data/run.vtc", ""), "");
}

class BadVtc : public testing::TestWithParam<BadFile>
{
};

TEST_P(BadVtc, IsRefusedInOneLine)
{
    const TemporaryFolder folder;
    const QString path = folder.path("bad.vtc");
    putBytes(path, GetParam().bytes);
    EXPECT_EQ(errorOf([&] { VtcFile file(path); }), path.toStdString() + ": " + GetParam().says);
}

INSTANTIATE_TEST_SUITE_P(
    Table, BadVtc,
    testing::Values(
        BadFile{"Empty", "", "header: found an empty file, expected \"NRRD0004\""},
        BadFile{"WrongMagic", "GIF89a\n",
                "line 1: found \"GIF89a\", expected \"NRRD0004\" or \"NRRD0005\""},
        BadFile{"MagicOfNoText", QByteArray("\x89PNG\0\xff", 6),
                "line 1: found \"\\x89PNG\\x00\\xff\", expected \"NRRD0004\" or \"NRRD0005\""},
        BadFile{"OldVersion", altered("NRRD0004", "NRRD0003"),
                "line 1: found \"NRRD0003\", expected \"NRRD0004\" or \"NRRD0005\""},
        BadFile{"HeaderCutShort", smallVtcBytes().left(100),
                "line 6: found the end of the file, expected the empty line that ends the header"},
        BadFile{"NoEndOfHeader", "NRRD0004\n" + QByteArray(70000, '#'),
                "line 2: found a header of more than 65536 bytes, expected the empty line that "
                "ends the header"},
        BadFile{"DataCutShort", smallVtcBytes().chopped(1),
                "data: found 95 bytes, expected 96 bytes (4 x 3 x 2 x 2 samples of 2 bytes)"},
        BadFile{"NoData", smallVtcBytes().chopped(96),
                "data: found 0 bytes, expected 96 bytes (4 x 3 x 2 x 2 samples of 2 bytes)"},
        BadFile{"TrailingBytes", smallVtcBytes() + "x",
                "data: found 97 bytes, expected 96 bytes (4 x 3 x 2 x 2 samples of 2 bytes)"},
        BadFile{"UnknownField", altered("endian: little", "endian: little\nthickness: 2"),
                "line 9: found the field \"thickness\", expected one of type, dimension, sizes, "
                "kinds, spacings, units, endian, encoding, content"},
        BadFile{"UnknownKey", altered("vtc version:=2", "vtc version:=2\nage:=33"),
                "line 11: found the key \"age\", expected one of vtc version, box start, linked "
                "protocol, samples checksum, subject, space name, cleaning, cleaning volumes, "
                "cleaning non-steady volumes, cleaning censored volumes, cleaning kept volumes, "
                "cleaning rank, cleaning degrees of freedom, cleaning seconds kept, cleaning mean "
                "FD before, cleaning mean FD after, uncleaned run, uncleaned run bytes, uncleaned "
                "run signature, uncleaned run transform, uncleaned run volumes"},
        BadFile{"HalfAnUncleanedRun",
                altered("vtc version:=2", "vtc version:=2\nuncleaned run bytes:=3"),
                "header: found no \"uncleaned run\", expected it once"},
        BadFile{"UncleanedRunOfVersion1",
                altered("vtc version:=2", "vtc version:=1\nuncleaned run:=a"),
                "line 11 (uncleaned run): found \"a\", expected a file of version 2 for that key"},
        BadFile{"UncleanedRunNowhere",
                replaced(uncleanedVtcBytes(), "uncleaned run:=L\xc3\xa4ufe/rest.nii.gz",
                         "uncleaned run:="),
                "line 23 (uncleaned run): found \"\", expected a path"},
        BadFile{"UncleanedRunOfNegativeSize",
                replaced(uncleanedVtcBytes(), "bytes:=5000000000", "bytes:=-1"),
                "line 24 (uncleaned run bytes): found -1, expected 0 or more"},
        BadFile{
            "UncleanedRunOfNoSize",
            replaced(uncleanedVtcBytes(), "bytes:=5000000000", "bytes:=5 GB"),
            "line 24 (uncleaned run bytes): found \"5 GB\", expected a whole number, 0 or more"},
        BadFile{"UnsignedUncleanedRun",
                replaced(uncleanedVtcBytes(), "signature:=a", "signature:="),
                "line 25 (uncleaned run signature): found "
                "\"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\", expected 40 lower-case hexadecimal "
                "digits"},
        BadFile{"TransformOfWords", replaced(uncleanedVtcBytes(), " 0.1 ", " nan "),
                "line 26 (uncleaned run transform): found \"nan\", expected a finite number"},
        BadFile{"VolumesOfNoRun", replaced(uncleanedVtcBytes(), "volumes:=3-5 9", "volumes:=0-2 9"),
                "line 27 (uncleaned run volumes): found \"0-2\", expected ascending volumes and "
                "ranges of volumes, as in \"5-20 23\""},
        BadFile{"VolumesBackwards",
                replaced(uncleanedVtcBytes(), "volumes:=3-5 9", "volumes:=3-5 5"),
                "line 27 (uncleaned run volumes): found \"5\", expected ascending volumes and "
                "ranges of volumes, as in \"5-20 23\""},
        BadFile{"MoreVolumesThanTheFile",
                replaced(uncleanedVtcBytes(), "volumes:=3-5 9", "volumes:=3-7"),
                "line 27 (uncleaned run volumes): found 5 volumes, expected the 4 of the file"},
        BadFile{"FirstVersionWithASpace",
                altered("vtc version:=2", "vtc version:=1\nspace name:=T1w"),
                "line 11 (space name): found \"T1w\", expected a file of version 2 for that key"},
        BadFile{"FirstVersionWithACleaning",
                altered("vtc version:=2", "vtc version:=1\ncleaning:=a"),
                "line 11 (cleaning): found \"a\", expected a file of version 2 for that key"},
        BadFile{"EmptySubject", altered("vtc version:=2", "vtc version:=2\nsubject:="),
                "line 11 (subject): found \"\", expected a text, or no such line"},
        BadFile{"ControlInSubject", altered("vtc version:=2", "vtc version:=2\nsubject:=a\tb"),
                "line 11 (subject): found a control character (09), expected at most 255 "
                "characters, none of them a control character"},
        BadFile{"HalfALedger", altered("vtc version:=2", "vtc version:=2\ncleaning rank:=3"),
                "header: found no \"cleaning\", expected it once"},
        BadFile{"LedgerWithoutItsEnd",
                replaced(cleanedVtcBytes(), "cleaning mean FD after:=0.125\n", ""),
                "header: found no \"cleaning mean FD after\", expected it once"},
        BadFile{"LedgerThatDoesNotAddUp",
                replaced(cleanedVtcBytes(), "kept volumes:=270", "kept volumes:=271"),
                "line 14 (cleaning volumes): found 300, expected the sum of those non-steady, "
                "censored and kept, 1 or more"},
        BadFile{"NegativeRank", replaced(cleanedVtcBytes(), "rank:=31", "rank:=-1"),
                "line 18 (cleaning rank): found \"-1\", expected a whole number from 0 to "
                "2147483647"},
        BadFile{"DegreesOfFreedomNoNumber",
                replaced(cleanedVtcBytes(), "freedom:=238.5", "freedom:=about 238"),
                "line 19 (cleaning degrees of freedom): found \"about 238\", expected a finite "
                "number"},
        BadFile{"NegativeDegreesOfFreedom",
                replaced(cleanedVtcBytes(), "freedom:=238.5", "freedom:=-2"),
                "line 19 (cleaning degrees of freedom): found -2, expected a finite number, 0 or "
                "more"},
        BadFile{"FdNotANumber", replaced(cleanedVtcBytes(), "before:=n/a", "before:=nan"),
                "line 21 (cleaning mean FD before): found \"nan\", expected a finite number"},
        BadFile{"EmptyMethod",
                replaced(cleanedVtcBytes(), "cleaning:=scrubbing, order joint", "cleaning:="),
                "line 13 (cleaning): found an empty text, expected a line of 1 to 4096 characters"},
        BadFile{"FieldTwice", altered("endian: little", "endian: little\ntype: float"),
                "line 9: found \"type\" again, expected it once, as in line 2"},
        BadFile{"NoField", altered("encoding: raw\n", ""),
                "header: found no \"encoding\", expected it once"},
        BadFile{"NoKey", altered("box start:=57 52 59\n", ""),
                "header: found no \"box start\", expected it once"},
        BadFile{"LineWithoutColon", altered("endian: little", "endian little"),
                "line 8: found \"endian little\", expected \"field: value\" or \"key:=value\""},
        BadFile{"WindowsLineEnds", smallVtcBytes().replace("\n", "\r\n"),
                "line 1: found \"NRRD0004\\r\", expected \"NRRD0004\" or \"NRRD0005\""},
        BadFile{"UnknownVersion", altered("vtc version:=2", "vtc version:=3"),
                "line 10 (vtc version): found \"3\", expected \"1\" or \"2\""},
        BadFile{"ThreeAxes", altered("dimension: 4", "dimension: 3"),
                "line 3 (dimension): found \"3\", expected \"4\""},
        BadFile{"OtherType", altered("type: short", "type: double"),
                "line 2 (type): found \"double\", expected \"short\" or \"float\""},
        BadFile{"TypeOfAnotherSize", altered("type: short", "type: float"),
                "data: found 96 bytes, expected 192 bytes (4 x 3 x 2 x 2 samples of 4 bytes)"},
        BadFile{"BigEndian", altered("endian: little", "endian: big"),
                "line 8 (endian): found \"big\", expected \"little\""},
        BadFile{"Compressed", altered("encoding: raw", "encoding: gzip"),
                "line 9 (encoding): found \"gzip\", expected \"raw\""},
        BadFile{"OtherUnits", altered("units: \"s\"", "units: \"ms\""),
                "line 7 (units): found \"\"ms\" \"mm\" \"mm\" \"mm\"\", expected \"\"s\" \"mm\" "
                "\"mm\" \"mm\"\""},
        BadFile{"TimeNotFirst", altered("time domain domain domain", "domain domain domain time"),
                "line 5 (kinds): found \"domain domain domain time\", expected \"time domain "
                "domain domain\""},
        BadFile{"NegativeSize", altered("sizes: 4 3 2 2", "sizes: 4 3 -2 2"),
                "line 4 (sizes): found \"-2\", expected a whole number from 1 to 2147483647"},
        BadFile{"ZeroVolumes", altered("sizes: 4 3 2 2", "sizes: 0 3 2 2"),
                "line 4 (sizes): found \"0\", expected a whole number from 1 to 2147483647"},
        BadFile{"ThreeSizes", altered("sizes: 4 3 2 2", "sizes: 4 3 2"),
                "line 4 (sizes): found \"4 3 2\", expected 4 values"},
        BadFile{"SizeNoNumber", altered("sizes: 4 3 2 2", "sizes: 4 3 2 2x"),
                "line 4 (sizes): found \"2x\", expected a whole number from 1 to 2147483647"},
        BadFile{"SizeWithPoint", altered("sizes: 4 3 2 2", "sizes: 4.0 3 2 2"),
                "line 4 (sizes): found \"4.0\", expected a whole number from 1 to 2147483647"},
        BadFile{"HugeVolumes", altered("sizes: 4 3 2 2", "sizes: 2147483647 3 2 2"),
                "data: found 96 bytes, expected 51539607528 bytes (2147483647 x 3 x 2 x 2 samples "
                "of 2 bytes)"},
        BadFile{"SizeBeyondInt", altered("sizes: 4 3 2 2", "sizes: 4294967296 3 2 2"),
                "line 4 (sizes): found \"4294967296\", expected a whole number from 1 to "
                "2147483647"},
        BadFile{"SizeBeyond64Bits", altered("sizes: 4 3 2 2", "sizes: 99999999999999999999 3 2 2"),
                "line 4 (sizes): found \"99999999999999999999\", expected a whole number from 1 "
                "to 2147483647"},
        BadFile{"BoxTooLarge", altered("sizes: 4 3 2 2", "sizes: 4 257 2 2"),
                "line 4 (sizes): found 257, expected 1 to 256 samples on each axis of the box"},
        BadFile{"HugeProduct",
                altered("sizes: 4 3 2 2", "sizes: 2147483647 2147483647 2147483647 2147483647"),
                "line 4 (sizes): found 2147483647, expected 1 to 256 samples on each axis of the "
                "box"},
        BadFile{"SamplesOutsideTheCube", altered("box start:=57 52 59", "box start:=250 52 59"),
                "line 4 (sizes): found a last sample at VMR voxel 256, expected all samples at 0 "
                "to 255"},
        BadFile{"NegativeStart", altered("box start:=57 52 59", "box start:=57 -52 59"),
                "line 11 (box start): found \"-52\", expected a whole number from 0 to 255"},
        BadFile{"StartBeyondTheCube", altered("box start:=57 52 59", "box start:=57 52 256"),
                "line 11 (box start): found \"256\", expected a whole number from 0 to 255"},
        BadFile{"TwoStarts", altered("box start:=57 52 59", "box start:=57 52"),
                "line 11 (box start): found \"57 52\", expected 3 values"},
        BadFile{"NotANumberForRepetitionTime",
                altered("spacings: 0.72 3 3 3", "spacings: nan 3 3 3"),
                "line 6 (spacings): found \"nan\", expected seconds above 0"},
        BadFile{"InfiniteRepetitionTime", altered("spacings: 0.72 3 3 3", "spacings: inf 3 3 3"),
                "line 6 (spacings): found \"inf\", expected seconds above 0"},
        BadFile{"OverflowingRepetitionTime",
                altered("spacings: 0.72 3 3 3", "spacings: 1e999 3 3 3"),
                "line 6 (spacings): found \"1e999\", expected seconds above 0"},
        BadFile{"ZeroRepetitionTime", altered("spacings: 0.72 3 3 3", "spacings: 0 3 3 3"),
                "line 6 (spacings): found a repetition time of 0, expected seconds above 0"},
        BadFile{"NegativeRepetitionTime", altered("spacings: 0.72 3 3 3", "spacings: -2 3 3 3"),
                "line 6 (spacings): found a repetition time of -2, expected seconds above 0"},
        BadFile{"ZeroResolution", altered("spacings: 0.72 3 3 3", "spacings: 2 0 0 0"),
                "line 6 (spacings): found \"0\", expected a whole number from 1 to 256"},
        BadFile{"NegativeResolution", altered("spacings: 0.72 3 3 3", "spacings: 2 -3 -3 -3"),
                "line 6 (spacings): found \"-3\", expected a whole number from 1 to 256"},
        BadFile{"UnequalResolutions", altered("spacings: 0.72 3 3 3", "spacings: 2 3 3 4"),
                "line 6 (spacings): found \"2 3 3 4\", expected one resolution for all three "
                "axes"},
        BadFile{"NotANumberForResolution",
                altered("spacings: 0.72 3 3 3", "spacings: 2 nan nan nan"),
                "line 6 (spacings): found \"nan\", expected a whole number from 1 to 256"},
        BadFile{"LongChecksum", altered("samples checksum:=", "samples checksum:=0"),
                "line 12 (samples checksum): found \"0" + checksumText() +
                    "\", expected 16 lower-case hexadecimal digits"},
        BadFile{"EmptyChecksum", altered(checksumText().c_str(), ""),
                "line 12 (samples checksum): found \"\", expected 16 lower-case hexadecimal "
                "digits"},
        BadFile{"ProtocolNotUtf8",
                replaced(smallVtcBytes(QStringLiteral("block.prt")), "block", "bl\366ck"),
                "line 12: found \"linked protocol:=bl\\xf6ck.prt\", expected UTF-8"},
        BadFile{"EmptyProtocol",
                replaced(smallVtcBytes(QStringLiteral("block.prt")), "block.prt", ""),
                "line 12 (linked protocol): found \"\", expected a path"},
        BadFile{"Misaligned", altered("#", "#x"),
                "data: found a header of 257 bytes, expected a multiple of 2"}),
    nameOf);

} // namespace corvane
