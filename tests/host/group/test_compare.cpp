// SPDX-License-Identifier: GPL-3.0-or-later
// Two maps of values per node on the command line, as a user compares them.
#include "host/files/text_check.h"
#include "host/files/tsv_table.h"
#include "statistics/correlation.h"
#include "tests/host/support/program.h"
#include "tests/support/reference_folder.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <algorithm>
#include <numeric>

namespace corvane
{

namespace
{

class Compare : public testing::Test
{
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    void write(const QString &name, const QByteArray &text) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QByteArray bytes(const QString &name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll();
    }

    /// Compares the files a and b.
    ProgramRun compare(const QStringList &more = {}) const
    {
        return runCorvane(QStringList{QStringLiteral("compare"), path(QStringLiteral("a")),
                                      path(QStringLiteral("b"))} +
                          more);
    }

    /// A number of the table of results.
    double found(const char *column) const
    {
        const TsvTable table(path(QStringLiteral("out/comparison.tsv")));
        return finiteNumber(table.cell(0, table.requiredColumn(QLatin1String(column))))
            .value_or(NAN);
    }

    QStringList toOut() const { return {QStringLiteral("--out"), path(QStringLiteral("out"))}; }

    QTemporaryDir m_folder;
};

double correlation(const std::vector<double> &x, const std::vector<double> &y)
{
    const double n = double(x.size());
    const double mx = std::accumulate(x.begin(), x.end(), 0.0) / n;
    const double my = std::accumulate(y.begin(), y.end(), 0.0) / n;
    double xy = 0, xx = 0, yy = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        xy += (x[i] - mx) * (y[i] - my);
        xx += (x[i] - mx) * (x[i] - mx);
        yy += (y[i] - my) * (y[i] - my);
    }
    return xy / std::sqrt(xx * yy);
}

TEST_F(Compare, NodesOfOneNameWithAllTheirOrdersForP)
{
    write(QStringLiteral("a"), "node,name,strength\n0,\"left, top\",1\n1,b,4\n2,c,n/a\n3,d,2\n"
                               "4,e,8\n5,only a,3\n6,f,5\n");
    write(QStringLiteral("b"), "Node\teffect\nf\t1.5\ne\t-1\nd\t0.5\nb\t0.75\nleft, top\t3\n"
                               "c\t9\nz\t1\n");
    const ProgramRun done =
        compare(QStringList{QStringLiteral("--column"), QStringLiteral("strength"),
                            QStringLiteral("--column-b"), QStringLiteral("effect")} +
                toOut());
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    EXPECT_EQ(done.errors, QStringLiteral("only in %1: only a\nonly in %2: z\n")
                               .arg(path(QStringLiteral("a")), path(QStringLiteral("b")))
                               .toUtf8());
    EXPECT_TRUE(done.output.contains("5 nodes: Pearson -0.")) << done.output.toStdString();
    EXPECT_TRUE(done.output.contains("spatial autocorrelation")) << done.output.toStdString();

    const std::vector<double> x{1, 4, 2, 8, 5};
    const std::vector<double> y{3, 0.75, 0.5, -1, 1.5};
    const std::vector<double> xRanks{1, 3, 2, 5, 4};
    const std::vector<double> yRanks{5, 3, 2, 1, 4};
    const double r = correlation(x, y);
    int reached = 0, orders = 0;
    std::vector<double> other = y;
    std::sort(other.begin(), other.end());
    do {
        reached += std::abs(correlation(x, other)) >= std::abs(r) * (1 - 1e-12) ? 1 : 0;
        ++orders;
    } while (std::next_permutation(other.begin(), other.end()));
    EXPECT_NEAR(found("pearson"), r, 1e-12);
    EXPECT_NEAR(found("spearman"), correlation(xRanks, yRanks), 1e-12);
    EXPECT_NEAR(found("p_pearson"), double(reached) / orders, 1e-12);
    EXPECT_EQ(found("nodes"), 5);
    EXPECT_EQ(bytes(QStringLiteral("out/nodes.tsv")),
              "name\tfirst\tsecond\nleft, top\t1\t3\nb\t4\t0.75\nc\tn/a\t9\nd\t2\t0.5\ne\t8\t-1\n"
              "f\t5\t1.5\n");
    const QJsonObject json =
        QJsonDocument::fromJson(bytes(QStringLiteral("out/compare.json"))).object();
    EXPECT_TRUE(json[QStringLiteral("Note")].toString().contains(
        QStringLiteral("spatial autocorrelation")));
    EXPECT_EQ(json[QStringLiteral("Matching")].toArray().size(), 2);
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("out/scatter.png"))));
}

TEST_F(Compare, RowsOfMapsWithoutNames)
{
    write(QStringLiteral("a"), "1\n5\n2\n7\n");
    write(QStringLiteral("b"), "which,region,value\nx,p,1\nx,q,6\nx,r,2\nx,s,7\n");
    const ProgramRun done = compare(toOut());
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    EXPECT_TRUE(done.errors.contains("matched by their rows")) << done.errors.toStdString();
    EXPECT_NEAR(found("spearman"), 1, 1e-12);
    EXPECT_NEAR(found("pearson"), correlation({1, 5, 2, 7}, {1, 6, 2, 7}), 1e-12);
    EXPECT_TRUE(bytes(QStringLiteral("out/nodes.tsv")).contains("q\t5\t6\n"));
}

