// SPDX-License-Identifier: GPL-3.0-or-later
//
// What repeats: intraclass correlations, sessions, fingerprints.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>

#include <gtest/gtest.h>

#include "statistics/correlation.h"
#include "statistics/fingerprint.h"
#include "statistics/icc.h"
#include "statistics/rearrangements.h"
#include "statistics/sessions.h"
#include "tests/statistics/error_text.h"
#include "tests/statistics/random_data.h"

namespace
{

using namespace statistics;
using Labels = std::vector<std::string>;

std::vector<EdgeData> sessions_of(const Eigen::MatrixXd &ratings)
{
    std::vector<EdgeData> sessions;
    for (Index j = 0; j < ratings.cols(); ++j) {
        sessions.emplace_back(ratings.col(j));
    }
    return sessions;
}

TEST(Icc, ShroutAndFleiss)
{
    Eigen::MatrixXd ratings(6, 4);
    ratings << 9, 2, 5, 8, 6, 1, 3, 2, 8, 4, 6, 8, 7, 1, 2, 6, 10, 5, 6, 9, 6, 2, 4, 7;
    const Icc result = icc(sessions_of(ratings));
    EXPECT_NEAR(result.icc_1_1(0), 0.16574, 5e-6);
    EXPECT_NEAR(result.icc_2_1(0), 0.28976, 5e-6);
    EXPECT_NEAR(result.icc_3_1(0), 0.71484, 5e-6);
}

TEST(Icc, OfEveryEdgeBySums)
{
    RandomNumbers random(3);
    const std::vector<EdgeData> sessions = {random.data(9, 7), random.data(9, 7),
                                            random.data(9, 7)};
    const Icc result = icc(sessions);
    for (Index e = 0; e < 7; ++e) {
        double grand = 0.0;
        std::vector<double> row(9, 0.0);
        std::vector<double> column(3, 0.0);
        for (int i = 0; i < 9; ++i) {
            for (int j = 0; j < 3; ++j) {
                const double x = sessions[j](i, e);
                grand += x / 27.0;
                row[i] += x / 3.0;
                column[j] += x / 9.0;
            }
        }
        double msr = 0.0;
        double msc = 0.0;
        double msw = 0.0;
        double mse = 0.0;
        for (int i = 0; i < 9; ++i) {
            msr += 3.0 * std::pow(row[i] - grand, 2) / 8.0;
            for (int j = 0; j < 3; ++j) {
                const double x = sessions[j](i, e);
                msw += std::pow(x - row[i], 2) / 18.0;
                mse += std::pow(x - row[i] - column[j] + grand, 2) / 16.0;
            }
        }
        for (int j = 0; j < 3; ++j) {
            msc += 9.0 * std::pow(column[j] - grand, 2) / 2.0;
        }
        EXPECT_NEAR(result.icc_1_1(e), (msr - msw) / (msr + 2.0 * msw), 1e-12);
        EXPECT_NEAR(result.icc_2_1(e), (msr - mse) / (msr + 2.0 * mse + 3.0 * (msc - mse) / 9.0),
                    1e-12);
        EXPECT_NEAR(result.icc_3_1(e), (msr - mse) / (msr + 2.0 * mse), 1e-12);
    }
}

TEST(Icc, PerfectNegativeAndUndefined)
{
    Eigen::MatrixXd ratings(3, 2);
    ratings << 1, 1, 2, 2, 5, 5;
    Icc result = icc(sessions_of(ratings));
    EXPECT_NEAR(result.icc_1_1(0), 1.0, 1e-15);
    EXPECT_NEAR(result.icc_2_1(0), 1.0, 1e-15);
    EXPECT_NEAR(result.icc_3_1(0), 1.0, 1e-15);
    ratings.col(1).array() += 3.0;
    EXPECT_NEAR(icc(sessions_of(ratings)).icc_3_1(0), 1.0, 1e-15) << "consistency";
    EXPECT_LT(icc(sessions_of(ratings)).icc_2_1(0), 0.9) << "no agreement";
    ratings << 1, -1, 2, -2, -3, 3;
    EXPECT_NEAR(icc(sessions_of(ratings)).icc_1_1(0), -1.0, 1e-15) << "negatives stay";
    ratings.setConstant(0.3);
    result = icc(sessions_of(ratings));
    EXPECT_TRUE(std::isnan(result.icc_1_1(0)));
    EXPECT_TRUE(std::isnan(result.icc_2_1(0)));
    EXPECT_TRUE(std::isnan(result.icc_3_1(0)));
    // The sessions differ, the subjects do not: nothing is left for 0 / 0.
    ratings << 1, 2, 1, 2, 1, 2;
    EXPECT_TRUE(std::isnan(icc(sessions_of(ratings)).icc_3_1(0)));
}

TEST(Icc, RefusesWhatDoesNotRepeat)
{
    EXPECT_EQ(error_text([] { icc({EdgeData::Zero(3, 2)}); }),
              "1 session; an intraclass correlation needs at least two");
    EXPECT_EQ(error_text([] {
                  icc({EdgeData::Zero(3, 2), EdgeData::Zero(4, 2)});
              }),
              "the sessions differ in their subjects or edges");
    EXPECT_EQ(error_text([] {
                  icc({EdgeData::Zero(3, 2), EdgeData::Zero(3, 1)});
              }),
              "the sessions differ in their subjects or edges");
    EXPECT_EQ(error_text([] {
                  icc({EdgeData::Zero(1, 2), EdgeData::Zero(1, 2)});
              }),
              "an intraclass correlation needs at least two subjects");
    EXPECT_EQ(error_text([] {
                  icc({EdgeData::Zero(3, 2), EdgeData::Constant(3, 2, std::nan(""))});
              }),
              "edge 0 of subject 0 is not a finite number; tests run on complete data");
}

TEST(Sessions, OfCompleteParticipants)
{
    const RepeatedSessions repeated =
        repeated_sessions({"b", "a", "c", "b", "a", "d", "d"}, {"2", "1", "1", "1", "2", "1", "2"});
    EXPECT_EQ(repeated.participants, Labels({"b", "a", "d"}));
    EXPECT_EQ(repeated.sessions, Labels({"1", "2"}));
    EXPECT_EQ(repeated.incomplete, Labels({"c"}));
    Eigen::Matrix<Index, 3, 2> rows;
    rows << 3, 0, 1, 4, 5, 6;
    EXPECT_EQ(repeated.rows, rows);
    EdgeData data(7, 1);
    data << 10, 11, 12, 13, 14, 15, 16;
    EXPECT_EQ(data_of(data, repeated, 1), (EdgeData(3, 1) << 10, 14, 16).finished());
    EXPECT_EQ(error_text([&] { data_of(data.topRows(6), repeated, 1); }),
              "the data have 6 rows, fewer than the table of sessions");
}

TEST(Sessions, RefusesWhatIsNotRepeated)
{
    EXPECT_EQ(error_text([] { repeated_sessions({"a"}, {}); }),
              "1 participant label with 0 session labels");
    EXPECT_EQ(error_text([] {
                  repeated_sessions({"a", "a"}, {"1", "1"});
              }),
              "participant a has session 1 twice");
    EXPECT_EQ(error_text([] {
                  repeated_sessions({"a", "b"}, {"1", "1"});
              }),
              "1 session; what repeats needs at least two");
    EXPECT_EQ(error_text([] {
                  repeated_sessions({"a", "a", "b"}, {"1", "2", "1"});
              }),
              "1 participant with all of the sessions 1, 2; at least two are needed");
}

/// Sessions in which subjects are alike to a degree.
std::pair<EdgeData, EdgeData> two_sessions(Index subjects, double noise, std::uint64_t seed)
{
    RandomNumbers random(seed);
    const EdgeData own = random.data(subjects, 36);
    return {own + noise * random.data(subjects, 36), own + noise * random.data(subjects, 36)};
}

TEST(Fingerprint, ByPearsonOfAllPairs)
{
    const auto [first, second] = two_sessions(12, 1.6, 5);
    const Index m = 400;
    const Fingerprint result = fingerprint(first, second, m, 3);
    Eigen::MatrixXd c(12, 12);
    for (Index i = 0; i < 12; ++i) {
        for (Index j = 0; j < 12; ++j) {
            c(i, j) = pearson(first.row(i).transpose(), second.row(j).transpose());
        }
    }
    EXPECT_LT((result.similarity - c).cwiseAbs().maxCoeff(), 1e-13);
    const auto hits = [&c](const std::vector<int> &called, bool rows) {
        double count = 0.0;
        for (int i = 0; i < 12; ++i) {
            bool largest = true;
            for (int other = 0; other < 12; ++other) {
                // Subject i of session 1 is called[i] in session 2.
                largest = largest && (rows ? other == called[i] || c(i, called[i]) > c(i, other)
                                           : other == i || c(i, called[i]) > c(other, called[i]));
            }
            count += largest ? 1.0 : 0.0;
        }
        return count / 12.0;
    };
    std::vector<int> called(12);
    std::iota(called.begin(), called.end(), 0);
    EXPECT_EQ(result.rate_1_to_2, hits(called, true));
    EXPECT_EQ(result.rate_2_to_1, hits(called, false));
    EXPECT_GT(result.rate_1_to_2, 0.2);
    EXPECT_LT(result.rate_1_to_2, 1.0);
    EXPECT_NEAR(result.idiff, 100.0 * (c.trace() / 12.0 - (c.sum() - c.trace()) / 132.0), 1e-11);

    const Rearrangements shuffles(12, m, 3, Purpose::identity);
    std::vector<double> sign(12);
    double reached = 0.0;
    for (Index p = 0; p < m; ++p) {
        shuffles.get(p, called.data(), sign.data());
        ASSERT_EQ(result.null_1_to_2(p), hits(called, true));
        ASSERT_EQ(result.null_2_to_1(p), hits(called, false));
        reached += result.null_1_to_2(p) >= result.rate_1_to_2 ? 1.0 : 0.0;
    }
    EXPECT_EQ(result.p_1_to_2, (reached + 1.0) / 401.0);
}

TEST(Fingerprint, AllOrdersOfFewSubjects)
{
    const auto [first, second] = two_sessions(5, 0.05, 5);
    const Fingerprint result = fingerprint(first, second, 5000, 3);
    EXPECT_EQ(result.rate_1_to_2, 1.0);
    EXPECT_EQ(result.rate_2_to_1, 1.0);
    EXPECT_EQ(result.null_1_to_2.size(), 120);
    EXPECT_EQ(result.p_1_to_2, 1.0 / 120.0);
    EXPECT_EQ(result.p_2_to_1, 1.0 / 120.0);
}

TEST(Fingerprint, OfTwoEqualOnesNeitherHits)
{
    auto [first, second] = two_sessions(5, 0.0, 5);
    second.row(1) = second.row(0);
    const Fingerprint result = fingerprint(first, second, 100, 3);
    EXPECT_EQ(result.rate_1_to_2, 3.0 / 5.0) << "0 finds two, 1 finds another";
    EXPECT_EQ(result.rate_2_to_1, 4.0 / 5.0) << "in session 2 only 1 is taken for another";
}

TEST(Fingerprint, RefusesWhatCannotBeCompared)
{
    const EdgeData good = RandomNumbers(1).data(4, 6);
    EXPECT_EQ(error_text([&] { fingerprint(good, good.topRows(3), 10, 1); }),
              "session 1 has 4 subjects and 6 edges, session 2 has 3 and 6");
    EXPECT_EQ(error_text([&] { fingerprint(good, good.leftCols(3), 10, 1); }),
              "session 1 has 4 subjects and 6 edges, session 2 has 4 and 3");
    EXPECT_EQ(error_text([&] { fingerprint(good.topRows(1), good.topRows(1), 10, 1); }),
              "fingerprinting needs at least two subjects");
    EdgeData bad = good;
    bad.row(2).setConstant(0.5);
    EXPECT_EQ(error_text([&] { fingerprint(good, bad, 10, 1); }),
              "all edges of subject 2 are the same in the second session");
    bad(0, 0) = std::nan("");
    EXPECT_NE(error_text([&] { fingerprint(bad, good, 10, 1); }), "no error");
}

TEST(Correlation, PearsonAndSpearman)
{
    Eigen::ArrayXd x(5);
    Eigen::ArrayXd y(5);
    x << 1, 2, 3, 4, 5;
    y << 2, 1, 4, 3, 7;
    // sum of products of the centred: 12; of squares: 10 and 21.2
    EXPECT_NEAR(pearson(x, y), 12.0 / std::sqrt(10.0 * 21.2), 1e-15);
    // 1 - 6 sum d^2 / (n (n^2 - 1)), sum d^2 = 4
    EXPECT_NEAR(spearman(x, y), 0.8, 1e-15);
    EXPECT_NEAR(spearman(x, y.exp()), 0.8, 1e-15);
    EXPECT_TRUE(std::isnan(pearson(x, Eigen::ArrayXd::Constant(5, 0.1))));
    EXPECT_TRUE(std::isnan(pearson(x.head(1), y.head(1))));
    EXPECT_EQ(error_text([&] { pearson(x, y.head(4)); }),
              "two lists to correlate have 5 values and 4");
    Eigen::ArrayXd tied(6);
    tied << 3, 1, 3, 3, 2, 9;
    EXPECT_TRUE((average_ranks(tied) == (Eigen::ArrayXd(6) << 4, 1, 4, 4, 2, 6).finished()).all());
}

TEST(Correlation, MapsAreShuffled)
{
    Eigen::ArrayXd x(7);
    Eigen::ArrayXd y(7);
    x << 1, 2, std::nan(""), 4, 5, 6, 9;
    y << 1.1, 1.9, 3, 4.2, std::numeric_limits<double>::infinity(), 6.5, 8;
    const MapComparison result = compare_maps(x, y, 1000, 1);
    EXPECT_EQ(result.nodes, 5);
    EXPECT_EQ(result.spearman, 1.0);
    EXPECT_NEAR(result.pearson, 0.98, 0.02);
    EXPECT_EQ(result.p_spearman, 2.0 / 120.0) << "all orders: the own one and its reverse";
    EXPECT_GE(result.p_pearson, 1.0 / 120.0);
    RandomNumbers random(3);
    const MapComparison none =
        compare_maps(random.normal(40, 1).array(), random.normal(40, 1).array(), 500, 1);
    EXPECT_GT(none.p_pearson, 0.001);
    EXPECT_EQ(none.p_pearson, std::round(none.p_pearson * 501.0) / 501.0);
    EXPECT_EQ(error_text([&] { compare_maps(x.head(3), y.head(3), 10, 1); }),
              "2 nodes with a value in both maps; a correlation needs at least 3");
    EXPECT_EQ(error_text([&] { compare_maps(x, Eigen::ArrayXd::Ones(7), 10, 1); }),
              "a map has the same value at all nodes, so there is no correlation");
}

TEST(CompareMaps, TellsHowFarItIsAndEndsWithWhatThatThrows)
{
    RandomNumbers random(4);
    const Eigen::ArrayXd x = random.normal(40, 1).array();
    const Eigen::ArrayXd y = random.normal(40, 1).array();
    std::vector<Index> told;
    compare_maps(x, y, 1000, 1, [&](Index done, Index count) {
        EXPECT_EQ(count, 2000);
        told.push_back(done);
    });
    EXPECT_GE(told.size(), 5U);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_EQ(told.back(), 2000);
    const auto stop = [](Index done, Index) {
        if (done > 0) {
            throw std::runtime_error("enough");
        }
    };
    EXPECT_THROW(compare_maps(x, y, 1000, 1, stop), std::runtime_error);
}

} // namespace
