// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/support/host_files.h"

namespace corvane
{

namespace
{

const QByteArray goodPrt = "# Corvane protocol, version 2\n"
                           "# name: Two tasks\n"
                           "# time unit: 1\n"
                           "# subject: sub-01\n"
                           "# space name: \n"
                           "condition\tfrom\tto\n"
                           "rest\t1\t10\n"
                           "task\t11\t20\n"
                           "rest\t21\t30\n"
                           "# end\n";

QByteArray altered(const QByteArray &piece, const QByteArray &by)
{
    return replaced(goodPrt, piece, by);
}

} // namespace

TEST(PrtFile, GivesBackWhatWasWritten)
{
    const TemporaryFolder folder;
    writePrtFile(folder.path("block.prt"), smallPrt());
    EXPECT_TRUE(readPrtFile(folder.path("block.prt")) == smallPrt());
}

TEST(PrtFile, ConditionsStandInTheOrderOfTheirFirstRow)
{
    const TemporaryFolder folder;
    putBytes(folder.path("block.prt"), goodPrt);
    Prt expected;
    expected.name = QStringLiteral("Two tasks");
    expected.provenance.subject = QStringLiteral("sub-01");
    expected.conditions = {{QStringLiteral("rest"), {{1, 10}, {21, 30}}},
                           {QStringLiteral("task"), {{11, 20}}}};
    EXPECT_TRUE(readPrtFile(folder.path("block.prt")) == expected);
}

TEST(PrtFile, ReadsItsFirstVersion)
{
    const TemporaryFolder folder;
    putBytes(folder.path("block.prt"), "# Corvane protocol, version 1\n"
                                       "# name: Two tasks\n"
                                       "# time unit: 1\n"
                                       "condition\tfrom\tto\n"
                                       "rest\t1\t10\n"
                                       "task\t11\t20\n"
                                       "# end\n");
    Prt expected;
    expected.name = QStringLiteral("Two tasks");
    expected.conditions = {{QStringLiteral("rest"), {{1, 10}}},
                           {QStringLiteral("task"), {{11, 20}}}};
    EXPECT_TRUE(readPrtFile(folder.path("block.prt")) == expected);
}

TEST(PrtFile, WritesTheFormAsItIsDocumented)
{
    const TemporaryFolder folder;
    Prt prt;
    prt.name = QStringLiteral("Two tasks");
    prt.provenance.space = QStringLiteral("T1w");
    prt.conditions = {{QStringLiteral("rest"), {{1, 10}, {21, 30}}}, {QStringLiteral("none"), {}}};
    writePrtFile(folder.path("block.prt"), prt);
    EXPECT_EQ(bytesOf(folder.path("block.prt")), "# Corvane protocol, version 2\n"
                                                 "# name: Two tasks\n"
                                                 "# time unit: 1\n"
                                                 "# subject: \n"
                                                 "# space name: T1w\n"
                                                 "condition\tfrom\tto\n"
                                                 "rest\t1\t10\n"
                                                 "rest\t21\t30\n"
                                                 "none\t\t\n"
                                                 "# end\n");
}

TEST(PrtFile, KeepsConditionsOfOneNameApart)
{
    const TemporaryFolder folder;
    Prt prt;
    prt.conditions = {{QStringLiteral("a"), {{1, 1}, {1, 1}}},
                      {QStringLiteral("a"), {{2, 3}}},
                      {QStringLiteral("b"), {{1, 9}}},
                      {QStringLiteral("a"), {}}};
    writePrtFile(folder.path("same.prt"), prt);
    EXPECT_TRUE(readPrtFile(folder.path("same.prt")) == prt);
}

TEST(PrtFile, KeepsEdgesOfItsNumbersAndNames)
{
    const TemporaryFolder folder;
    Prt prt;
    prt.name = QString();
    prt.provenance = {QString(255, QChar(0xe9)), QStringLiteral(" MNI ")};
    prt.timeUnit = 2147483647;
    prt.conditions = {{QStringLiteral(" # end "), {{1, 1}, {2147483647, 2147483647}}},
                      {QString::fromUtf8("\xf0\x9f\xa7\xa0"), {{1, 2147483647}}},
                      {QString(3000, QChar(0xe9)), {}}};
    writePrtFile(folder.path("edges.prt"), prt);
    EXPECT_TRUE(readPrtFile(folder.path("edges.prt")) == prt);
}

TEST(PrtFile, TakesFilesOfOtherEditors)
{
    const TemporaryFolder folder;
    putBytes(folder.path("crlf.prt"), QByteArray(goodPrt).replace("\n", "\r\n"));
    putBytes(folder.path("lf.prt"), goodPrt);
    EXPECT_TRUE(readPrtFile(folder.path("crlf.prt")) == readPrtFile(folder.path("lf.prt")));
    putBytes(folder.path("trimmed.prt"), altered("# name: Two tasks", "# name:"));
    EXPECT_EQ(readPrtFile(folder.path("trimmed.prt")).name, QString());
}

TEST(PrtFile, RefusesToWriteWhatTheReaderWouldRefuse)
{
    const TemporaryFolder folder;
    const QString path = folder.path("block.prt");
    const auto error = [&](auto change) {
        Prt prt = smallPrt();
        change(prt);
        const std::string text = errorOf([&] { writePrtFile(path, prt); });
        const std::string prefix = path.toStdString() + ": ";
        return text.rfind(prefix, 0) == 0 ? text.substr(prefix.size()) : text;
    };
    EXPECT_EQ(error([](Prt &prt) { prt.name = QStringLiteral("a\nb"); }),
              "name: found a control character (0a), expected a name without it");
    EXPECT_EQ(error([](Prt &prt) { prt.provenance.subject = QString(256, QLatin1Char('x')); }),
              "subject: found 256 characters, expected at most 255 characters, none of them a "
              "control character");
    EXPECT_EQ(error([](Prt &prt) { prt.provenance.space = QStringLiteral("a\nb"); }),
              "space name: found a control character (0a), expected at most 255 characters, none "
              "of them a control character");
    EXPECT_EQ(error([](Prt &prt) { prt.conditions[0].name = QStringLiteral("a\tb"); }),
              "condition 1 (a\\tb): found a control character (09), expected a name without it");
    EXPECT_EQ(error([](Prt &prt) { prt.conditions[2].name.clear(); }),
              "condition 3 (): found an empty name, expected a name");
    EXPECT_EQ(error([](Prt &prt) { prt.timeUnit = -1; }),
              "time unit: found -1, expected 0 or more");
    EXPECT_EQ(error([](Prt &prt) {
                  prt.conditions[0].intervals[1] = {3, 2};
              }),
              "condition 1 (rest): found an interval from 3 to 2, expected 1 <= from <= to");
    EXPECT_EQ(error([](Prt &prt) { prt.conditions[0].intervals[0].first = 0; }),
              "condition 1 (rest): found an interval from 0 to 2, expected 1 <= from <= to");
    EXPECT_TRUE(folder.entries().isEmpty());
}

class BadPrt : public testing::TestWithParam<BadFile>
{
};

TEST_P(BadPrt, IsRefusedInOneLine)
{
    const TemporaryFolder folder;
    const QString path = folder.path("bad.prt");
    putBytes(path, GetParam().bytes);
    EXPECT_EQ(errorOf([&] { readPrtFile(path); }), path.toStdString() + ": " + GetParam().says);
}

const char rowExpected[] = "condition, from and to between tabs, or \"# end\"";

INSTANTIATE_TEST_SUITE_P(
    Table, BadPrt,
    testing::Values(
        BadFile{"Empty", "",
                "line 1: found an empty file, expected \"# Corvane protocol, version 2\""},
        BadFile{"WrongMagic", "onset\tduration\n1\t2\n",
                "line 1: found \"onset\\tduration\", expected \"# Corvane protocol, version 2\" or "
                "\"# Corvane protocol, version 1\""},
        BadFile{"NoText", QByteArray("\0\1\2", 3),
                "line 1: found \"\\x00\\x01\\x02\" without a line feed, expected \"# Corvane "
                "protocol, version 2\" or \"# Corvane protocol, version 1\""},
        BadFile{"UnknownVersion", altered("version 2", "version 3"),
                "line 1: found \"# Corvane protocol, version 3\", expected \"# Corvane protocol, "
                "version 2\" or \"# Corvane protocol, version 1\""},
        BadFile{"FirstVersionWithASubject", altered("version 2", "version 1"),
                "line 4: found \"# subject: sub-01\", expected \"condition\\tfrom\\tto\""},
        BadFile{"NoSubject", altered("# subject: sub-01\n", ""),
                "line 4: found \"# space name: \", expected a line that begins \"# subject:\""},
        BadFile{"NoSpaceName", altered("# space name: \n", ""),
                "line 5: found \"condition\\tfrom\\tto\", expected a line that begins \"# space "
                "name:\""},
        BadFile{"ControlInSubject", altered("sub-01", "sub\x07"),
                "line 4: found a control character (07), expected at most 255 characters, none of "
                "them a control character"},
        BadFile{"LongSpaceName", altered("# space name: ", "# space name: " + QByteArray(256, 'x')),
                "line 5: found 256 characters, expected at most 255 characters, none of them a "
                "control character"},
        BadFile{"CutAtALine", goodPrt.chopped(6),
                std::string("line 10: found the end of the file, expected ") + rowExpected},
        BadFile{"CutInALine", goodPrt.chopped(8),
                std::string("line 9: found \"rest\\t21\\t3\" without a line feed, expected ") +
                    rowExpected},
        BadFile{"LastLineFeedMissing", goodPrt.chopped(1),
                std::string("line 10: found \"# end\" without a line feed, expected ") +
                    rowExpected},
        BadFile{"TrailingText", goodPrt + "rest\t31\t40\n",
                "line 11: found \"rest\\t31\\t40\\n\", expected the end of the file behind \"# "
                "end\""},
        BadFile{"TrailingLineFeed", goodPrt + "\n",
                "line 11: found \"\\n\", expected the end of the file behind \"# end\""},
        BadFile{"NoNameLine", altered("# name: Two tasks\n", ""),
                "line 2: found \"# time unit: 1\", expected a line that begins \"# name:\""},
        BadFile{"UnknownHeaderLine", altered("# time", "# colour: red\n# time"),
                "line 3: found \"# colour: red\", expected a line that begins \"# time unit:\""},
        BadFile{"NegativeTimeUnit", altered("unit: 1", "unit: -1"),
                "line 3: found \"-1\", expected the time unit as a whole number from 0 to "
                "2147483647"},
        BadFile{"TimeUnitNoNumber", altered("unit: 1", "unit: s"),
                "line 3: found \"s\", expected the time unit as a whole number from 0 to "
                "2147483647"},
        BadFile{"OtherColumns", altered("condition\tfrom\tto", "condition\tonset\tduration"),
                "line 6: found \"condition\\tonset\\tduration\", expected "
                "\"condition\\tfrom\\tto\""},
        BadFile{"TwoCells", altered("task\t11\t20", "task\t11"),
                std::string("line 8: found \"task\\t11\", expected ") + rowExpected},
        BadFile{"FourCells", altered("task\t11\t20", "task\t11\t20\t"),
                std::string("line 8: found \"task\\t11\\t20\\t\", expected ") + rowExpected},
        BadFile{"EmptyLine", altered("task\t11", "\ntask\t11"),
                std::string("line 8: found \"\", expected ") + rowExpected},
        BadFile{"EmptyName", altered("task\t11", "\t11"),
                "line 8: found an empty name, expected the condition's name"},
        BadFile{"ControlInName", altered("task\t11", "ta\x07sk\t11"),
                "line 8: found \"ta\\x07sk\", expected a name without control characters"},
        BadFile{"NulInName", altered("Two tasks", QByteArray("Two\0tasks", 9)),
                "line 2: found \"Two\\x00tasks\", expected a name without control characters"},
        BadFile{"NameNotUtf8", altered("Two tasks", "Zw\xf6lf"),
                "line 2: found \"# name: Zw\\xf6lf\", expected UTF-8"},
        BadFile{"ConditionNotUtf8", altered("task\t11", "t\xc3\x28sk\t11"),
                "line 8: found \"t\\xc3(sk\\t11\\t20\", expected UTF-8"},
        BadFile{"CutCharacter", altered("task\t11", "t\xe2\x82\t11"),
                "line 8: found \"t\\xe2\\x82\\t11\\t20\", expected UTF-8"},
        BadFile{"ByteOrderMark", "\xef\xbb\xbf" + goodPrt,
                "line 1: found \"\xef\xbb\xbf# Corvane protocol, version 2\", expected \"# Corvane "
                "protocol, version 2\" or \"# Corvane protocol, version 1\""},
        BadFile{"StartsBelowOne", altered("rest\t1\t10", "rest\t0\t10"),
                "line 7: found \"0\", expected from as a whole number from 1 to 2147483647"},
        BadFile{"NegativeStart", altered("rest\t1\t10", "rest\t-1\t10"),
                "line 7: found \"-1\", expected from as a whole number from 1 to 2147483647"},
        BadFile{"Reversed", altered("task\t11\t20", "task\t21\t20"),
                "line 8: found an interval from 21 to 20, expected from not above to"},
        BadFile{"BeyondInt", altered("task\t11\t20", "task\t11\t2147483648"),
                "line 8: found \"2147483648\", expected to as a whole number from 1 to "
                "2147483647"},
        BadFile{"HugeNumber", altered("task\t11\t20", "task\t11\t99999999999999999999999"),
                "line 8: found \"99999999999999999999999\", expected to as a whole number from 1 "
                "to 2147483647"},
        BadFile{"NotANumber", altered("task\t11\t20", "task\tnan\t20"),
                "line 8: found \"nan\", expected from as a whole number from 1 to 2147483647"},
        BadFile{"WithPoint", altered("task\t11\t20", "task\t11.0\t20"),
                "line 8: found \"11.0\", expected from as a whole number from 1 to 2147483647"},
        BadFile{"WithPlus", altered("task\t11\t20", "task\t+11\t20"),
                "line 8: found \"+11\", expected from as a whole number from 1 to 2147483647"},
        BadFile{"WithBlank", altered("task\t11\t20", "task\t 11\t20"),
                "line 8: found \" 11\", expected from as a whole number from 1 to 2147483647"},
        BadFile{"FromAlone", altered("task\t11\t20", "task\t11\t"),
                "line 8: found \"\", expected to as a whole number from 1 to 2147483647"}),
    nameOf);

} // namespace corvane