TEST_F(Compare, TheSameSeedGivesTheSameBytes)
{
    QByteArray a = "name\tx\n", b = "name\ty\n";
    for (int i = 0; i < 20; ++i) {
        const QByteArray name = "n" + QByteArray::number(i);
        a += name + '\t' + QByteArray::number((i * 7) % 20) + '\n';
        b += name + '\t' + QByteArray::number((i * 3) % 11) + '\n';
    }
    write(QStringLiteral("a"), a);
    write(QStringLiteral("b"), b);
    const auto p = [&](const char *seed) {
        EXPECT_EQ(
            compare(toOut() + QStringList{QStringLiteral("--seed"), QLatin1String(seed),
                                          QStringLiteral("--permutations"), QStringLiteral("500")})
                .status,
            0);
        return bytes(QStringLiteral("out/comparison.tsv"));
    };
    const QByteArray first = p("3");
    EXPECT_EQ(p("3"), first);
    EXPECT_NE(p("4"), first);
}

TEST_F(Compare, PictureOfTheNodes)
{
    write(QStringLiteral("a"), "1\n5\n2\n7\n");
    write(QStringLiteral("b"), "2\n5\n2\n9\n");
    const ProgramRun done = compare(toOut() + QStringList{QStringLiteral("--plots")});
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    const QImage image(path(QStringLiteral("out/scatter.png")));
    EXPECT_EQ(image.size(), QSize(1280, 1040));
    EXPECT_EQ(compare({QStringLiteral("--plots")}).status, 2) << "nowhere to draw to";
}

TEST_F(Compare, StrengthFollowsThePublishedEffect)
{
    const QDir hubs(QString::fromUtf8(referenceFolder()) + QStringLiteral("/reference/hubs"));
    if (!hubs.exists())
        GTEST_SKIP() << "the folder of published maps is not there";
    const auto r = [&](const char *matrix) {
        const QString out = path(QStringLiteral("graph"));
        EXPECT_EQ(runCorvane({QStringLiteral("graph"), hubs.filePath(QLatin1String(matrix)),
                              QStringLiteral("--out"), out})
                      .status,
                  0);
        const ProgramRun done = runCorvane(
            QStringList{QStringLiteral("compare"), out + QStringLiteral("/features.csv"),
                        hubs.filePath(QStringLiteral("tlemtsl_case-controls_CortThick.csv")),
                        QStringLiteral("--column"), QStringLiteral("strength"),
                        QStringLiteral("--column-b"), QStringLiteral("d_icv")} +
            toOut());
        EXPECT_EQ(done.status, 0) << done.errors.toStdString();
        EXPECT_EQ(found("nodes"), 68);
        return std::round(100 * found("pearson")) / 100;
    };
    EXPECT_EQ(r("funcMatrix_ctx.csv"), -0.50);
    EXPECT_EQ(r("strucMatrix_ctx.csv"), -0.24);
}

struct BadMap {
    const char *name;
    QByteArray second;
    QStringList options;
    QByteArray message;
};

void PrintTo(const BadMap &bad, std::ostream *stream)
{
    *stream << bad.name;
}

class BadMaps : public Compare, public testing::WithParamInterface<BadMap>
{
};

TEST_P(BadMaps, AreOneLineAndNothingIsWritten)
{
    write(QStringLiteral("a"), "name\tx\na\t1\nb\t4\nc\t2\n");
    write(QStringLiteral("b"), GetParam().second);
    const ProgramRun done = compare(GetParam().options + toOut());
    EXPECT_EQ(done.status, 1);
    EXPECT_EQ(done.errorLines(), 1) << done.errors.toStdString();
    EXPECT_TRUE(done.errors.contains(GetParam().message)) << done.errors.toStdString();
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("out"))));
}

INSTANTIATE_TEST_SUITE_P(
    Input, BadMaps,
    testing::Values(
        BadMap{"empty", "", {}, "no line"},
        BadMap{"two_columns", "name\tp\tq\na\t1\t2\nb\t2\t3\nc\t1\t1\n", {}, "p, q"},
        BadMap{"no_such_column",
               "name\tp\na\t1\nb\t2\nc\t1\n",
               {QStringLiteral("--column-b"), QStringLiteral("z")},
               "no \"z\", expected the name of one: p"},
        BadMap{"a_word",
               "name\tp\na\t1\nb\tmuch\nc\t1\n",
               {QStringLiteral("--column-b"), QStringLiteral("p")},
               "line 3, p: found \"much\""},
        BadMap{"a_node_twice", "name\tp\na\t1\nb\t2\na\t1\n", {}, "line 4, name"},
        BadMap{"uneven", "name\tp\na\t1\nb\nc\t1\n", {}, "line 3: found 1 cells"},
        BadMap{"other_nodes", "name\tp\nx\t1\ny\t2\nz\t1\n", {}, "the same nodes, such as \"a\""},
        BadMap{"other_rows", "1\n2\n", {}, "expected 3 as in"},
        BadMap{"constant", "name\tp\na\t1\nb\t1\nc\t1\n", {}, "the same value at all nodes"},
        BadMap{"too_few", "name\tp\na\t1\nb\t1\nz\t1\n", {}, "2 nodes with a value"}),
    [](const testing::TestParamInfo<BadMap> &bad) { return std::string(bad.param.name); });

} // namespace

} // namespace corvane
