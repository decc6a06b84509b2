// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/label_table.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/notes.h"

#include <gmock/gmock.h>

namespace corvane
{

namespace
{

LabelTable readText(const QByteArray &text, QStringList *notes = nullptr)
{
    const TemporaryFolder folder;
    putBytes(folder.path("labels.tsv"), text);
    QStringList said;
    const LabelTable table = readLabelTable(folder.path("labels.tsv"), said);
    if (notes != nullptr)
        *notes = said;
    else
        EXPECT_EQ(joined(said), "");
    return table;
}

/// "255 128 1", or "none".
std::string colourText(const LabelEntry &entry)
{
    if (!entry.colour)
        return "none";
    return std::to_string(entry.colour->r) + ' ' + std::to_string(entry.colour->g) + ' ' +
           std::to_string(entry.colour->b);
}

TEST(LabelTable, ReadsIndexAndName)
{
    const LabelTable table = readText("index\tname\n7\tInsula L\n3\tgr\xc3\xbc\xc3\x9f\x65\n");
    ASSERT_EQ(table.size(), 2U);
    EXPECT_EQ(table.at(7).name, QStringLiteral("Insula L"));
    EXPECT_EQ(table.at(3).name, QString::fromUtf8("gr\xc3\xbc\xc3\x9f\x65"));
    EXPECT_FALSE(table.at(7).colour.has_value());
}

TEST(LabelTable, ReadsTheOlderColumnLabel)
{
    EXPECT_EQ(readText("index\tabbreviation\tlabel\n1\tA\tAmygdala\n").at(1).name,
              QStringLiteral("Amygdala"));
    // Where both are there, the name counts.
    EXPECT_EQ(readText("label\tindex\tname\nx\t1\ty\n").at(1).name, QStringLiteral("y"));
}

TEST(LabelTable, ReadsNetworksAndSides)
{
    const LabelTable table = readText("index\tname\tnetwork\themisphere\n"
                                      "1\tA\tVisual 1\tL\n2\tB\tn/a\t\n");
    EXPECT_EQ(table.at(1).network, QStringLiteral("Visual 1"));
    EXPECT_EQ(table.at(1).hemisphere, QStringLiteral("L"));
    EXPECT_EQ(table.at(2).network, QString());
    EXPECT_EQ(table.at(2).hemisphere, QString());
    // Where both are there, the network counts.
    EXPECT_EQ(readText("index\tname\tnetwork_label\n1\tA\tx\n").at(1).network, QStringLiteral("x"));
    EXPECT_EQ(readText("index\tname\tYeo\tSystem\n1\tA\tx\ty\n").at(1).network,
              QStringLiteral("y"));
    EXPECT_EQ(readText("index\tname\tHemi\n1\tA\tlh\n").at(1).hemisphere, QStringLiteral("lh"));
    EXPECT_EQ(readText("index\tname\tnetwork_label\tnetwork\n1\tA\tx\ty\n").at(1).network,
              QStringLiteral("y"));
    EXPECT_EQ(readText("1 A 255 0 0 0\n").at(1).network, QString());
}

TEST(LabelTable, KnowsWhatIsNoName)
{
    const LabelTable table =
        readText("index\tname\n12\tn/a\n13\t\n14\t\"\"\n15\t\"n/a\"\n-4\tleft\n");
    for (const qint32 nameless : {12, 13, 14, 15})
        EXPECT_EQ(table.at(nameless).name, QString()) << nameless;
    EXPECT_EQ(table.at(-4).name, QStringLiteral("left"));
}

TEST(LabelTable, TakesQuotationMarksFromItsCells)
{
    const LabelTable table = readText("\"index\"\t\"name\"\t\"color\"\n"
                                      "\"1\"\t\"Insula, left\"\t\"#010203\"\n"
                                      "2\t\"the \"\"hand\"\" area\"\t#040506\n"
                                      "3\t5\" band\t#040506\n");
    EXPECT_EQ(table.at(1).name, QStringLiteral("Insula, left"));
    EXPECT_EQ(colourText(table.at(1)), "1 2 3");
    EXPECT_EQ(table.at(2).name, QStringLiteral("the \"hand\" area"));
    EXPECT_EQ(table.at(3).name, QStringLiteral("5\" band"));
}

TEST(LabelTable, TakesAnIndexWithADecimalPoint)
{
    const LabelTable table = readText("index\tname\n1.0\ta\n-2.00\tb\n1e3\tc\n");
    EXPECT_EQ(table.at(1).name, QStringLiteral("a"));
    EXPECT_EQ(table.at(-2).name, QStringLiteral("b"));
    EXPECT_EQ(table.at(1000).name, QStringLiteral("c"));
}

TEST(LabelTable, SkipsCommentsAboveTheNamesOfTheColumnsAndSaysSo)
{
    QStringList notes;
    const LabelTable table =
        readText("# Atlas of 2 regions\n\n  # version 3\nindex\tname\n1\ta\n2\t# b\n", &notes);
    EXPECT_EQ(table.at(1).name, QStringLiteral("a"));
    EXPECT_EQ(table.at(2).name, QStringLiteral("# b"));
    ASSERT_EQ(notes.size(), 1);
    EXPECT_THAT(
        notes[0].toStdString(),
        testing::EndsWith("labels.tsv: 2 comment lines above the names of the columns skipped"));
}

TEST(LabelTable, ReadsColourTables)
{
    const LabelTable table = readText("#$Id: lookup table\n"
                                      "#No. Label Name:                R   G   B   A\n"
                                      "\n"
                                      "0   Unknown                     0   0   0   0\n"
                                      "10  Left-Thalamus-Proper        0   118 14  0\n"
                                      "# cortex\r\n"
                                      "1001 ctx-lh-bankssts\t25  100 40  0\r\n"
                                      "1002 Area 4 a               300 100 40  255\n");
    EXPECT_EQ(table.size(), 3U);
    EXPECT_EQ(table.at(10).name, QStringLiteral("Left-Thalamus-Proper"));
    EXPECT_EQ(colourText(table.at(10)), "0 118 14");
    EXPECT_EQ(table.at(1001).name, QStringLiteral("ctx-lh-bankssts"));
    EXPECT_EQ(colourText(table.at(1001)), "25 100 40");
    EXPECT_EQ(table.at(1002).name, QStringLiteral("Area 4 a"));
    EXPECT_EQ(colourText(table.at(1002)), "none");
}

TEST(LabelTable, LeavesOutTheBackground)
{
    const LabelTable table = readText("index\tname\n0\tbackground\n1\ta\n");
    EXPECT_EQ(table.size(), 1U);
    EXPECT_EQ(table.count(0), 0U);
}

TEST(LabelTable, ReadsColours)
{
    for (const auto &[written, read] : {std::pair{"#FF8001", "255 128 1"},
                                        {"ff8001", "255 128 1"},
                                        {"#f80", "255 136 0"},
                                        {"#FF800110", "255 128 1"},
                                        {"red", "none"},
                                        {"n/a", "none"},
                                        {"", "none"},
                                        {"f80", "none"},
                                        {"#FF80011", "none"}})
        EXPECT_EQ(
            colourText(readText(QByteArray("index\tname\tcolor\n1\ta\t") + written + '\n').at(1)),
            read)
            << written;
}

TEST(LabelTable, ReadsColoursFromColumnsOfTheirOwn)
{
    const LabelTable table =
        readText("index\tname\tR\tG\tB\tA\n1\ta\t255\t128\t1\t0\n2\tb\t256\t0\t0\t0\n"
                 "3\tc\tn/a\t0\t0\t0\n4\td\t12.0\t0\t0\t0\n");
    EXPECT_EQ(colourText(table.at(1)), "255 128 1");
    EXPECT_EQ(colourText(table.at(2)), "none");
    EXPECT_EQ(colourText(table.at(3)), "none");
    EXPECT_EQ(colourText(table.at(4)), "12 0 0");
    EXPECT_EQ(colourText(readText("index\tname\tred\tgreen\tblue\n1\ta\t1\t2\t3\n").at(1)),
              "1 2 3");
    // Without all three they are no colour.
    EXPECT_EQ(colourText(readText("index\tname\tr\tg\n1\ta\t1\t2\n").at(1)), "none");
}

class BadLabels : public testing::TestWithParam<BadFile>
{
};

TEST_P(BadLabels, AreRefusedInOneLine)
{
    const TemporaryFolder folder;
    const QString path = folder.path("labels.tsv");
    putBytes(path, GetParam().bytes);
    QStringList notes;
    EXPECT_EQ(errorOf([&] { readLabelTable(path, notes); }),
              path.toStdString() + ": " + GetParam().says);
}

INSTANTIATE_TEST_SUITE_P(
    Files, BadLabels,
    testing::Values(
        BadFile{"Empty", "",
                "content: found no line, expected a line with the names of the columns"},
        BadFile{"NoIndex", "number\tname\n1\ta\n",
                "first line: found the columns \"number, name\", expected a column \"index\""},
        BadFile{"NoName", "index\tcolor\n1\t#000000\n",
                "first line: found the columns \"index, color\", expected a column \"name\""},
        BadFile{"NoWholeNumber", "index\tname\n1.5\ta\n",
                "line 2, index: found \"1.5\", expected a whole number of 32 bits"},
        BadFile{"TooLarge", "index\tname\n2147483648\ta\n",
                "line 2, index: found \"2147483648\", expected a whole number of 32 bits"},
        BadFile{"Twice", "index\tname\n1\ta\n2\tb\n1\tc\n",
                "line 4, index: found 1, which line 2 has too, expected each index once"},
        BadFile{"NoUtf8", "index\tname\n1\t\xff\n",
                "line 2: found \"1\\t\\xff\", expected text in UTF-8"},
        BadFile{"TwiceInTwoForms", "index\tname\n1\ta\n1.0\tb\n",
                "line 3, index: found 1, which line 2 has too, expected each index once"},
        BadFile{"OnlyComments", "# a\n# b\n",
                "content: found no line, expected a line with the names of the columns"},
        BadFile{"ColourTableWithAShortLine", "1 a 1 2 3 0\n2 b 1 2 3\n",
                "line 2: found \"2 b 1 2 3\", expected index, name, red, green, blue and alpha "
                "with blanks between them"},
        BadFile{"ColourTableWithoutNumbers", "1 a 1 2 3 0\n2 b x y z 0\n",
                "line 2: found \"2 b x y z 0\", expected index, name, red, green, blue and alpha "
                "with blanks between them"},
        BadFile{"ColourTableWithAnIndexTwice", "# c\n1 a 1 2 3 0\n1 b 1 2 3 0\n",
                "line 3: found 1, which line 2 has too, expected each index once"},
        BadFile{"ControlCharacter", QByteArray("index\tname\n1\ta\x02") + "b\n",
                "line 2, name: found a control character (02), expected the name of a "
                "label"}),
    nameOf);

} // namespace

} // namespace corvane
