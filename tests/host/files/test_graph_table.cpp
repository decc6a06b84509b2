// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/compute/graph_files.h"
#include "host/files/graph_table.h"
#include "tests/host/support/host_files.h"
#include "tests/host/support/program.h"

#include <cmath>

namespace corvane
{

namespace
{

const QString somewhere = QStringLiteral("m.csv");

GraphTable parsed(const QByteArray &text)
{
    return parseGraphTable(text, somewhere);
}

std::string refusal(const QByteArray &text)
{
    return errorOf([&] { parsed(text); });
}

/// 0, 0.5 / 0.25, 0
Eigen::MatrixXf pair()
{
    Eigen::MatrixXf matrix(2, 2);
    matrix << 0.0F, 0.5F, 0.25F, 0.0F;
    return matrix;
}

struct Good {
    const char *name;
    QByteArray text;
    QStringList names;
};

void PrintTo(const Good &good, std::ostream *stream)
{
    *stream << good.name;
}

class GoodTable : public testing::TestWithParam<Good>
{
};

TEST_P(GoodTable, IsRead)
{
    const GraphTable table = parsed(GetParam().text);
    EXPECT_EQ(table.weights, pair());
    EXPECT_EQ(table.names, GetParam().names);
}

const QStringList none;
const QStringList ab{QStringLiteral("A"), QStringLiteral("B")};

INSTANTIATE_TEST_SUITE_P(
    Shapes, GoodTable,
    testing::Values(
        Good{"plain", "0,0.5\n0.25,0\n", none}, Good{"no_last_line_end", "0,0.5\n0.25,0", none},
        Good{"windows_line_ends", "0,0.5\r\n0.25,0\r\n", none},
        Good{"empty_lines", "\n0,0.5\n\n0.25,0\n\n\n", none},
        Good{"blanks", " 0 , 0.5\n 0.25,0 \n", none}, Good{"tabs", "0\t0.5\n0.25\t0\n", none},
        Good{"byte_order_mark",
             "\xef\xbb\xbf"
             "0,0.5\n0.25,0\n",
             none},
        Good{"semicolons", "0;0.5\n0.25;0\n", none},
        Good{"semicolons_and_blanks", " 0 ; 0.5\n0.25 ;0\n", none},
        Good{"one_blank", "0 0.5\n0.25 0\n", none},
        Good{"columns_of_a_fixed_width", "\n  0.0000   5.0e-01  \r\n  0.2500        0\r\n", none},
        Good{"blanks_with_names", "A B\nA 0 0.5\nB 0.25 0\n", ab},
        Good{"blanks_with_quoted_names",
             "\"left A\" \"B\"\n0 0.5\n0.25 0\n",
             {QStringLiteral("left A"), QStringLiteral("B")}},
        Good{"semicolons_with_names",
             ";\"A, 1\";B\n\"A, 1\";0;0.5\nB;0.25;0\n",
             {QStringLiteral("A, 1"), QStringLiteral("B")}},
        Good{"names_with_semicolons",
             "A;1,B;2\n0,0.5\n0.25,0\n",
             {QStringLiteral("A;1"), QStringLiteral("B;2")}},
        Good{"exponents", "0e0,5E-1\n2.5e-01,0\n", none},
        Good{"quoted_numbers", "\"0\",\"0.5\"\n\"0.25\",\"0\"\n", none},
        Good{"header", "A,B\n0,0.5\n0.25,0\n", ab}, Good{"index", "A,0,0.5\nB,0.25,0\n", ab},
        Good{"both_with_empty_corner", ",A,B\nA,0,0.5\nB,0.25,0\n", ab},
        Good{"both_with_text_in_the_corner", "node,A,B\nA,0,0.5\nB,0.25,0\n", ab},
        Good{"both_without_corner", "A,B\nA,0,0.5\nB,0.25,0\n", ab},
        Good{"both_with_tabs", "\tA\tB\nA\t0\t0.5\nB\t0.25\t0\n", ab},
        Good{"header_over_counting_index", ",A,B\n0,0,0.5\n1,0.25,0\n", ab},
        Good{"counting_header_and_index",
             ",0,1\n0,0,0.5\n1,0.25,0\n",
             {QStringLiteral("0"), QStringLiteral("1")}},
        Good{"numbers_as_names",
             "Node\t7\t12\n7\t0\t0.5\n12\t0.25\t0\n",
             {QStringLiteral("7"), QStringLiteral("12")}},
        Good{"a_node_called_node",
             "Node\tB\n0\t0.5\n0.25\t0\n",
             {QStringLiteral("Node"), QStringLiteral("B")}},
        Good{"quoted_names",
             "\"left, \"\"upper\"\"\",\"B\"\n0,0.5\n0.25,0\n",
             {QStringLiteral("left, \"upper\""), QStringLiteral("B")}},
        Good{"names_in_utf8",
             "Größe,\xce\xbb\n0,0.5\n0.25,0\n",
             {QString::fromUtf8("Größe"), QString::fromUtf8("λ")}},
        Good{"names_that_begin_with_digits",
             "1a,2b\n0,0.5\n0.25,0\n",
             {QStringLiteral("1a"), QStringLiteral("2b")}}),
    [](const auto &tested) { return std::string(tested.param.name); });

TEST(GraphTable, SkipsCommentsAndSaysSo)
{
    const GraphTable table =
        parsed("# made by a program, in 2026; twice\n0 0.5\n  # half\n0.25 0\n");
    EXPECT_EQ(table.weights, pair());
    EXPECT_EQ(table.notes, QStringList{QStringLiteral("m.csv: 2 comment lines skipped")});
    EXPECT_TRUE(parsed("0,0.5\n0.25,0\n").notes.isEmpty());
}

TEST(GraphTable, MayHoldOneNode)
{
    for (const char *text :
         {"0.5", "A\n0.5", "A,0.5", ",A\nA,0.5", "node A\n0.5", " 0.5 ", "\tA\nA\t0.5"}) {
        EXPECT_EQ(parsed(text).weights, Eigen::MatrixXf::Constant(1, 1, 0.5F)) << text;
    }
}

TEST(GraphTable, KeepsWhatIsNotFinite)
{
    const Eigen::MatrixXf weights = parsed("nan,inf\n-inf,NaN\n").weights;
    EXPECT_TRUE(std::isnan(weights(0, 0)) && std::isnan(weights(1, 1)));
    EXPECT_EQ(weights(0, 1), std::numeric_limits<float>::infinity());
    EXPECT_EQ(weights(1, 0), -std::numeric_limits<float>::infinity());
}

struct Bad {
    const char *name;
    QByteArray text;
    std::string says;
};

void PrintTo(const Bad &bad, std::ostream *stream)
{
    *stream << bad.name;
}

class BadTable : public testing::TestWithParam<Bad>
{
};

TEST_P(BadTable, IsRefusedByRowAndColumn)
{
    EXPECT_EQ(refusal(GetParam().text), "m.csv: " + GetParam().says);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, BadTable,
    testing::Values(
        Bad{"empty", "", "row 1, column 1: found an empty file, expected a square matrix"},
        Bad{"blank", " \n\n", "row 1, column 1: found an empty file, expected a square matrix"},
        Bad{"too_few_columns", "0,1\n1,0\n2,3\n",
            "row 3, column 2: found the end of a matrix of 3 rows and 2 columns, expected as many "
            "rows as columns"},
        Bad{"too_few_rows", "0,1,2\n1,0,2\n",
            "row 2, column 3: found the end of a matrix of 2 rows and 3 columns, expected as many "
            "rows as columns"},
        Bad{"a_column_too_many_below_a_header", ",A,B\nA,0,1\n",
            "row 2, column 3: found the end of a matrix of 1 rows and 2 columns, expected as many "
            "rows as columns"},
        Bad{"header_alone", "A,B\n",
            "row 1, column 2: found \"B\", expected a number of single precision"},
        Bad{"short_row", "0,1,2\n1,0\n2,3,0\n",
            "row 2, column 3: found 2 cells in this row, expected 3 as in row 3"},
        Bad{"long_row", "0,1\n\n1,0,7\n1,0\n",
            "row 3, column 3: found 3 cells in this row, expected 2 as in row 4"},
        Bad{"text", "0,1,2\n1,0,x1\n2,3,0\n",
            "row 2, column 3: found \"x1\", expected a number of single precision"},
        Bad{"text_in_the_first_row", "0,abc\n1,0\n",
            "row 1, column 2: found \"abc\", expected a number of single precision"},
        Bad{"text_in_the_corner", "abc,1\n1,0\n",
            "row 1, column 1: found \"abc\", expected a number of single precision"},
        Bad{"text_below_names", ",A,B\nA,0,1\nB,?,0\n",
            "row 3, column 2: found \"?\", expected a number of single precision"},
        Bad{"missing_value", "0,1\n,0\n",
            "row 2, column 1: found an empty cell, expected a number of single precision"},
        Bad{"decimal_comma", "0;0,5\n0,5;0\n",
            "row 1, column 1: found \"0;0\", expected a number of single precision, and commas or "
            "tabs between numbers"},
        Bad{"blanks_in_one_line_alone", "0 1 2\n1,0,2\n2,1,0\n",
            "row 1, column 2: found 1 cell in this row, expected 3 as in row 3"},
        Bad{"blanks_between_commas", "0,1 2\n1,0\n",
            "row 1, column 2: found \"1 2\", expected a number of single precision, and commas or "
            "tabs between numbers"},
        Bad{"nothing_but_comments", "# a\n# b\n",
            "row 1, column 1: found an empty file, expected a square matrix"},
        Bad{"row_below_comments", "# a\n# b\n0 1\n# c\n1 x\n",
            "row 5, column 2: found \"x\", expected a number of single precision"},
        Bad{"too_large", "0,1e39\n1,0\n",
            "row 1, column 2: found \"1e39\", expected a number of single precision"},
        Bad{"names_that_differ", ",A,B\nB,0,1\nA,1,0\n",
            "row 2, column 1: found \"B\", expected \"A\" as in the header"},
        Bad{"open_quotes", "0,1\n\"1,0\n",
            "row 2, column 1: found the end of the file, expected a closing quotation mark"},
        Bad{"text_behind_quotes", "\"0\"x,1\n1,0\n",
            "row 1, column 1: found more behind the closing quotation mark, expected the end of "
            "the cell"},
        Bad{"name_of_two_lines", "A,\"B\nC\"\n0,1\n1,0\n",
            "row 1, column 2: found a control character (0a), expected a name without it"},
        Bad{"name_not_in_utf8", "A,\xff\n0,1\n1,0\n",
            "row 1, column 2: found \"\\xff\", expected text in UTF-8"},
        Bad{"numbers_only_but_one_column_more", "1,0,5\n2,5,0\n",
            "row 2, column 3: found the end of a matrix of 2 rows and 3 columns, expected as many "
            "rows as columns"}),
    [](const auto &tested) { return std::string(tested.param.name); });

TEST(GraphTable, OfAMissingFileIsRefused)
{
    const TemporaryFolder folder;
    EXPECT_NE(errorOf([&] { readGraphTable(folder.path("none.csv")); }), "no error");
}

GraphRequest withTree()
{
    GraphRequest request;
    request.withTree = true;
    return request;
}

TEST(GraphFiles, HoldAMeasurePerColumnAndANodePerRow)
{
    const TemporaryFolder folder;
    writeGraphFiles(folder.path(), parsed(",\"a,b\",c,d\n\"a,b\",0,1,0.5\nc,1,0,0\nd,0.5,0,0\n"),
                    withTree());
    const QList<QByteArray> lines = bytesOf(folder.path("features.csv")).split('\n');
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0], "node,name,clustering_coeff,local_efficiency,degree,"
                        "eigenvector_centrality,strength,nodal_global_efficiency,"
                        "global_efficiency");
    EXPECT_TRUE(lines[1].startsWith("0,\"a,b\",0,0,2,0.70710677,1.5,0.75,0.6111111"))
        << lines[1].constData();
    EXPECT_TRUE(lines[2].startsWith("1,c,0,0,1,")) << lines[2].constData();
    EXPECT_EQ(bytesOf(folder.path("mst.csv")),
              ",\"a,b\",c,d\n\"a,b\",0,1,0.5\nc,1,0,0\nd,0.5,0,0\n");
    EXPECT_EQ(folder.entries(),
              (QStringList{QStringLiteral("features.csv"), QStringLiteral("mst.csv")}));
}

