// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/support/host_files.h"

#include <cmath>

namespace corvane
{

namespace
{

const QByteArray goodVoi = R"({
    "format": "Corvane VOI",
    "version": 2,
    "subject": "",
    "spaceName": "T1w",
    "referenceSpace": 0,
    "resolution": [1, 1, 1],
    "vois": [
        {
            "name": "left",
            "color": [255, 0, 10],
            "voxels": [
                1, 2, 3,
                255, 0, 128
            ]
        }
    ]
}
)";

QByteArray altered(const QByteArray &piece, const QByteArray &by)
{
    return replaced(goodVoi, piece, by);
}

} // namespace

TEST(VoiFile, GivesBackWhatWasWritten)
{
    const TemporaryFolder folder;
    VoiSet set = smallVoiSet();
    set.provenance = {QString::fromUtf8("größe \"1\""), QStringLiteral("MNI152NLin2009cAsym")};
    set.resolution[2] = 0.1 + 0.2;
    writeVoiFile(folder.path("rois.voi"), set);
    EXPECT_TRUE(readVoiFile(folder.path("rois.voi")) == set);
}

TEST(VoiFile, ReadsAFileWrittenByHand)
{
    const TemporaryFolder folder;
    putBytes(folder.path("rois.voi"), goodVoi);
    const VoiSet set = readVoiFile(folder.path("rois.voi"));
    EXPECT_EQ(set.provenance.subject, QString());
    EXPECT_EQ(set.provenance.space, QStringLiteral("T1w"));
    ASSERT_EQ(set.vois.size(), 1U);
    EXPECT_EQ(set.vois[0].name, QStringLiteral("left"));
    EXPECT_EQ(set.vois[0].b, 10);
    const std::vector<std::array<int, 3>> voxels{{{1, 2, 3}}, {{255, 0, 128}}};
    EXPECT_EQ(set.vois[0].voxels, voxels);
}

TEST(VoiFile, ReadsItsFirstVersion)
{
    const TemporaryFolder folder;
    putBytes(folder.path("rois.voi"), R"({
    "format": "Corvane VOI",
    "version": 1,
    "referenceSpace": 0,
    "resolution": [1, 1, 1],
    "vois": [
        {
            "name": "left",
            "color": [255, 0, 10],
            "voxels": [
                1, 2, 3
            ]
        }
    ]
}
)");
    VoiSet expected;
    expected.vois = {{QStringLiteral("left"), 255, 0, 10, {{{1, 2, 3}}}}};
    EXPECT_EQ(readVoiFile(folder.path("rois.voi")), expected);
}

TEST(VoiFile, WritesTheFormAsItIsDocumented)
{
    const TemporaryFolder folder;
    VoiSet set;
    set.provenance.space = QStringLiteral("T1w");
    set.vois = {{QStringLiteral("left"), 255, 0, 10, {{{1, 2, 3}}, {{255, 0, 128}}}}};
    writeVoiFile(folder.path("rois.voi"), set);
    EXPECT_EQ(bytesOf(folder.path("rois.voi")), goodVoi);
}

TEST(VoiFile, MayHoldNoVoiAtAll)
{
    const TemporaryFolder folder;
    writeVoiFile(folder.path("none.voi"), VoiSet());
    EXPECT_TRUE(readVoiFile(folder.path("none.voi")) == VoiSet());
}

TEST(VoiFile, KeepsNamesOfEveryScriptAndLength)
{
    const TemporaryFolder folder;
    VoiSet set;
    for (const char *name :
         {"a", " blanks ", "quote \" backslash \\ slash /", "\xe6\xb5\xb7\xe9\xa6\xac",
          "\xf0\x9f\xa7\xa0", "%1 %2", "\"name\": {", "\"a\":", "same", "same"})
        set.vois.push_back({QString::fromUtf8(name), 0, 0, 0, {}});
    set.vois.push_back({QString(5000, QChar(0xe9)), 0, 0, 0, {}});
    writeVoiFile(folder.path("rois.voi"), set);
    EXPECT_TRUE(readVoiFile(folder.path("rois.voi")) == set);
}

