// SPDX-License-Identifier: GPL-3.0-or-later
//
// The command "distance". That its numbers are those of the plugin's text box is tested beside the
// plugin's group comparison.
#include "host/files/graph_table.h"
#include "tests/host/compute/compute_fixture.h"

#include <gmock/gmock.h>
#include <nodalis/nodalis.h>

namespace corvane
{

namespace
{

using testing::HasSubstr;

class Distance : public ComputeCommand
{
protected:
    /// Computes into a folder of that name.
    QString computed(const char *name, const QStringList &more = {}, const char *vtc = "run.vtc")
    {
        const QString out = folder.path(name);
        QStringList words = arguments(more, vtc);
        words.replace(words.indexOf(folder.path("out")), out);
        const ProgramRun run = runCorvane(words);
        EXPECT_EQ(run.status, 0) << run.errors.constData();
        return out;
    }
    QString matrix(const char *name, const QByteArray &bytes)
    {
        putBytes(folder.path(name), bytes);
        return folder.path(name);
    }
    static float distance(const QString &one, const QString &other, int size)
    {
        Eigen::MatrixXf a = readGraphTable(one).weights;
        Eigen::MatrixXf b = readGraphTable(other).weights;
        return nodalis::distances::spectral_euclidean(a, b, size);
    }
    static QByteArray six(float number)
    {
        return QByteArray::number(static_cast<double>(number), 'g', 6);
    }
};

TEST_F(Distance, IsASquareTableOfFoldersAndMatrices)
{
    const QString one = computed("one", {"--seeds", "0,1,2"});
    const QString two =
        computed("two", {"--seeds", "0,1,2", "--names", "--measure", "partial-correlation"});
    const QString third = matrix("third.tsv", "Node\tx\ty\tz\nx\t1\t0.5\t-0.2\ny\t0.5\t1\t0.1\n"
                                              "z\t-0.2\t0.1\t1\n");
    const QString file = folder.path("distances.csv");
    const ProgramRun run = runCorvane({"distance", one, two, third, "--out", file});
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    EXPECT_EQ(run.errors, "");
    const float a = distance(one + "/connectivity.csv", two + "/connectivity.csv", 3);
    const float b = distance(one + "/connectivity.csv", third, 3);
    const float c = distance(two + "/connectivity.csv", third, 3);
    EXPECT_GT(std::min({a, b, c}), 0.0f);
    EXPECT_EQ(run.output, "\tone\ttwo\tthird\none\t0\t" + six(a) + '\t' + six(b) + "\ntwo\t" +
                              six(a) + "\t0\t" + six(c) + "\nthird\t" + six(b) + '\t' + six(c) +
                              "\t0\n");
    const GraphTable table = readGraphTable(file);
    EXPECT_EQ(table.names, (QStringList{"one", "two", "third"}));
    Eigen::MatrixXf expected(3, 3);
    expected << 0, a, b, a, 0, c, b, c, 0;
    EXPECT_EQ(table.weights, expected) << "with all digits";
}

/// What compares the first interval alone would be taken for the whole otherwise.
TEST_F(Distance, TakesTheFirstMatrixOfAProtocol)
{
    const QString one = computed("one", {"--seeds", "0,1,2", "--use-protocol"}, "linked.vtc");
    const QString two = computed("two", {"--seeds", "0,1,2"});
    const ProgramRun run = runCorvane({"distance", one, two});
    EXPECT_THAT(run.output.toStdString(),
                HasSubstr("one\t0\t" + six(distance(one + "/connectivity_0_left_right.csv",
                                                    two + "/connectivity.csv", 3))
                                           .toStdString()));
}

TEST_F(Distance, OfSpanningTreesIsThatOfTheTreesOfCompute)
{
    const QString one = computed("one", {"--seeds", "0,1,2"});
    const QString two = computed("two", {"--measure", "partial-correlation", "--seeds", "0,1,2"});
    const ProgramRun run = runCorvane({"distance", "--mst", one, two});
    ASSERT_EQ(run.status, 0) << run.errors.constData();
    const float trees = distance(one + "/mst.csv", two + "/mst.csv", 3);
    EXPECT_NE(trees, distance(one + "/connectivity.csv", two + "/connectivity.csv", 3));
    EXPECT_EQ(run.output, "\tone\ttwo\none\t0\t" + six(trees) + "\ntwo\t" + six(trees) + "\t0\n");
}

TEST_F(Distance, IsCalledByPathsWhereNamesAreTheSame)
{
    ASSERT_TRUE(QDir().mkpath(folder.path("a")) && QDir().mkpath(folder.path("b")));
    const QString one = computed("a/results");
    const QString two = computed("b/results");
    const ProgramRun run = runCorvane({"distance", one, two + "/"});
    EXPECT_EQ(run.output, '\t' + one.toUtf8() + '\t' + two.toUtf8() + "/\n" + one.toUtf8() +
                              "\t0\t0\n" + two.toUtf8() + "/\t0\t0\n");
}

TEST_F(Distance, RefusesWhatIsNoSubjectInOneLine)
{
    const QString good = matrix("good.csv", "0,1\n1,0\n");
    ASSERT_TRUE(QDir().mkpath(folder.path("empty")));
    ASSERT_TRUE(QDir().mkpath(folder.path("odd")));
    putBytes(folder.path("odd/summary.json"), "{\"slices\": []}");
    const struct {
        QString subject;
        std::string says;
    } cases[] = {
        {folder.path("none"), "none: "},
        {folder.path("empty"), "empty: its files: found no summary.json, expected a folder that "
                               "Corvane compute wrote, or a matrix"},
        {folder.path("odd"), "summary.json: slices: found no matrix, expected one or more"},
        {matrix("flat.csv", "0,1,2\n1,0,2\n"), "as many rows as columns"},
    };
    for (const auto &one : cases) {
        const ProgramRun run =
            runCorvane({"distance", good, one.subject, "--out", folder.path("out.csv")});
        EXPECT_EQ(run.status, 1) << one.says;
        EXPECT_EQ(run.errorLines(), 1) << run.errors.constData();
        EXPECT_THAT(run.errors.toStdString(), HasSubstr(one.says));
        EXPECT_EQ(run.output, "");
        EXPECT_FALSE(QFile::exists(folder.path("out.csv")));
    }
    EXPECT_EQ(runCorvane({"distance", good}).status, 2);
    EXPECT_EQ(runCorvane({"distance"}).status, 2);
    EXPECT_EQ(runCorvane({"distance", good, good, "--out", ""}).status, 2);
    const ProgramRun nowhere =
        runCorvane({"distance", good, good, "--out", folder.path("good.csv/x")});
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_EQ(nowhere.output, "") << "nothing is shown that was not kept";
}

} // namespace

} // namespace corvane
