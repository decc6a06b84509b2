// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/host/group/group_study.h"
#include "tests/statistics/nbs_reference.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace corvane
{

namespace
{

TEST_F(Group, ReferenceNetworkOf28Edges)
{
    if (!nbs_reference::is_there())
        GTEST_SKIP() << "the folder of reference numbers is not there";
    const statistics::EdgeData edges = nbs_reference::edges();
    const statistics::Table subjects = nbs_reference::subjects();
    QByteArray table = "participant_id\tmatrix\tGroup\n";
    for (int i = 0; i < 48; ++i) {
        const QString name = QStringLiteral("m%1.tsv").arg(i);
        writeMatrix(name, edges.row(i));
        table += "s" + QByteArray::number(i) + '\t' + name.toUtf8() + '\t' +
                 QByteArray::fromStdString(subjects.column("Group").values[i]) + '\n';
    }
    writeTable(table);
    QByteArray permutations;
    const Eigen::MatrixXi given = nbs_reference::permutations();
    for (Eigen::Index p = 0; p < given.rows(); ++p)
        for (Eigen::Index i = 0; i < given.cols(); ++i)
            permutations += QByteArray::number(given(p, i)) + (i + 1 < given.cols() ? '\t' : '\n');
    write(QStringLiteral("p.tsv"), permutations);

    const ProgramRun done =
        run({QStringLiteral("--formula"), QStringLiteral("Group"), QStringLiteral("--contrast"),
             QStringLiteral("g=Group[Patient]"), QStringLiteral("--fisher-z"), QStringLiteral("no"),
             QStringLiteral("--sides"), QStringLiteral("both"), QStringLiteral("--threshold"),
             QStringLiteral("2.6870134922422126"), QStringLiteral("--permutation-file"),
             path(QStringLiteral("p.tsv"))});
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();

    const TsvTable found(out(QStringLiteral("edges.tsv")));
    const Eigen::ArrayXd wanted = nbs_reference::t_values();
    ASSERT_EQ(found.rowCount(), 378);
    for (int e = 0; e < 378; ++e)
        EXPECT_NEAR(number(found, e, "t"), wanted(e), 1e-10);
    const TsvTable components(out(QStringLiteral("components.tsv")));
    ASSERT_EQ(components.rowCount(), 1);
    EXPECT_EQ(number(components, 0, "edges"), 28);
    EXPECT_NEAR(number(components, 0, "intensity"), 10.754851253582796, 1e-10);
    EXPECT_EQ(number(components, 0, "p_extent"), 2.0 / 1001.0);
    EXPECT_EQ(number(components, 0, "p_intensity"), 2.0 / 1001.0);
    EXPECT_EQ(components.cell(0, components.requiredColumn(QStringLiteral("members")))
                  .split(QLatin1Char(' '))
                  .size(),
              28);
}

TEST_F(Group, SameBytesOnOneThreadOrTwo)
{
    writeStudy();
    const QStringList files{QStringLiteral("edges.tsv"), QStringLiteral("components.tsv"),
                            QStringLiteral("influence.tsv"), QStringLiteral("design.tsv"),
                            QStringLiteral("group.json")};
    const QStringList options{QStringLiteral("--threshold"), QStringLiteral("1,2"),
                              QStringLiteral("--permutations"), QStringLiteral("200"),
                              QStringLiteral("--threads")};
    ASSERT_EQ(compareGroups(options + QStringList{QStringLiteral("1")}).status, 0);
    QByteArrayList first;
    for (const QString &file : files)
        first += bytes(file);
    ASSERT_EQ(compareGroups(options + QStringList{QStringLiteral("2")}).status, 0);
    for (int i = 0; i < files.size(); ++i)
        EXPECT_EQ(bytes(files[i]), first[i]) << files[i].toStdString();
}

TEST_F(Group, CorrelationsBecomeFishersZ)
{
    writeStudy();
    const auto estimate = [&](const char *use) {
        EXPECT_EQ(compareGroups({QStringLiteral("--fisher-z"), QLatin1String(use)}).status, 0);
        return number(TsvTable(out(QStringLiteral("edges.tsv"))), 0, "estimate");
    };
    const double z = estimate("yes");
    EXPECT_EQ(estimate("auto"), z);
    EXPECT_NE(estimate("no"), z);
    for (int i = 0; i < 10; ++i)
        write(QStringLiteral("m%1.json").arg(i), R"({"RelationshipMeasure": "covariance"})");
    EXPECT_EQ(estimate("auto"), estimate("no")) << "the file beside each matrix says what it is";
}

TEST_F(Group, WhoLacksAValueOrANodeLeavesAndIsTold)
{
    writeStudy();
    QByteArray table = tableText();
    table.replace("sub-3\tm3.tsv\tControl", "sub-3\tm3.tsv\tn/a");
    writeTable(table);
    Eigen::RowVectorXd edges = Eigen::RowVectorXd::Constant(10, 0.1);
    for (const int e : {3, 6, 8, 9}) // those of node 4
        edges(e) = std::numeric_limits<double>::quiet_NaN();
    writeMatrix(QStringLiteral("m6.tsv"), edges);
    const ProgramRun done =
        compareGroups({QStringLiteral("--min-node-subjects"), QStringLiteral("0.8")});
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    EXPECT_EQ(done.errors, "sub-3 is left out: no group\nsub-6 is left out: lacks 4\n");
    EXPECT_EQ(TsvTable(out(QStringLiteral("design.tsv"))).rowCount(), 8);

    const ProgramRun all =
        compareGroups({QStringLiteral("--min-node-subjects"), QStringLiteral("1")});
    ASSERT_EQ(all.status, 0) << all.errors.toStdString();
    EXPECT_TRUE(all.errors.contains("node 4 is left out: too few participants have it\n"));
    EXPECT_EQ(TsvTable(out(QStringLiteral("design.tsv"))).rowCount(), 9);
    EXPECT_EQ(TsvTable(out(QStringLiteral("edges.tsv"))).rowCount(), 6);
}

TEST_F(Group, PairsAreTestedBySigns)
{
    writeStudy();
    QByteArray table = tableText();
    for (int i = 0; i < 10; ++i)
        table.replace("sub-" + QByteArray::number(i) + '\t',
                      "pair-" + QByteArray::number(i / 2) + '\t');
    writeTable(table);
    const ProgramRun twice = compareGroups({});
    EXPECT_EQ(twice.status, 1);
    EXPECT_TRUE(twice.errors.contains("a second row of pair-0")) << twice.errors.toStdString();

    ASSERT_EQ(compareGroups({QStringLiteral("--paired")}).status, 0);
    const TsvTable design(out(QStringLiteral("design.tsv")));
    EXPECT_EQ(design.rowCount(), 5);
    EXPECT_EQ(number(TsvTable(out(QStringLiteral("edges.tsv"))), 0, "df"), 4);
    const QJsonObject json = QJsonDocument::fromJson(bytes(QStringLiteral("group.json"))).object();
    const QJsonObject contrast =
        json.value(QStringLiteral("Contrasts")).toArray().first().toObject();
    EXPECT_EQ(contrast.value(QStringLiteral("Exchange")).toString(), QStringLiteral("signs"));
    EXPECT_EQ(contrast.value(QStringLiteral("Rearrangements")).toInt(), 32);
    EXPECT_TRUE(contrast.value(QStringLiteral("AllRearrangements")).toBool());
}

TEST_F(Group, BlocksThatTheFormulaLacksBesideCovariatesAreTold)
{
    writeStudy();
    const auto errors = [&](const char *formula) {
        const ProgramRun done =
            run({QStringLiteral("--formula"), QLatin1String(formula), QStringLiteral("--contrast"),
                 QStringLiteral("g=group[Patient]"), QStringLiteral("--blocks"),
                 QStringLiteral("site"), QStringLiteral("--permutations"), QStringLiteral("99")});
        EXPECT_EQ(done.status, 0) << done.errors.toStdString();
        return done.errors;
    };
    EXPECT_EQ(errors("group"), "");
    EXPECT_EQ(errors("group + age + site"), "");
    EXPECT_EQ(errors("group + age"),
              "contrast g: with covariates the formula should name the blocks as well, as in \"+ "
              "C(site)\"; else p values are only rough\n");
}

TEST_F(Group, SeveralContrastsAndF)
{
    writeStudy();
    const ProgramRun done =
        run({QStringLiteral("--formula"), QStringLiteral("group + center(age)"),
             QStringLiteral("--contrast"), QStringLiteral("g=group[Patient]"),
             QStringLiteral("--contrast"), QStringLiteral("any=group[Patient];center(age)"),
             QStringLiteral("--permutations"), QStringLiteral("99")});
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    const TsvTable edges(out(QStringLiteral("edges.tsv")));
    ASSERT_EQ(edges.rowCount(), 20);
    const int f = edges.requiredColumn(QStringLiteral("F"));
    EXPECT_EQ(edges.cell(0, f), QStringLiteral("n/a"));
    EXPECT_GT(number(edges, 10, "F"), 0.0);
    EXPECT_EQ(edges.cell(10, edges.requiredColumn(QStringLiteral("t"))), QStringLiteral("n/a"));
    EXPECT_FALSE(QFileInfo::exists(out(QStringLiteral("components.tsv"))));
}

struct Bad {
    const char *name;
    QByteArray from; ///< in the table, replaced
    QByteArray to;
    QStringList options; ///< behind a formula and a contrast
    QByteArray message;
};

void PrintTo(const Bad &bad, std::ostream *stream)
{
    *stream << bad.name;
}

class BadGroup : public Group, public testing::WithParamInterface<Bad>
{
};

TEST_P(BadGroup, IsOneLineAndNothingIsWritten)
{
    writeStudy();
    writeMatrix(QStringLiteral("large.tsv"), Eigen::RowVectorXd::Constant(10, 1.5));
    writeMatrix(QStringLiteral("small.tsv"), Eigen::RowVectorXd::Constant(3, 0.5));
    Eigen::RowVectorXd hole = Eigen::RowVectorXd::Constant(10, 0.5);
    hole(2) = std::numeric_limits<double>::quiet_NaN();
    writeMatrix(QStringLiteral("hole.tsv"), hole);
    QByteArray table = tableText();
    table.replace(GetParam().from, GetParam().to);
    writeTable(table);
    const ProgramRun done = run(GetParam().options);
    EXPECT_EQ(done.status, 1);
    EXPECT_EQ(done.errorLines(), 1) << done.errors.toStdString();
    EXPECT_TRUE(done.errors.contains(GetParam().message)) << done.errors.toStdString();
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("out"))));
}