TEST(GraphFiles, NumberNodesWithoutNames)
{
    const TemporaryFolder folder;
    writeGraphFiles(folder.path(), {{}, pair(), {}});
    EXPECT_TRUE(bytesOf(folder.path("features.csv")).contains("\n1,1,0,0,1,"));
    EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("features.csv")});
}

TEST(GraphFiles, TellHowFarEachMeasureIsAndCanBeStopped)
{
    const TemporaryFolder folder;
    const Eigen::MatrixXf weights = Eigen::MatrixXf::Ones(60, 60);
    QStringList begun;
    qint64 last = 0;
    writeGraphFiles(folder.path("all"), {{}, weights, {}}, {}, [&](const GraphMeasure &measure) {
        begun += QLatin1String(measure.column);
        return [&](qint64 done, qint64 total) {
            last = done;
            EXPECT_EQ(total, 1000);
            return true;
        };
    });
    EXPECT_EQ(begun.size(), 7);
    EXPECT_EQ(last, 1000);
    const auto stops = [](const GraphMeasure &) { return [](qint64, qint64) { return false; }; };
    EXPECT_THROW(writeGraphFiles(folder.path("none"), {{}, weights, {}}, {}, stops),
                 nodalis::Ended);
    EXPECT_EQ(folder.entries(), QStringList{QStringLiteral("all")});
}

