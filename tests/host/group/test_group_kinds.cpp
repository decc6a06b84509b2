// SPDX-License-Identifier: GPL-3.0-or-later
// Distances, reliability, fingerprints, motion and tangent space on the command line, against sums
// written down plainly here.
#include "host/files/graph_table.h"
#include "host/group/distance_tests.h"
#include "statistics/tangent.h"
#include "tests/host/group/group_study.h"

#include <Eigen/LU>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <nodalis/nodalis.h>
#include <numeric>

namespace corvane
{

namespace
{

using Eigen::ArrayXd;
using Eigen::Index;
using Eigen::MatrixXd;

constexpr int people = 8;

/// The group's folder, with matrices that the test knows as well.
class GroupKinds : public Group
{
protected:
    /// Twelve people of two groups, with motion that edge 0-1 follows in uncleaned matrices.
    void writePeople() const
    {
        RandomNumbers random(11);
        QByteArray table = "participant_id\tmatrix\tmatrix_uncleaned\tgroup\tage\tmean_fd\t"
                           "degrees_of_freedom\n";
        for (int i = 0; i < 12; ++i) {
            Eigen::RowVectorXd edges = someEdges(random);
            edges(2) += i % 2 == 0 ? 0.3 : -0.3;
            writeMatrix(QStringLiteral("m%1.tsv").arg(i), edges);
            const double fd = 0.1 + 0.02 * i + 0.05 * random.uniform();
            edges(0) = 0.05 * edges(0) + fd;
            writeMatrix(QStringLiteral("u%1.tsv").arg(i), edges);
            const QByteArray number = QByteArray::number(i);
            table += "sub-" + number + "\tm" + number + ".tsv\tu" + number + ".tsv\t" +
                     (i % 2 == 0 ? "P" : "C") + '\t' + QByteArray::number(20 + (i * 7) % 12) +
                     '\t' + shortestDecimal(fd) + '\t' + QByteArray::number(100 + i) + '\n';
        }
        writeTable(table);
    }

    /// People with two or three sessions each.
    void writeSessions(int sessions) const
    {
        RandomNumbers random(5);
        QByteArray table = "participant_id\tmatrix\tsession_id\n";
        for (int i = 0; i < people; ++i) {
            const Eigen::RowVectorXd own = someEdges(random);
            for (int s = 0; s < sessions; ++s) {
                const QString name = QStringLiteral("m%1_%2.tsv").arg(i).arg(s);
                writeMatrix(name, 0.6 * own + 0.5 * someEdges(random));
                table += "sub-" + QByteArray::number(i) + '\t' + name.toUtf8() + "\tses-" +
                         QByteArray::number(s) + '\n';
            }
        }
        writeTable(table);
    }

    static Eigen::RowVectorXd someEdges(RandomNumbers &random)
    {
        Eigen::RowVectorXd edges(10);
        for (double &edge : edges)
            edge = std::tanh(0.3 * random.normal());
        return edges;
    }

    MatrixXd matrix(const QString &name) const { return readMatrixTable(path(name)).values; }

    /// Fisher's z of the edges of a matrix.
    ArrayXd z(const QString &name) const
    {
        const MatrixXd values = matrix(name);
        ArrayXd edges(10);
        Index at = 0;
        for (Index i = 0; i < 5; ++i)
            for (Index j = i + 1; j < 5; ++j)
                edges(at++) = std::atanh(values(i, j));
        return edges;
    }

    QJsonObject json() const
    {
        return QJsonDocument::fromJson(bytes(QStringLiteral("group.json"))).object();
    }