TEST(VoiFile, ConvertedSpacesHaveTheirOwnRange)
{
    const TemporaryFolder folder;
    const QString path = folder.path("rois.voi");
    VoiSet set = smallVoiSet();
    set.referenceSpace = 3;
    set.vois[0].voxels = {{{-127, 128, 0}}};
    set.vois[1].voxels.clear();
    writeVoiFile(path, set);
    EXPECT_TRUE(readVoiFile(path) == set);

    set.referenceSpace = 2;
    EXPECT_EQ(errorOf([&] { writeVoiFile(path, set); }),
              path.toStdString() + ": VOI 1 (left hippocampus), voxel 1: found -127, expected a "
                                   "whole number from 0 to 255");
    set.referenceSpace = 3;
    set.vois[0].voxels = {{{0, 0, 0}}, {{0, 129, 0}}};
    EXPECT_EQ(errorOf([&] { writeVoiFile(path, set); }),
              path.toStdString() + ": VOI 1 (left hippocampus), voxel 2: found 129, expected a "
                                   "whole number from -127 to 128");
}

TEST(VoiFile, RefusesToWriteWhatTheReaderWouldRefuse)
{
    const TemporaryFolder folder;
    const QString path = folder.path("rois.voi");
    const auto error = [&](auto change) {
        VoiSet set = smallVoiSet();
        change(set);
        const std::string text = errorOf([&] { writeVoiFile(path, set); });
        const std::string prefix = path.toStdString() + ": ";
        return text.rfind(prefix, 0) == 0 ? text.substr(prefix.size()) : text;
    };
    EXPECT_EQ(error([](VoiSet &set) { set.vois[2].name.clear(); }),
              "VOI 3 (): found an empty name, expected a name");
    EXPECT_EQ(error([](VoiSet &set) { set.vois[2].name = QStringLiteral("a\tb"); }),
              "VOI 3 (a\\tb): found a control character (09), expected a name without it");
    EXPECT_EQ(error([](VoiSet &set) { set.vois[2].name = QString(QChar(0xd800)); }),
              "VOI 3 (\\xd800): found half of a character, expected a name without it");
    EXPECT_EQ(error([](VoiSet &set) { set.vois[0].g = 256; }),
              "VOI 1 (left hippocampus), color: found 256, expected a whole number from 0 to 255");
    EXPECT_EQ(error([](VoiSet &set) { set.provenance.subject = QString(QChar(0xd800)); }),
              "subject: found half of a character, expected at most 255 characters, none of them a "
              "control character");
    EXPECT_EQ(error([](VoiSet &set) { set.referenceSpace = -1; }),
              "referenceSpace: found -1, expected 0 or more");
    EXPECT_EQ(error([](VoiSet &set) { set.resolution[1] = std::nan(""); }),
              "resolution: found nan, expected millimetres above 0");
    EXPECT_TRUE(folder.entries().isEmpty());
}

class BadVoi : public testing::TestWithParam<BadFile>
{
};

TEST_P(BadVoi, IsRefusedInOneLine)
{
    const TemporaryFolder folder;
    const QString path = folder.path("bad.voi");
    putBytes(path, GetParam().bytes);
    EXPECT_EQ(errorOf([&] { readVoiFile(path); }), path.toStdString() + ": " + GetParam().says);
}