/// How much work which graph is, and that random ones are most, is tested with the measures.
TEST(GraphFiles, GiveATimeForLocalEfficiencyWhereThereAreEdges)
{
    EXPECT_EQ(secondsOfLocalEfficiency(Eigen::MatrixXf::Zero(300, 300), 1), 0);
    EXPECT_GT(secondsOfLocalEfficiency(Eigen::MatrixXf::Ones(300, 300), 1), 0);
}

TEST(GraphNotes, SayWhatTheMeasuresMakeOfTheMatrix)
{
    Eigen::MatrixXf weights = Eigen::MatrixXf::Ones(3, 3);
    EXPECT_TRUE(graphNotes(weights).isEmpty());
    weights(0, 1) = std::nanf("");
    weights(0, 2) = weights(2, 0) = -1.0F;
    weights(2, 1) = 0.5F;
    const QStringList notes = graphNotes(weights);
    ASSERT_EQ(notes.size(), 3);
    for (const QString &note : notes) {
        EXPECT_TRUE(note.startsWith(QStringLiteral("1 pair of nodes with "))) << note.toStdString();
    }
}

// ---- the command, as a user runs it

TEST(GraphCommand, WritesTheTables)
{
    const TemporaryFolder folder;
    putBytes(folder.path("m.csv"), "A,B,C\n0,1,1\n1,0,1\n1,1,0\n");
    const QString out = folder.path("out");
    const ProgramRun run = runCorvane({QStringLiteral("graph"), folder.path("m.csv"),
                                       QStringLiteral("--mst"), QStringLiteral("--out"), out});
    EXPECT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.output, (out + QStringLiteral(": 3 nodes\n")).toUtf8());
    EXPECT_TRUE(
        bytesOf(out + QStringLiteral("/features.csv")).contains("\n0,A,1,1,2,0.57735026,2,1,1\n"))
        << bytesOf(out + QStringLiteral("/features.csv")).constData();
    EXPECT_EQ(bytesOf(out + QStringLiteral("/mst.csv")), ",A,B,C\nA,0,1,1\nB,1,0,0\nC,1,0,0\n");
}