QStringList model(const char *formula, const char *contrast)
{
    return {QStringLiteral("--formula"), QLatin1String(formula), QStringLiteral("--contrast"),
            QLatin1String(contrast)};
}

const QStringList groups = model("group", "g=group[Patient]");

INSTANTIATE_TEST_SUITE_P(
    Input, BadGroup,
    testing::Values(
        Bad{"no_file", "m4.tsv", "none.tsv", groups, "none.tsv"},
        Bad{"no_path", "m4.tsv", "n/a", groups, "no matrix of sub-4"},
        Bad{"no_column", "matrix", "file", groups, "a column \"matrix\""},
        Bad{"other_size", "m4.tsv", "small.tsv", groups, "small.tsv: size: found 3 nodes"},
        Bad{"edge_without_number", "m4.tsv", "hole.tsv", groups, "hole.tsv"},
        Bad{"no_correlation", "m4.tsv", "large.tsv",
            groups + QStringList{QStringLiteral("--fisher-z"), QStringLiteral("yes")}, "large.tsv"},
        Bad{"mixed_values", "m4.tsv", "large.tsv", groups, "--fisher-z yes or no"},
        Bad{"collinear", "", "", model("age + center(age)", "a=age"), "age"},
        Bad{"group_of_one", "Control\t21", "Other\t21", groups, "only one subject has group"},
        Bad{"unknown_column", "", "", model("weight", "w=weight"), "weight"},
        Bad{"contrast_of_nothing", "", "", model("group", "g=Patient"), "names no column"},
        Bad{"block_of_one_group", "", "",
            groups + QStringList{QStringLiteral("--blocks"), QStringLiteral("group")},
            "the same within every block"}),
    [](const testing::TestParamInfo<Bad> &bad) { return std::string(bad.param.name); });

TEST_F(Group, WrongOptionsAreWrongUsage)
{
    writeStudy();
    const QList<QStringList> all{{QStringLiteral("--sides"), QStringLiteral("left")},
                                 {QStringLiteral("--threshold"), QStringLiteral("2,x")},
                                 {QStringLiteral("--permutations"), QStringLiteral("0")},
                                 {QStringLiteral("--seed"), QStringLiteral("-1")},
                                 {QStringLiteral("--fisher-z"), QStringLiteral("maybe")},
                                 {QStringLiteral("--min-node-subjects"), QStringLiteral("2")}};
    for (const QStringList &options : all) {
        const ProgramRun done = compareGroups(options);
        EXPECT_EQ(done.status, 2) << options.front().toStdString();
        EXPECT_TRUE(done.errors.contains(options.front().toUtf8())) << done.errors.toStdString();
    }
    EXPECT_EQ(run({QStringLiteral("--formula"), QStringLiteral("group")}).status, 2);
}

} // namespace

} // namespace corvane
