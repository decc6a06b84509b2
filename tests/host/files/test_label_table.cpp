// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/files/label_table.h"
#include "tests/host/support/host_files.h"

namespace corvane
{

namespace
{

LabelTable readText(const QByteArray &text)
{
    const TemporaryFolder folder;
    putBytes(folder.path("labels.tsv"), text);
    return readLabelTable(folder.path("labels.tsv"));
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

TEST(LabelTable, NamesByNumberWhatHasNoName)
{
    const LabelTable table = readText("index\tname\n12\tn/a\n13\t\n-4\tleft\n");
    EXPECT_EQ(table.at(12).name, QStringLiteral("12"));
    EXPECT_EQ(table.at(13).name, QStringLiteral("13"));
    EXPECT_EQ(table.at(-4).name, QStringLiteral("left"));
}

TEST(LabelTable, LeavesOutTheBackground)
{
    const LabelTable table = readText("index\tname\n0\tbackground\n1\ta\n");
    EXPECT_EQ(table.size(), 1U);
    EXPECT_EQ(table.count(0), 0U);
}

TEST(LabelTable, ReadsColours)
{
    const LabelTable table = readText("index\tname\tcolor\n1\ta\t#FF8001\n2\tb\tred\n3\tc\tn/a\n");
    ASSERT_TRUE(table.at(1).colour.has_value());
    EXPECT_EQ(table.at(1).colour->r, 255);
    EXPECT_EQ(table.at(1).colour->g, 128);
    EXPECT_EQ(table.at(1).colour->b, 1);
    EXPECT_FALSE(table.at(2).colour.has_value());
    EXPECT_FALSE(table.at(3).colour.has_value());
}

class BadLabels : public testing::TestWithParam<BadFile>
{
};

TEST_P(BadLabels, AreRefusedInOneLine)
{
    const TemporaryFolder folder;
    const QString path = folder.path("labels.tsv");
    putBytes(path, GetParam().bytes);
    EXPECT_EQ(errorOf([&] { readLabelTable(path); }), path.toStdString() + ": " + GetParam().says);
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
        BadFile{"ControlCharacter", QByteArray("index\tname\n1\ta\x02") + "b\n",
                "line 2, name: found a control character (02), expected the name of a "
                "label"}),
    nameOf);

} // namespace

} // namespace corvane