TEST(GraphCommand, ComputesTheMeasuresThatAreNamedInTheirOrder)
{
    const TemporaryFolder folder;
    putBytes(folder.path("m.csv"), "A,B,C\n0,1,1\n1,0,1\n1,1,0\n");
    const auto graph = [&](const char *measures) {
        return runCorvane({QStringLiteral("graph"), folder.path("m.csv"),
                           QStringLiteral("--measures"), QLatin1String(measures),
                           QStringLiteral("--out"), folder.path("out")});
    };
    EXPECT_EQ(graph("strength, degree").status, 0);
    EXPECT_EQ(bytesOf(folder.path("out/features.csv")),
              "node,name,strength,degree\n0,A,2,2\n1,B,2,2\n2,C,2,2\n");
    const ProgramRun wrong = graph("strength,modularity");
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.errorLines(), 1);
    EXPECT_TRUE(wrong.errors.contains("--measures: found \"modularity\", expected some of: "
                                      "clustering_coeff, local_efficiency, "))
        << wrong.errors.constData();
}

TEST(GraphCommand, TellsHowLongLocalEfficiencyOfManyNodesTakes)
{
    const TemporaryFolder folder;
    constexpr int nodes = 2001;
    QByteArray ring;
    for (int node = 0; node < nodes; ++node) {
        QByteArray row = QByteArray("0,").repeated(nodes);
        row[2 * ((node + 1) % nodes)] = row[2 * ((node + nodes - 1) % nodes)] = '1';
        row[row.size() - 1] = '\n';
        ring += row;
    }
    putBytes(folder.path("m.csv"), ring);
    for (const bool isAsked : {true, false}) {
        const ProgramRun run = runCorvane(
            {QStringLiteral("graph"), folder.path("m.csv"), QStringLiteral("--measures"),
             isAsked ? QStringLiteral("degree,local_efficiency") : QStringLiteral("degree"),
             QStringLiteral("--out"), folder.path("out")});
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.errors, isAsked ? "local efficiency of 2001 nodes takes about 1 s\n" : "");
    }
}