    ProgramRun test(const char *tests, const QStringList &more = {}) const
    {
        return run(QStringList{QStringLiteral("--test"), QLatin1String(tests)} + more);
    }
};

double correlation(const ArrayXd &x, const ArrayXd &y)
{
    const ArrayXd a = x - x.mean();
    const ArrayXd b = y - y.mean();
    return (a * b).sum() / std::sqrt(a.square().sum() * b.square().sum());
}

const QStringList byGroup{QStringLiteral("--formula"), QStringLiteral("group"),
                          QStringLiteral("--contrast"), QStringLiteral("g=group[P]")};

// ---- distances

/// F of two groups from the sums of squared distances.
double fOf(const MatrixXd &distances, const std::vector<int> &group)
{
    const auto n = static_cast<int>(distances.rows());
    double all = 0;
    double within[2] = {0, 0};
    double sizes[2] = {0, 0};
    for (int i = 0; i < n; ++i) {
        sizes[group[i]] += 1;
        for (int j = i + 1; j < n; ++j) {
            const double d2 = distances(i, j) * distances(i, j);
            all += d2 / n;
            if (group[i] == group[j])
                within[group[i]] += d2;
        }
    }
    const double rest = within[0] / sizes[0] + within[1] / sizes[1];
    return (all - rest) / (rest / (n - 2));
}

TEST_F(GroupKinds, DistancesAreThePluginsAndFollowGroupsAsSumsOverPairsSay)
{
    writePeople();
    const ProgramRun done = test("distance", byGroup);
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();

    const MatrixXd found = readMatrixTable(out(QStringLiteral("distances.tsv"))).values;
    ASSERT_EQ(found.rows(), 12);
    for (int i = 0; i < 12; ++i) {
        for (int j = 0; j < 12; ++j) {
            Eigen::MatrixXf a = matrix(QStringLiteral("m%1.tsv").arg(i)).cast<float>();
            Eigen::MatrixXf b = matrix(QStringLiteral("m%1.tsv").arg(j)).cast<float>();
            a.diagonal().setZero();
            b.diagonal().setZero();
            EXPECT_NEAR(found(i, j), nodalis::distances::spectral_euclidean(a, b, 0), 1e-6);
        }
    }

    std::vector<int> group(12);
    for (int i = 0; i < 12; ++i)
        group[i] = i % 2;
    const double f = fOf(found, group);
    int reached = 0;
    int all = 0;
    std::vector<int> other = {0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1};
    do {
        reached += fOf(found, other) >= f * (1 - 1e-12) ? 1 : 0;
        ++all;
    } while (std::next_permutation(other.begin(), other.end()));
    ASSERT_EQ(all, 924);
    const TsvTable tests(out(QStringLiteral("distance_tests.tsv")));
    EXPECT_NEAR(number(tests, 0, "F"), f, 1e-9 * f);
    EXPECT_NEAR(number(tests, 0, "p"), double(reached) / all, 1e-12);
    EXPECT_EQ(number(tests, 0, "df_tested"), 1);
    EXPECT_EQ(number(tests, 0, "df_residual"), 10);
    EXPECT_FALSE(QFileInfo::exists(out(QStringLiteral("edges.tsv"))));
    const QJsonArray contrasts =
        json()[QStringLiteral("Distances")].toObject()[QStringLiteral("Contrasts")].toArray();
    EXPECT_TRUE(contrasts.first().toObject()[QStringLiteral("AllRearrangements")].toBool());
}

TEST(GroupDistances, TellHowFarTheyAreAndCanBeStopped)
{
    GroupData data;
    RandomNumbers random(3);
    for (int i = 0; i < 5; ++i) {
        Eigen::MatrixXf graph = Eigen::MatrixXf::Zero(4, 4);
        graph(0, 1) = graph(1, 0) = float(random.uniform());
        data.graphs.push_back(graph);
        data.participants.push_back(i < 4 ? std::to_string(i) : "0");
    }
    GroupRequest request;
    request.threads = 2;
    std::vector<qint64> told;
    const DistanceResult result = testDistances(data, request, [&](qint64 done, qint64 total) {
        EXPECT_EQ(total, 5);
        told.push_back(done);
        return true;
    });
    EXPECT_EQ(told, (std::vector<qint64>{1, 2, 3, 4, 5}));
    EXPECT_EQ(result.distances(1, 3),
              double(nodalis::distances::spectral_euclidean(data.graphs[1], data.graphs[3], 0)));
    EXPECT_THROW(testDistances(data, request, [](qint64 done, qint64) { return done < 2; }),
                 WorkStopped);
}

TEST_F(GroupKinds, NearerWithinPeopleIsTheDbicc)
{
    writeSessions(3);
    const ProgramRun done = test("distance");
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    const MatrixTable table = readMatrixTable(out(QStringLiteral("distances.tsv")));
    EXPECT_EQ(table.names[1], QStringLiteral("sub-0_ses-1"));
    double within = 0, between = 0;
    int withinCount = 0, betweenCount = 0;
    for (int i = 0; i < 3 * people; ++i) {
        for (int j = i + 1; j < 3 * people; ++j) {
            const double d2 = table.values(i, j) * table.values(i, j);
            (i / 3 == j / 3 ? within : between) += d2;
            (i / 3 == j / 3 ? withinCount : betweenCount) += 1;
        }
    }
    const TsvTable found(out(QStringLiteral("dbicc.tsv")));
    EXPECT_NEAR(number(found, 0, "dbicc"), 1 - (within / withinCount) / (between / betweenCount),
                1e-9);
    EXPECT_EQ(number(found, 0, "pairs_within"), withinCount);
    EXPECT_FALSE(QFileInfo::exists(out(QStringLiteral("distance_tests.tsv"))));
}

TEST_F(GroupKinds, ANodeThatAnyoneLacksLeavesBeforeDistances)
{
    writePeople();
    Eigen::RowVectorXd edges = Eigen::RowVectorXd::LinSpaced(10, 0.1, 0.5);
    for (const int e : {3, 6, 8, 9}) // those of node 4
        edges(e) = std::numeric_limits<double>::quiet_NaN();
    writeMatrix(QStringLiteral("m6.tsv"), edges);
    const ProgramRun done = test("distance", byGroup);
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    EXPECT_EQ(done.errors, "node 4 is left out: too few participants have it\n");
    EXPECT_EQ(readMatrixTable(out(QStringLiteral("distances.tsv"))).values.rows(), 12);
}

// ---- sessions

TEST_F(GroupKinds, IntraclassCorrelationsOfFishersZ)
{
    constexpr int sessions = 3;
    writeSessions(sessions);
    const ProgramRun done = test("icc");
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    const TsvTable found(out(QStringLiteral("icc.tsv")));
    ASSERT_EQ(found.rowCount(), 10);
    for (int edge = 0; edge < 10; ++edge) {
        MatrixXd x(people, sessions);
        for (int i = 0; i < people; ++i)
            for (int s = 0; s < sessions; ++s)
                x(i, s) = z(QStringLiteral("m%1_%2.tsv").arg(i).arg(s))(edge);
        const double mean = x.mean();
        double rows = 0, columns = 0, within = 0, rest = 0;
        for (int i = 0; i < people; ++i)
            for (int s = 0; s < sessions; ++s) {
                rows += std::pow(x.row(i).mean() - mean, 2) / (people - 1);
                columns += std::pow(x.col(s).mean() - mean, 2) / (sessions - 1);
                within += std::pow(x(i, s) - x.row(i).mean(), 2) / (people * (sessions - 1));
                rest += std::pow(x(i, s) - x.row(i).mean() - x.col(s).mean() + mean, 2) /
                        ((people - 1) * (sessions - 1));
            }
        EXPECT_NEAR(number(found, edge, "icc_1_1"), (rows - within) / (rows + 2 * within), 1e-10);
        EXPECT_NEAR(number(found, edge, "icc_2_1"),
                    (rows - rest) / (rows + 2 * rest + 3 * (columns - rest) / people), 1e-10);
        EXPECT_NEAR(number(found, edge, "icc_3_1"), (rows - rest) / (rows + 2 * rest), 1e-10);
    }
}

TEST_F(GroupKinds, FingerprintsOfEachPairOfSessions)
{
    writeSessions(3);
    const ProgramRun done =
        test("fingerprint", {QStringLiteral("--permutations"), QStringLiteral("99")});
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    const TsvTable found(out(QStringLiteral("fingerprint.tsv")));
    const TsvTable similarity(out(QStringLiteral("similarity.tsv")));
    ASSERT_EQ(found.rowCount(), 3);
    ASSERT_EQ(similarity.rowCount(), 3 * people * people);
    const int pairs[3][2] = {{0, 1}, {0, 2}, {1, 2}};
    for (int pair = 0; pair < 3; ++pair) {
        MatrixXd c(people, people);
        for (int i = 0; i < people; ++i)
            for (int j = 0; j < people; ++j) {
                c(i, j) = correlation(z(QStringLiteral("m%1_%2.tsv").arg(i).arg(pairs[pair][0])),
                                      z(QStringLiteral("m%1_%2.tsv").arg(j).arg(pairs[pair][1])));
                EXPECT_NEAR(number(similarity, (pair * people + i) * people + j, "r"), c(i, j),
                            1e-12);
            }
        int forward = 0, backward = 0;
        for (int i = 0; i < people; ++i) {
            bool isFirst = true, isSecond = true;
            for (int j = 0; j < people; ++j) {
                isFirst = isFirst && (j == i || c(i, i) > c(i, j));
                isSecond = isSecond && (j == i || c(i, i) > c(j, i));
            }
            forward += isFirst ? 1 : 0;
            backward += isSecond ? 1 : 0;
        }
        EXPECT_EQ(number(found, pair, "rate_1_to_2"), double(forward) / people);
        EXPECT_EQ(number(found, pair, "rate_2_to_1"), double(backward) / people);
        const double other = (c.sum() - c.trace()) / (people * (people - 1));
        EXPECT_NEAR(number(found, pair, "idiff"), 100 * (c.trace() / people - other), 1e-9);
        EXPECT_LE(number(found, pair, "p_1_to_2"), 0.05);
    }
}

TEST_F(GroupKinds, WhoLacksASessionIsTold)
{
    writeSessions(2);
    QFile file(path(QStringLiteral("T.tsv")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray table = file.readAll();
    table.replace("sub-2\tm2_1.tsv\tses-1\n", "");
    table.replace("session_id", "visit");
    writeTable(table);
    const QStringList visit{QStringLiteral("--session"), QStringLiteral("visit")};
    const ProgramRun done = test("icc,fingerprint", visit);
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    EXPECT_EQ(done.errors, "left out of the intraclass correlations, for lack of a session: sub-2\n"
                           "left out of the fingerprint of ses-0 and ses-1: sub-2\n");
    EXPECT_EQ(number(TsvTable(out(QStringLiteral("fingerprint.tsv"))), 0, "participants"), 7);
    const ProgramRun without = test("icc");
    EXPECT_EQ(without.status, 1);
    EXPECT_TRUE(without.errors.contains("session_id")) << without.errors.toStdString();
}

// ---- motion

TEST_F(GroupKinds, QcFcIsThePartialCorrelationWithMotionBeforeAndAfterCleaning)
{
    writePeople();
    write(QStringLiteral("places.tsv"), "index\tname\tx\ty\tz\n1\t0\t0\t0\t0\n2\t1\t10\t0\t0\n"
                                        "3\t2\t0\t25\t0\n4\t3\t-40\t0\t3\n5\t4\tn/a\tn/a\tn/a\n");
    const ProgramRun done =
        test("qcfc", {QStringLiteral("--formula"), QStringLiteral("center(mean_fd) + age"),
                      QStringLiteral("--centroids"), path(QStringLiteral("places.tsv"))});
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    EXPECT_EQ(done.errors, "without a place: 4\nQC-FC says little about 12 participants; it needs "
                           "20 or more\n");
    const TsvTable people12(path(QStringLiteral("T.tsv")));
    MatrixXd beside(12, 2);
    ArrayXd fd(12);
    for (int i = 0; i < 12; ++i) {
        beside.row(i) << 1, number(people12, i, "age");
        fd(i) = number(people12, i, "mean_fd");
    }
    const auto residual = [&](const ArrayXd &y) -> ArrayXd {
        const Eigen::VectorXd b =
            (beside.transpose() * beside).inverse() * beside.transpose() * y.matrix();
        return y - (beside * b).array();
    };
    const TsvTable found(out(QStringLiteral("qcfc.tsv")));
    const TsvTable summary(out(QStringLiteral("qcfc_summary.tsv")));
    ASSERT_EQ(found.rowCount(), 20);
    ASSERT_EQ(summary.rowCount(), 2);
    const char *const files[] = {"m%1.tsv", "u%1.tsv"};
    for (int data = 0; data < 2; ++data) {
        EXPECT_EQ(found.cell(10 * data, 0),
                  data == 0 ? QStringLiteral("cleaned") : QStringLiteral("uncleaned"));
        std::vector<double> absolute;
        for (int edge = 0; edge < 10; ++edge) {
            ArrayXd y(12);
            for (int i = 0; i < 12; ++i)
                y(i) = z(QString::fromLatin1(files[data]).arg(i))(edge);
            const double r = correlation(residual(y), residual(fd));
            EXPECT_NEAR(number(found, 10 * data + edge, "r"), r, 1e-10);
            absolute.push_back(std::abs(r));
        }
        std::sort(absolute.begin(), absolute.end());
        EXPECT_NEAR(number(summary, data, "median_absolute_r"), (absolute[4] + absolute[5]) / 2,
                    1e-10);
        EXPECT_EQ(number(summary, data, "df"), 9);
        EXPECT_EQ(number(summary, data, "edges_with_distance"), 6);
        EXPECT_NEAR(number(summary, data, "mean_degrees_of_freedom"), 105.5, 1e-9);
        EXPECT_LE(std::abs(number(summary, data, "distance_dependence")), 1);
    }
    EXPECT_EQ(number(found, 0, "distance"), 10);
    EXPECT_NEAR(number(found, 5, "distance"), std::sqrt(2500.0 + 9.0), 1e-12);
    EXPECT_EQ(found.cell(3, 6), QStringLiteral("n/a"));
    EXPECT_GT(number(found, 10, "r"), 0.95) << "edge 0-1 follows motion before cleaning";
    EXPECT_EQ(json()[QStringLiteral("QcFc")].toObject()[QStringLiteral("Covariates")].toArray(),
              QJsonArray({QStringLiteral("(Intercept)"), QStringLiteral("age")}));
}

TEST_F(GroupKinds, UncleanedMatricesLieBesideTheOthers)
{
    writePeople();
    QFile file(path(QStringLiteral("T.tsv")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray table = file.readAll();
    table.replace("matrix_uncleaned", "other");
    for (int i = 11; i >= 0; --i) {
        const QString stem = QStringLiteral("sub-%1_atlas-A_").arg(i);
        const QString matrix = stem + QStringLiteral("stat-pearsoncorrelation_relmat.tsv");
        QFile::copy(path(QStringLiteral("m%1.tsv").arg(i)), path(matrix));
        QFile::copy(path(QStringLiteral("u%1.tsv").arg(i)),
                    path(stem + QStringLiteral("desc-uncleaned_relmat.tsv")));
        table.replace("\tm" + QByteArray::number(i) + ".tsv", '\t' + matrix.toUtf8());
    }
    writeTable(table);
    const ProgramRun done = test("qcfc");
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    const TsvTable summary(out(QStringLiteral("qcfc_summary.tsv")));
    ASSERT_EQ(summary.rowCount(), 2);
    EXPECT_EQ(summary.cell(0, summary.column(QStringLiteral("distance_dependence"))),
              QStringLiteral("n/a"));

    QFile::remove(path(QStringLiteral("sub-7_atlas-A_desc-uncleaned_relmat.tsv")));
    const ProgramRun fewer = test("qcfc");
    ASSERT_EQ(fewer.status, 0);
    EXPECT_TRUE(fewer.errors.contains("not all rows have an uncleaned matrix\n"));
    EXPECT_EQ(TsvTable(out(QStringLiteral("qcfc_summary.tsv"))).rowCount(), 1);
}

// ---- tangent space

TEST_F(GroupKinds, TestsInTangentSpaceAreOfItsVectors)
{
    RandomNumbers random(8);
    std::vector<MatrixXd> covariances;
    for (int i = 0; i < 10; ++i) {
        covariances.push_back(random.covariance(4));
        QByteArray text;
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                text +=
                    shortestDecimal(covariances.back()(row, column)) + (column < 3 ? '\t' : '\n');
        write(QStringLiteral("m%1.tsv").arg(i), text);
    }
    writeTable(tableText());
    const ProgramRun done =
        test("glm,tangent", {QStringLiteral("--formula"), QStringLiteral("group"),
                             QStringLiteral("--contrast"), QStringLiteral("g=group[Patient]")});
    ASSERT_EQ(done.status, 0) << done.errors.toStdString();
    const statistics::TangentSpace space = statistics::tangent_space(covariances);
    const MatrixXd mean = readMatrixTable(out(QStringLiteral("tangent_mean.tsv"))).values;
    EXPECT_TRUE(mean.isApprox(space.mean, 1e-12));
    MatrixXd difference = MatrixXd::Zero(4, 4);
    for (int i = 0; i < 10; ++i)
        difference += (i % 2 == 0 ? 0.2 : -0.2) * space.tangent[i];
    const TsvTable edges(out(QStringLiteral("edges.tsv")));
    ASSERT_EQ(edges.rowCount(), 6);
    EXPECT_NEAR(number(edges, 0, "estimate"), difference(0, 1), 1e-10);
    EXPECT_NEAR(number(edges, 4, "estimate"), difference(1, 3), 1e-10);
    EXPECT_FALSE(
        json()[QStringLiteral("Settings")].toObject()[QStringLiteral("FisherZApplied")].toBool());

    write(QStringLiteral("m3.tsv"), "1\t2\t0\t0\n2\t1\t0\t0\n0\t0\t1\t0\n0\t0\t0\t1\n");
    const ProgramRun indefinite =
        test("glm,tangent", {QStringLiteral("--formula"), QStringLiteral("group"),
                             QStringLiteral("--contrast"), QStringLiteral("g=group[Patient]")});
    EXPECT_EQ(indefinite.status, 1);
    EXPECT_EQ(indefinite.errorLines(), 1);
    EXPECT_TRUE(indefinite.errors.contains("m3.tsv: values: found a matrix that is not positive"))
        << indefinite.errors.toStdString();
}

// ---- all of them

TEST_F(GroupKinds, TheSameBytesOnOneThreadOrTwoAndOverOlderFiles)
{
    writePeople();
    const QStringList options =
        byGroup + QStringList{QStringLiteral("--permutations"), QStringLiteral("200"),
                              QStringLiteral("--threshold"), QStringLiteral("2"),
                              QStringLiteral("--threads")};
    const auto filesOf = [&](const char *threads) {
        const ProgramRun done =
            test("glm,nbs,distance,qcfc", options + QStringList{QLatin1String(threads)});
        EXPECT_EQ(done.status, 0) << done.errors.toStdString();
        std::map<QString, QByteArray> files;
        for (const QString &name : QDir(path(QStringLiteral("out"))).entryList(QDir::Files))
            files[name] = bytes(name);
        return files;
    };
    const auto first = filesOf("1");
    EXPECT_EQ(first.size(), 9U);
    EXPECT_EQ(filesOf("2"), first);
    const auto again = filesOf("2");
    EXPECT_EQ(again, first);
    const QJsonObject settings = json()[QStringLiteral("Settings")].toObject();
    EXPECT_EQ(settings[QStringLiteral("Tests")].toArray(),
              QJsonArray({QStringLiteral("glm"), QStringLiteral("nbs"), QStringLiteral("distance"),
                          QStringLiteral("qcfc")}));
}

TEST_F(GroupKinds, PicturesOfEdgesNetworksAndMotion)
{
    writePeople();
    write(QStringLiteral("places.tsv"), "name\tx\ty\tz\n0\t0\t0\t0\n1\t10\t0\t0\n"
                                        "2\t0\t25\t0\n3\t-40\t0\t3\n4\t5\t5\t5\n");
    const QStringList options =
        byGroup + QStringList{QStringLiteral("--threshold"), QStringLiteral("1,2"),
                              QStringLiteral("--permutations"), QStringLiteral("200"),
                              QStringLiteral("--plots")};
    ASSERT_EQ(test("nbs,qcfc", options + QStringList{QStringLiteral("--centroids"),
                                                     path(QStringLiteral("places.tsv"))})
                  .status,
              0);
    const auto pictures = [&] {
        return QDir(path(QStringLiteral("out")))
            .entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name);
    };
    const QStringList ofContrast{
        QStringLiteral("contrast_1_edges.png"), QStringLiteral("contrast_1_networks_1.png"),
        QStringLiteral("contrast_1_networks_2.png"), QStringLiteral("contrast_1_t.png")};
    EXPECT_EQ(pictures(), ofContrast + QStringList({QStringLiteral("qcfc_cleaned.png"),
                                                    QStringLiteral("qcfc_uncleaned.png")}));
    ASSERT_EQ(test("nbs,qcfc", options).status, 0);
    EXPECT_EQ(pictures(), ofContrast) << "no cloud without distances, and none of before";
}

struct BadKind {
    const char *name;
    const char *tests;
    QStringList options;
    QByteArray message;
};

void PrintTo(const BadKind &bad, std::ostream *stream)
{
    *stream << bad.name;
}

class BadGroupKind : public GroupKinds, public testing::WithParamInterface<BadKind>
{
};

TEST_P(BadGroupKind, IsOneLineAndNothingIsWritten)
{
    writePeople();
    write(QStringLiteral("elsewhere.tsv"), "name\tx\ty\tz\na\t1\t2\t3\n");
    write(QStringLiteral("twice.tsv"), "name\tx\ty\tz\n0\t1\t2\t3\n0\t1\t2\t3\n");
    write(QStringLiteral("text.tsv"), "name\tx\ty\tz\n0\tleft\t2\t3\n");
    QStringList options = GetParam().options;
    for (QString &option : options)
        if (option.endsWith(QStringLiteral(".tsv")))
            option = path(option);
    const ProgramRun done = test(GetParam().tests, options);
    EXPECT_EQ(done.status, 1);
    EXPECT_EQ(done.errorLines(), 1) << done.errors.toStdString();
    EXPECT_TRUE(done.errors.contains(GetParam().message)) << done.errors.toStdString();
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("out"))));
}

INSTANTIATE_TEST_SUITE_P(
    Input, BadGroupKind,
    testing::Values(BadKind{"distance_of_nothing", "distance", {}, "a --contrast to test"},
                    BadKind{"no_sessions", "icc", {}, "session_id"},
                    BadKind{"no_such_sessions",
                            "fingerprint",
                            {QStringLiteral("--session"), QStringLiteral("visit")},
                            "visit"},
                    BadKind{"one_session_each",
                            "fingerprint",
                            {QStringLiteral("--session"), QStringLiteral("participant_id")},
                            "participant"},
                    BadKind{"a_mean_of_distances",
                            "distance",
                            {QStringLiteral("--contrast"), QStringLiteral("m=(Intercept)")},
                            "contrast m"},
                    BadKind{"places_of_other_nodes",
                            "qcfc",
                            {QStringLiteral("--centroids"), QStringLiteral("elsewhere.tsv")},
                            "none of the nodes"},
                    BadKind{"a_place_twice",
                            "qcfc",
                            {QStringLiteral("--centroids"), QStringLiteral("twice.tsv")},
                            "each node once"},
                    BadKind{"a_place_in_words",
                            "qcfc",
                            {QStringLiteral("--centroids"), QStringLiteral("text.tsv")},
                            "line 2, x"}),
    [](const testing::TestParamInfo<BadKind> &bad) { return std::string(bad.param.name); });

TEST_F(GroupKinds, MotionThatIsNoNumberOrMissing)
{
    writePeople();
    QFile file(path(QStringLiteral("T.tsv")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray table = file.readAll();
    writeTable(QByteArray(table).replace("mean_fd", "motion"));
    const ProgramRun none = test("qcfc");
    EXPECT_EQ(none.status, 1);
    EXPECT_TRUE(none.errors.contains("mean_fd")) << none.errors.toStdString();
    writeTable(QByteArray(table).replace("\tu4.tsv", "\tn/a"));
    const ProgramRun hole = test("qcfc");
    EXPECT_EQ(hole.status, 1);
    EXPECT_TRUE(hole.errors.contains("no uncleaned matrix of sub-4")) << hole.errors.toStdString();
    writeTable(QByteArray(table).replace("\t0.1", "\tlow0.1"));
    const ProgramRun words = test("qcfc");
    EXPECT_EQ(words.status, 1);
    EXPECT_EQ(words.errorLines(), 1);
    EXPECT_TRUE(words.errors.contains("expected a number")) << words.errors.toStdString();
}

TEST_F(GroupKinds, OptionsThatDoNotGoTogetherAreWrongUsage)
{
    writePeople();
    const QList<QStringList> all{
        {QStringLiteral("nbs")},
        {QStringLiteral("glm")},
        {QStringLiteral("anova")},
        {QStringLiteral("tangent")},
        {QStringLiteral("icc"), QStringLiteral("--threshold"), QStringLiteral("3")},
        {QStringLiteral("icc"), QStringLiteral("--paired")},
        {QStringLiteral("distance"), QStringLiteral("--min-node-subjects"), QStringLiteral("0.5")}};
    for (const QStringList &options : all) {
        const ProgramRun done = run(QStringList{QStringLiteral("--test")} + options);
        EXPECT_EQ(done.status, 2) << options.join(QLatin1Char(' ')).toStdString();
    }
    EXPECT_EQ(test("glm,qcfc", byGroup + QStringList{QStringLiteral("--paired")}).status, 2);
}

} // namespace

} // namespace corvane