INSTANTIATE_TEST_SUITE_P(
    Table, BadVoi,
    testing::Values(
        BadFile{"Empty", "", "content: found an empty file, expected JSON"},
        BadFile{"WrongMagic", altered("Corvane VOI", "Corvane POI"),
                "format: found \"Corvane POI\", expected \"Corvane VOI\""},
        BadFile{"NoJson", "# Corvane protocol, version 1\n",
                "line 1, column 2: found \"# Corvane protocol, vers...\", expected JSON (illegal "
                "value)"},
        BadFile{"JsonOfAnotherKind", "[1, 2]",
                "top level: found a JSON array, expected a JSON object"},
        BadFile{"UnknownVersion", altered("\"version\": 2", "\"version\": 3"),
                "version: found 3, expected 1 or 2"},
        BadFile{"VersionAsText", altered("\"version\": 2", "\"version\": \"2\""),
                "version: found \"2\", expected 1 or 2"},
        BadFile{"CutShort", goodVoi.left(goodVoi.size() - 4),
                "line 17, column 5: found the end of the file, expected JSON (unterminated array)"},
        BadFile{
            "TrailingText", goodVoi + "{}",
            "line 19, column 1: found \"{}\", expected JSON (garbage at the end of the document)"},
        BadFile{"UnknownKey", altered("\"vois\"", "\"comment\": 1, \"vois\""),
                "top level: found the key \"comment\", expected only format, version, "
                "referenceSpace, resolution, vois, subject, spaceName"},
        BadFile{"NoKey", altered("    \"referenceSpace\": 0,\n", ""),
                "top level: found no key \"referenceSpace\", expected all of format, version, "
                "referenceSpace, resolution, vois, subject, spaceName"},
        BadFile{"FirstVersionWithASubject", altered("\"version\": 2", "\"version\": 1"),
                "top level: found the key \"spaceName\", expected only format, version, "
                "referenceSpace, resolution, vois"},
        BadFile{"NoSubject", altered("    \"subject\": \"\",\n", ""),
                "top level: found no key \"subject\", expected all of format, version, "
                "referenceSpace, resolution, vois, subject, spaceName"},
        BadFile{"SubjectNoText", altered("\"subject\": \"\"", "\"subject\": 7"),
                "subject: found 7, expected a text"},
        BadFile{"LineFeedInSpaceName", altered("T1w", "T1\\nw"),
                "spaceName: found a control character (0a), expected at most 255 characters, none "
                "of them a control character"},
        BadFile{"LongSubject", altered("\"subject\": \"", "\"subject\": \"" + QByteArray(256, 'x')),
                "subject: found 256 characters, expected at most 255 characters, none of them a "
                "control character"},
        BadFile{"KeyTwice", altered("\"version\": 2,", "\"version\": 2, \"version\": 2,"),
                "line 3, column 20: found the key \"version\" again, expected it once"},
        BadFile{"KeyTwiceInVoi",
                altered("\"name\": \"left\",", "\"name\": \"a\", \"name\" : \"b\","),
                "line 10, column 27: found the key \"name\" again, expected it once"},
        BadFile{"KeyWithEscapes", altered("\"version\"", "\"versio\\u006e\""),
                "line 3, column 6: found the key \"versio\\u006e\", expected a key without "
                "escapes"},
        BadFile{"DeeperThanAnyParser", QByteArray(2000, '['),
                "line 1, column 1026: found \"[[[[[[[[[[[[[[[[[[[[[[[[...\", expected JSON (too "
                "deeply nested document)"},
        BadFile{"UnknownKeyInVoi", altered("\"name\"", "\"side\": 1, \"name\""),
                "VOI 1 (left): found the key \"side\", expected only name, color, voxels"},
        BadFile{"NoName", altered("\"name\": \"left\",", ""),
                "VOI 1 (): found no key \"name\", expected all of name, color, voxels"},
        BadFile{"NameNoText", altered("\"left\"", "12"), "VOI 1 (): found 12, expected a name"},
        BadFile{"EmptyName", altered("\"left\"", "\"\""),
                "VOI 1 (): found an empty name, expected a name"},
        BadFile{"NameNotUtf8",
                altered("left", "l\xe9"
                                "ft"),
                "line 10, column 23: found \"l\\xe9ft\",\", expected UTF-8"},
        BadFile{"NulInName", altered("left", "le\\u0000ft"),
                "VOI 1 (le\\x00ft): found a control character (00), expected a name without it"},
        BadFile{"LineFeedInName", altered("left", "le\\nft"),
                "VOI 1 (le\\nft): found a control character (0a), expected a name without it"},
        BadFile{"HalfACharacterInName", altered("left", "le\\ud800ft"),
                "VOI 1 (le\\xd800ft): found half of a character, expected a name without it"},
        BadFile{"VoiNoObject", altered("\"vois\": [", "\"vois\": [7,"),
                "VOI 1 (): found 7, expected a JSON object"},
        BadFile{"VoisNoList",
                "{\"format\":\"Corvane VOI\",\"version\":1,\"referenceSpace\":0,"
                "\"resolution\":[1,1,1],\"vois\":3}",
                "vois: found 3, expected a list"},
        BadFile{"NegativeSpace", altered("\"referenceSpace\": 0", "\"referenceSpace\": -1"),
                "referenceSpace: found -1, expected a whole number from 0 to 2147483647"},
        BadFile{"HugeSpace", altered("\"referenceSpace\": 0", "\"referenceSpace\": 1e99"),
                "referenceSpace: found 1e+99, expected a whole number from 0 to 2147483647"},
        BadFile{"ZeroResolution", altered("[1, 1, 1]", "[1, 0, 1]"),
                "resolution: found 0, expected millimetres above 0"},
        BadFile{"NegativeResolution", altered("[1, 1, 1]", "[1, 1, -1]"),
                "resolution: found -1, expected millimetres above 0"},
        BadFile{"ResolutionNoNumber", altered("[1, 1, 1]", "[1, null, 1]"),
                "resolution: found null, expected millimetres above 0"},
        BadFile{"ResolutionNotANumber", altered("[1, 1, 1]", "[1, NaN, 1]"),
                "line 7, column 23: found \"NaN, 1],\", expected JSON (illegal number)"},
        BadFile{"ResolutionBeyondDouble", altered("[1, 1, 1]", "[1, 1e999, 1]"),
                "line 7, column 28: found \"9, 1],\", expected JSON (illegal number)"},
        BadFile{"TwoResolutions", altered("[1, 1, 1]", "[1, 1]"),
                "resolution: found 2 values, expected 3"},
        BadFile{"ColourTooBright", altered("[255, 0, 10]", "[256, 0, 10]"),
                "VOI 1 (left), color: found 256, expected a whole number from 0 to 255"},
        BadFile{"ColourNoList", altered("[255, 0, 10]", "\"red\""),
                "VOI 1 (left), color: found \"red\", expected a list"},
        BadFile{"CoordinateBelowTheCube", altered("255, 0, 128", "255, -1, 128"),
                "VOI 1 (left), voxel 2: found -1, expected a whole number from 0 to 255"},
        BadFile{"CoordinateBeyondTheCube", altered("255, 0, 128", "256, 0, 128"),
                "VOI 1 (left), voxel 2: found 256, expected a whole number from 0 to 255"},
        BadFile{"CoordinateBetweenVoxels", altered("255, 0, 128", "255, 0.5, 128"),
                "VOI 1 (left), voxel 2: found 0.5, expected a whole number from 0 to 255"},
        BadFile{"CoordinateHuge", altered("255, 0, 128", "255, 99999999999999999999, 128"),
                "VOI 1 (left), voxel 2: found 1e+20, expected a whole number from 0 to 255"},
        BadFile{"CoordinateNoNumber", altered("255, 0, 128", "255, \"0\", 128"),
                "VOI 1 (left), voxel 2: found \"0\", expected a whole number from 0 to 255"},
        BadFile{"CoordinateMissing", altered("255, 0, 128", "255, 0"),
                "VOI 1 (left), voxels: found 5 numbers, expected a multiple of 3"},
        BadFile{"NestedVoxels", altered("1, 2, 3", "[1, 2, 3], 7, 8"),
                "VOI 1 (left), voxel 1: found [1,2,3], expected a whole number from 0 to 255"}),
    nameOf);

} // namespace corvane