TEST(GraphCommand, NotesOnStandardErrorWhatItTakesDifferently)
{
    const TemporaryFolder folder;
    putBytes(folder.path("m.csv"), "0,0.5\n0.25,0\n");
    const ProgramRun run = runCorvane({QStringLiteral("graph"), folder.path("m.csv"),
                                       QStringLiteral("--out"), folder.path("out")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "1 pair of nodes with two different weights; their mean is taken\n");
}

TEST(GraphCommand, EndsWithOneLineForABadMatrix)
{
    const TemporaryFolder folder;
    putBytes(folder.path("m.csv"), "0,x\n1,0\n");
    const ProgramRun run = runCorvane({QStringLiteral("graph"), folder.path("m.csv"),
                                       QStringLiteral("--out"), folder.path("out")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "Corvane: " + folder.path("m.csv").toUtf8() +
                              ": row 1, column 2: found \"x\", expected a number of single "
                              "precision\n");
    EXPECT_FALSE(QFile::exists(folder.path("out")));
}

TEST(GraphCommand, WantsAMatrixAndAFolder)
{
    const TemporaryFolder folder;
    EXPECT_EQ(runCorvane({QStringLiteral("graph")}).status, 2);
    EXPECT_EQ(runCorvane({QStringLiteral("graph"), folder.path("m.csv")}).status, 2);
    EXPECT_EQ(runCorvane({QStringLiteral("graph"), QStringLiteral("a"), QStringLiteral("b"),
                          QStringLiteral("--out"), folder.path()})
                  .status,
              2);
}

} // namespace

} // namespace corvane
