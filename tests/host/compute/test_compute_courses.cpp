// SPDX-License-Identifier: GPL-3.0-or-later
//
// "compute --timeseries": courses that were made elsewhere.
#include "tests/host/compute/compute_fixture.h"

#include <QJsonArray>
#include <QSet>
#include <gmock/gmock.h>

namespace corvane
{

namespace
{

using testing::HasSubstr;

class ComputeCourses : public ComputeCommand
{
protected:
    QStringList ofCourses(const QString &file, const QStringList &more = {}) const
    {
        return QStringList{"compute", "--timeseries", file, "--out", folder.path("again")} + more;
    }
    ProgramRun computeCourses(const QByteArray &courses, const QStringList &more = {})
    {
        putBytes(folder.path("courses.tsv"), courses);
        return runCorvane(ofCourses(folder.path("courses.tsv"), more));
    }
    QByteArray again(const char *name) const
    {
        return bytesOf(folder.path(QStringLiteral("again/") + QLatin1String(name)));
    }
    QJsonObject summaryAgain() const
    {
        return QJsonDocument::fromJson(again("summary.json")).object();
    }
    bool wroteNothing() const { return !QDir(folder.path("again")).exists(); }
};

/// A table of what compute has averaged is what it has averaged, to the last digit.
TEST_F(ComputeCourses, OfAnEarlierComputeGiveTheSameBytes)
{
    const QStringList settings[] = {
        {"--names"},
        {"--names", "--values", "signed", "--seeds", "two"},
        {"--names", "--seeds", "2,0,1", "--measure", "partial-correlation"},
        {"--names", "--use-protocol", "--prt", folder.path("task.prt")},
    };
    for (const QStringList &options : settings) {
        SCOPED_TRACE(options.join(' ').toStdString());
        ASSERT_EQ(runCorvane(arguments(options)).status, 0);
        QStringList same = options;
        if (options.contains("2,0,1")) // the table has these three in this order
            same.replace(same.indexOf("2,0,1"), "all");
        const ProgramRun run = runCorvane(ofCourses(folder.path("out/timeseries.csv"), same));
        ASSERT_EQ(run.status, 0) << run.errors.constData();
        EXPECT_EQ(namesIn(folder.path("again")), outputs());
        for (const QString &name : outputs())
            if (name.endsWith(".csv") && name != "features.csv") {
                EXPECT_EQ(bytesOf(folder.path("again/" + name)),
                          bytesOf(folder.path("out/" + name)))
                    << name.toStdString();
            }
        ASSERT_TRUE(QDir(folder.path("again")).removeRecursively());
        ASSERT_TRUE(QDir(folder.path("out")).removeRecursively());
    }
}

TEST_F(ComputeCourses, HaveTheMeasuresOfARun)
{
    ASSERT_EQ(runCorvane(arguments({"--names", "--seeds", "0,1,2"})).status, 0);
    ASSERT_EQ(runCorvane(ofCourses(folder.path("out/timeseries.csv"))).status, 0);
    EXPECT_EQ(again("features.csv"), bytesOf(folder.path("out/features.csv")));
}

TEST_F(ComputeCourses, AreToldInTheSummary)
{
    const ProgramRun run =
        computeCourses("A\tB\tC\n1\t2\t4\n3\t1\t5\n2\t5\t3\n4\t4\t1\n", {"--seeds", "2,0"});
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(run.output, folder.path("again").toUtf8() + ": 2 nodes, 4 volumes, 1 matrix\n");
    const QJsonObject json = summaryAgain();
    const QJsonObject inputs = json["inputs"].toObject();
    EXPECT_EQ(inputs.keys(), QStringList{"timeseries"});
    EXPECT_EQ(inputs["timeseries"].toObject()["file"], folder.path("courses.tsv"));
    EXPECT_EQ(inputs["timeseries"].toObject()["sha1"].toString().size(), 40);
    EXPECT_EQ(json["volumes"], 4);
    EXPECT_FALSE(json.contains("repetition time in seconds"));
    EXPECT_EQ(json["nodes"].toArray(), (QJsonArray{QJsonObject{{"column", 2}, {"name", "C"}},
                                                   QJsonObject{{"column", 0}, {"name", "A"}}}));
    EXPECT_EQ(again("timeseries.csv"), "4,5,3,1\n1,3,2,4\n");
    EXPECT_TRUE(again("features.csv").contains("\n0,2,C,0,"));
}

/// What other programs write between cells, around names and beside rows.
TEST_F(ComputeCourses, AreReadAsOtherProgramsWriteThem)
{
    const QByteArray tables[] = {
        "A\tB b\n1\t2\n3\t1\n2\t5\n",     "A,B b\r\n1,2\r\n3,1\r\n2,5\r\n",
        "\"A\";\"B b\"\n1;2\n3;1\n2;5\n", "\xef\xbb\xbf# made elsewhere\nA,B b\n1e0,2.0\n3,1\n2,5",
        ",A,B b\n0,1,2\n1,3,1\n2,2,5\n",  "\"A\" \"B b\"\n\"1\" 1 2\n\"2\" 3 1\n\"3\" 2 5\n",
    };
    for (const QByteArray &table : tables) {
        const ProgramRun run = computeCourses(table, {"--names"});
        EXPECT_EQ(run.status, 0) << table.constData() << run.errors.constData();
        EXPECT_EQ(again("timeseries.csv"), "A,B b\n1,2\n3,1\n2,5\n") << table.constData();
        EXPECT_EQ(run.errors.contains("the first column has no name and is skipped"),
                  table.contains("1,3,1") || table.contains("\"2\" 3 1"));
    }
}

TEST_F(ComputeCourses, AreRoundedToSinglePrecisionOnce)
{
    // Next to the middle between 1 and the next number of single precision: rounded to double
    // first, it would lie on the middle, and go down to 1.
    ASSERT_EQ(computeCourses("A\tB\n1.00000005960464477539062500000001\t1\n2\t1e-60\n").status, 0);
    EXPECT_EQ(again("timeseries.csv"), "1.0000001,2\n1,0\n");
}

TEST_F(ComputeCourses, OfANodeWithoutValuesLeaveItWithoutConnections)
{
    const QByteArray table = "A\tB\tC\tD\n1\t2\tn/a\t4\n3\t1\tn/a\t\n2\t5\tn/a\t3\n4\t4\tn/a\t9\n";
    const ProgramRun run = computeCourses(table);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, folder.path("courses.tsv").toUtf8() +
                              ": values are missing (n/a): 4 volumes in \"C\", 1 volume in \"D\"\n"
                              "2 nodes with values that are not finite: \"C\", \"D\"; they have no "
                              "connections\n");
    const Eigen::MatrixXf matrix = readTable(folder.path("again/connectivity.csv"));
    EXPECT_TRUE(matrix.rightCols(2).isZero());
    EXPECT_GT(matrix(0, 1), 0.0f);
    const ProgramRun partial = computeCourses(table, {"--measure", "partial-correlation"});
    EXPECT_EQ(partial.status, 1);
    EXPECT_THAT(partial.errors.toStdString(), HasSubstr("nodes that have one: --seeds 0,1; or"));
}

TEST_F(ComputeCourses, TakeAProtocolInVolumes)
{
    const QByteArray table = "A\tB\n1\t2\n3\t1\n2\t5\n4\t4\n5\t0\n6\t1\n";
    putBytes(folder.path("blocks.prt"), "# Corvane protocol, version 1\n# name: p\n# time unit: 1\n"
                                        "condition\tfrom\tto\nx\t1\t3\ny\t4\t6\n# end\n");
    ASSERT_EQ(computeCourses(table, {"--prt", folder.path("blocks.prt"), "--use-protocol"}).status,
              0);
    const Eigen::MatrixXf second = readTable(folder.path("again/connectivity_1_y.csv"));
    Eigen::MatrixXd series(2, 6);
    series << 1, 3, 2, 4, 5, 6, 2, 1, 5, 4, 0, 1;
    EXPECT_NEAR(second(0, 1), std::abs(pearson(series, 0, 1, 3, 3)), 1e-5);
    EXPECT_EQ(summaryAgain()["inputs"].toObject().keys(), (QStringList{"protocol", "timeseries"}));
}

TEST_F(ComputeCourses, AreDrawnToo)
{
    ASSERT_EQ(computeCourses("A\tB\n1\t2\n3\t1\n2\t5\n", {"--plots"}).status, 0);
    EXPECT_TRUE(QFile::exists(folder.path("again/ring.png")));
}

TEST_F(ComputeCourses, ThatAreBadAreRefusedInOneLine)
{
    const struct {
        QByteArray table;
        const char *says;
    } cases[] = {
        {"", "row 1, column 1: found an empty file, expected the names of the nodes, and a line "
             "for each volume"},
        {"A\tB\n", "row 1, column 1: found no line behind it, expected a line for each volume"},
        {"1.5\t2\n3\t4\n", "row 1, column 1: found a line of numbers, expected the names of the "
                           "nodes, above a line for each volume"},
        {"A\tB\n1\t2\n3\n", "row 3, column 2: found 1 cell in this row, expected 2, one for each "
                            "column"},
        {"A\tB\n1\t2\n3\tx\n", "row 3, column 2: found \"x\", expected a number of single "
                               "precision, or n/a"},
        {"A\tB\n1\t2\n3\t1e39\n", "row 3, column 2: found \"1e39\", expected a number of single "
                                  "precision, or n/a"},
        {"A\tB\n1\t2\nn/a\tn/a\n", "volume 2: found no value in any column, expected numbers; "
                                   "leave out the lines of volumes that are not to count"},
        {"A\t\"B\n1\t2\n", "row 1, column 2: found the end of the file, expected a closing "
                           "quotation mark"},
        {"A\tB\n1\t2\n3\t4\n", nullptr},
    };
    for (const auto &one : cases) {
        const ProgramRun run = computeCourses(one.table);
        EXPECT_EQ(run.status, one.says != nullptr ? 1 : 0) << one.table.constData();
        if (one.says == nullptr)
            continue;
        EXPECT_EQ(run.errors,
                  "Corvane: " + folder.path("courses.tsv").toUtf8() + ": " + one.says + "\n");
        EXPECT_EQ(run.output, "");
        EXPECT_TRUE(wroteNothing());
    }
    // The table that compute writes without names.
    ASSERT_EQ(runCorvane(arguments()).status, 0);
    ASSERT_TRUE(QDir(folder.path("again")).removeRecursively());
    const ProgramRun nameless = runCorvane(ofCourses(folder.path("out/timeseries.csv")));
    EXPECT_EQ(nameless.status, 1);
    EXPECT_THAT(nameless.errors.toStdString(), HasSubstr("found a line of numbers"));
    const ProgramRun missing = runCorvane(ofCourses(folder.path("none.tsv")));
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.errorLines(), 1);
    EXPECT_TRUE(wroteNothing());
}

TEST_F(ComputeCourses, AreRefusedWithWhatBelongsToARun)
{
    const QByteArray table = "A\tB\n1\t2\n3\t1\n2\t5\n";
    const QStringList options[] = {{"--anatomy", folder.path("a.vmr")},
                                   {"--vtc", folder.path("run.vtc")},
                                   {"--voi", folder.path("set.voi")},
                                   {"--allow-mismatch"}};
    for (const QStringList &more : options) {
        const ProgramRun run = computeCourses(table, more);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.errors,
                  "Corvane compute: " + more[0].toUtf8() + " is for a run, not for --timeseries\n");
    }
    EXPECT_EQ(computeCourses(table, {"--seeds", "0,2"}).status, 1);
    const ProgramRun bare = computeCourses(table, {"--use-protocol"});
    EXPECT_EQ(bare.status, 1);
    EXPECT_THAT(bare.errors.toStdString(),
                HasSubstr("protocol: found none, expected one given with --prt"));
    EXPECT_TRUE(wroteNothing());
}

} // namespace

} // namespace corvane
