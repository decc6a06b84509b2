// SPDX-License-Identifier: GPL-3.0-or-later
//
// "compute --names": tables that other tools read with the names of the nodes.
#include "host/files/graph_table.h"
#include "host/files/series_table.h"
#include "tests/host/compute/compute_fixture.h"

#include <gmock/gmock.h>

namespace corvane
{

namespace
{

class ComputeNames : public ComputeCommand
{
protected:
    /// Runs the command, which must succeed, into "out".
    void compute(const QStringList &more, const char *vtc = "run.vtc")
    {
        const ProgramRun run = runCorvane(arguments(more, vtc));
        ASSERT_EQ(run.status, 0) << run.errors.constData();
    }
    QByteArray output(const QString &name) const { return bytesOf(folder.path("out/" + name)); }

    /// The lines of a table with a name in front of each.
    static QByteArray besideNames(const QByteArray &table, const QByteArrayList &names)
    {
        QByteArray result = ',' + names.join(',') + '\n';
        const QByteArrayList lines = table.split('\n');
        for (int n = 0; n < names.size(); ++n)
            result += names[n] + ',' + lines[n] + '\n';
        return result;
    }
    /// The table with rows for columns, below the names.
    static QByteArray turnedBelowNames(const QByteArray &table, const QByteArrayList &names)
    {
        QByteArray result = names.join(',') + '\n';
        const QByteArrayList lines = table.trimmed().split('\n');
        for (int column = 0; column < lines.front().split(',').size(); ++column) {
            QByteArrayList cells;
            for (const QByteArray &line : lines)
                cells += line.split(',')[column];
            result += cells.join(',') + '\n';
        }
        return result;
    }
};

TEST_F(ComputeNames, StandAroundTheSameNumbers)
{
    const QByteArrayList names{"\"V, one\"", "two", "three", "none"};
    compute({"--use-protocol"}, "linked.vtc");
    QMap<QString, QByteArray> plain;
    for (const QString &name : outputs())
        plain.insert(name, output(name));
    compute({"--use-protocol", "--names"}, "linked.vtc");
    EXPECT_EQ(outputs(), plain.keys());
    int matrices = 0;
    for (auto file = plain.begin(); file != plain.end(); ++file) {
        const bool isMatrix = file.key().startsWith("connectivity") || file.key().startsWith("mst");
        matrices += isMatrix ? 1 : 0;
        if (isMatrix)
            EXPECT_EQ(output(file.key()), besideNames(file.value(), names));
        else if (file.key() == "timeseries.csv")
            EXPECT_EQ(output(file.key()), turnedBelowNames(file.value(), names));
        else if (file.key() == "summary.json")
            EXPECT_EQ(output(file.key()).replace("        \"names\": true,\n", ""), file.value());
        else
            EXPECT_EQ(output(file.key()), file.value()) << file.key().toStdString();
    }
    EXPECT_EQ(matrices, 8);
}

/// Names that readers could take for something else.
TEST_F(ComputeNames, AreReadAsTheyWereWhateverTheyAre)
{
    const QStringList odd[] = {{"#1", "a;b", " blank ", "say \"x\""},
                               {"1", "2", "5", "4"},
                               {"1", "1.5", "nan", "x"},
                               {"7", "x", "n/a", "Node"},
                               {"Node", QString::fromUtf8("\xc3\xa4 \xe6\xb5\xb7"), "x", "x"}};
    for (const QStringList &names : odd) {
        VoiSet set = vois();
        for (int n = 0; n < names.size(); ++n)
            set.vois[std::size_t(n)].name = names[n];
        writeVoiFile(folder.path("set.voi"), set);
        compute({});
        const Eigen::MatrixXf matrix = table("connectivity.csv");
        const Eigen::MatrixXf series = table("timeseries.csv");
        compute({"--names"});
        const GraphTable read = readGraphTable(folder.path("out/connectivity.csv"));
        EXPECT_EQ(read.names, names);
        EXPECT_EQ(read.weights, matrix);
        EXPECT_TRUE(read.notes.isEmpty());
        const SeriesTable courses = readSeriesTable(folder.path("out/timeseries.csv"));
        EXPECT_EQ(courses.names, names);
        EXPECT_EQ(courses.values, series);
        EXPECT_TRUE(courses.notes.isEmpty());
    }
}

TEST_F(ComputeNames, OfASingleNodeAreReadToo)
{
    for (const char *name : {"Calcarine L", "a;b", "#x"}) {
        VoiSet set = vois();
        set.vois[1].name = QString::fromUtf8(name);
        writeVoiFile(folder.path("set.voi"), set);
        compute({"--seeds", "1", "--names"});
        EXPECT_EQ(readGraphTable(folder.path("out/connectivity.csv")).names, QStringList{name});
        const SeriesTable courses = readSeriesTable(folder.path("out/timeseries.csv"));
        EXPECT_EQ(courses.names, QStringList{name});
        EXPECT_EQ(courses.values.cols(), volumes);
    }
}

TEST_F(ComputeNames, ReachTheTablesOfGraph)
{
    compute({"--names", "--seeds", "0,1,2"});
    const ProgramRun run = runCorvane(
        {"graph", folder.path("out/connectivity.csv"), "--mst", "--out", folder.path("graph")});
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(bytesOf(folder.path("graph/mst.csv")), output("mst.csv"));
    EXPECT_TRUE(bytesOf(folder.path("graph/features.csv")).contains("\n0,\"V, one\","));
}

} // namespace

} // namespace corvane
