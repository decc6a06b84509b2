// SPDX-License-Identifier: GPL-3.0-or-later
//
// Analysis of variance of distances and their reliability, against sums over pairs.
#include <cmath>
#include <map>

#include <gtest/gtest.h>

#include "statistics/dbicc.h"
#include "statistics/design.h"
#include "statistics/distance_anova.h"
#include "statistics/distances.h"
#include "statistics/permutation_test.h"
#include "tests/statistics/error_text.h"
#include "tests/statistics/random_data.h"

namespace
{

using namespace statistics;
using Labels = std::vector<std::string>;

Eigen::MatrixXd euclidean(const Eigen::MatrixXd &places)
{
    return all_distances(places.rows(),
                         [&](Index i, Index j) { return (places.row(i) - places.row(j)).norm(); });
}

/// A distance that no places in space have.
Eigen::MatrixXd city_blocks(const Eigen::MatrixXd &places)
{
    return all_distances(places.rows(), [&](Index i, Index j) {
        return std::sqrt(std::sqrt((places.row(i) - places.row(j)).cwiseAbs().sum()) + 0.2);
    });
}

Design design_of(const std::string &formula, const Labels &group, const Eigen::VectorXd &age)
{
    Table table{{{"group", group}, {"age", {}}}};
    for (Index i = 0; i < age.size(); ++i) {
        table.columns[1].values.push_back(std::to_string(age(i)));
    }
    return make_design(formula, table);
}

Hypothesis question(const Design &design, const std::string &contrast)
{
    return make_hypothesis(design.matrix, design.columns,
                           read_contrast("x=" + contrast, design.columns));
}

/// F of groups by the sums over pairs.
double pairs_f(const Eigen::MatrixXd &d, const Labels &group)
{
    std::map<std::string, double> sizes;
    for (const std::string &label : group) {
        sizes[label] += 1.0;
    }
    double sst = 0.0;
    double ssw = 0.0;
    for (Index i = 0; i < d.rows(); ++i) {
        for (Index j = i + 1; j < d.rows(); ++j) {
            const double square = d(i, j) * d(i, j);
            sst += square / static_cast<double>(d.rows());
            ssw += group[i] == group[j] ? square / sizes[group[i]] : 0.0;
        }
    }
    const auto a = static_cast<double>(sizes.size());
    const auto n = static_cast<double>(d.rows());
    return ((sst - ssw) / (a - 1.0)) / (ssw / (n - a));
}

class DistanceAnovaOfGroups : public testing::Test
{
protected:
    Labels m_group = {"A", "B", "C", "A", "B", "C", "A", "B", "C", "A", "B", "A", "A", "C"};
    Eigen::VectorXd m_age = RandomNumbers(2).normal(14, 1);
    Eigen::MatrixXd m_places = RandomNumbers(3).normal(14, 4);
};

TEST_F(DistanceAnovaOfGroups, IsTheSumOverPairsInEveryRearrangement)
{
    for (const Eigen::MatrixXd &d : {euclidean(m_places), city_blocks(m_places)}) {
        const Design design = design_of("group", m_group, m_age);
        const Hypothesis hypothesis = question(design, "group[B];group[C]");
        RearrangementOptions wanted;
        wanted.count = 200;
        const Rearrangements rearrangements(hypothesis, wanted);
        const DistanceAnova result = distance_anova(d, hypothesis, rearrangements);
        const double observed = pairs_f(d, m_group);
        EXPECT_NEAR(result.f, observed, 1e-10);
        EXPECT_EQ(result.df_tested, 2.0);
        EXPECT_EQ(result.df_residual, 11.0);
        const double between = result.f * 2.0;
        EXPECT_NEAR(result.r_squared, between / (between + 11.0), 1e-12);
        std::vector<int> source(14);
        std::vector<double> sign(14);
        double reached = 0.0;
        for (Index p = 0; p < 200; ++p) {
            rearrangements.get(p, source.data(), sign.data());
            // Subject i has the data of source[i]: the label of i goes to source[i].
            Labels moved(14);
            for (int i = 0; i < 14; ++i) {
                moved[source[i]] = m_group[i];
            }
            const double value = pairs_f(d, moved);
            ASSERT_NEAR(result.null_f(p), value, 1e-10);
            reached += value >= observed - 1e-10 ? 1.0 : 0.0;
        }
        EXPECT_EQ(result.p, (reached + 1.0) / 201.0);
    }
}

TEST_F(DistanceAnovaOfGroups, WithTwoGroupsAsWell)
{
    for (std::string &label : m_group) {
        label = label == "C" ? "B" : label;
    }
    const Hypothesis hypothesis = question(design_of("group", m_group, m_age), "group[B]");
    const Eigen::MatrixXd d = city_blocks(m_places);
    EXPECT_NEAR(distance_anova(d, hypothesis, Rearrangements(hypothesis, {})).f,
                pairs_f(d, m_group), 1e-10);
}

TEST_F(DistanceAnovaOfGroups, OnALineItIsTheModelsF)
{
    // Distances on a line, with a covariate: the same as a linear model of the places, in every
    // rearrangement.
    const EdgeData places = m_places.col(0);
    for (const char *contrast : {"group[B];group[C]", "age", "group[B]"}) {
        const Hypothesis hypothesis = question(design_of("group + age", m_group, m_age), contrast);
        RearrangementOptions wanted;
        wanted.count = 100;
        const Rearrangements rearrangements(hypothesis, wanted);
        const DistanceAnova anova =
            distance_anova(euclidean(m_places.leftCols(1)), hypothesis, rearrangements, 2);
        const PermutationTestResult model = permutation_test(places, hypothesis, rearrangements);
        const auto f = [&](double statistic) {
            return hypothesis.is_f() ? statistic : statistic * statistic;
        };
        EXPECT_NEAR(anova.f, f(model.model.statistic(0)), 1e-9);
        for (Index p = 0; p < 100; ++p) {
            ASSERT_NEAR(anova.null_f(p), f(model.null_maximum(p)), 1e-9 * (1.0 + anova.null_f(p)));
        }
        EXPECT_EQ(anova.p, model.p_fwe(0));
    }
}

TEST_F(DistanceAnovaOfGroups, SameBytesOnAnyNumberOfThreads)
{
    const Hypothesis hypothesis = question(design_of("group + age", m_group, m_age), "age");
    const Rearrangements rearrangements(hypothesis, {});
    const Eigen::MatrixXd d = euclidean(m_places);
    EXPECT_TRUE((distance_anova(d, hypothesis, rearrangements, 1).null_f ==
                 distance_anova(d, hypothesis, rearrangements, 3).null_f)
                    .all());
}

TEST_F(DistanceAnovaOfGroups, RefusesWhatItCannotTest)
{
    const Design design = design_of("group", m_group, m_age);
    const Hypothesis hypothesis = question(design, "group[B]");
    const Rearrangements rearrangements(hypothesis, {});
    const auto text = [&](const Eigen::MatrixXd &d) {
        return error_text([&] { distance_anova(d, hypothesis, rearrangements); });
    };
    const Eigen::MatrixXd good = euclidean(m_places);
    EXPECT_EQ(text(good), "no error");
    EXPECT_EQ(text(good.topLeftCorner(9, 9)),
              "distances of 9 subjects, rearrangements of 14 and a design of 14");
    EXPECT_EQ(error_text([&] {
                  distance_anova(good, hypothesis, Rearrangements(9, 50, 1, Purpose::identity));
              }),
              "distances of 14 subjects, rearrangements of 9 and a design of 14");
    EXPECT_EQ(text(good.topRows(9)), "the distances have 9 rows and 14 columns");
    Eigen::MatrixXd bad = good;
    bad(2, 3) += 0.1;
    EXPECT_EQ(text(bad), "the distances are not symmetric, or not 0 on the diagonal");
    bad = good;
    bad(3, 3) = 0.1;
    EXPECT_EQ(text(bad), "the distances are not symmetric, or not 0 on the diagonal");
    bad(3, 3) = -0.1;
    EXPECT_EQ(text(bad), "a distance is negative or no finite number");
    bad(3, 3) = std::nan("");
    EXPECT_EQ(text(bad), "a distance is negative or no finite number");
    EXPECT_EQ(text(Eigen::MatrixXd::Zero(14, 14)),
              "the distances do not differ, or the columns beside the tested one explain all of "
              "them");
    const Hypothesis mean = question(design, "(Intercept)");
    EXPECT_EQ(error_text([&] { distance_anova(good, mean, Rearrangements(mean, {})); }),
              "contrast x asks for a mean; distances tell of differences between subjects only");
    RearrangementOptions signs;
    signs.exchange = Exchange::signs;
    EXPECT_EQ(
        error_text([&] { distance_anova(good, hypothesis, Rearrangements(hypothesis, signs)); }),
        "contrast x asks for a mean; distances tell of differences between subjects only");
}

TEST(Distances, OfAllPairs)
{
    const auto distance = [](Index i, Index j) { return static_cast<double>(10 * i + j); };
    const Eigen::MatrixXd one = all_distances(4, distance);
    EXPECT_EQ(one(1, 3), 13.0);
    EXPECT_EQ(one(3, 1), 13.0);
    EXPECT_EQ(one(2, 2), 0.0);
    EXPECT_EQ(one, all_distances(4, distance, 3));
    EXPECT_EQ(error_text([] { all_distances(3, [](Index, Index) { return -1.0; }); }),
              "the distance of 0 and 1 is -1.000000; distances are 0 or above");
    EXPECT_NE(error_text([] { all_distances(3, [](Index, Index) { return std::nan(""); }); }),
              "no error");
    EXPECT_EQ(error_text([] { all_distances(3, [](Index, Index) { return 1.0 / 0.0; }); }),
              "the distance of 0 and 1 is inf; distances are 0 or above");
    EXPECT_EQ(all_distances(0, distance).size(), 0);
}

TEST(Dbicc, IsTheRatioOfMeansOverPairs)
{
    // Participants of one, two and three sessions.
    const Labels participants = {"a", "b", "b", "c", "a", "c", "c", "d"};
    const Eigen::MatrixXd d = euclidean(RandomNumbers(4).normal(8, 3));
    double within = 0.0;
    double between = 0.0;
    for (Index i = 0; i < 8; ++i) {
        for (Index j = 0; j < i; ++j) {
            (participants[i] == participants[j] ? within : between) += std::pow(d(i, j), 2);
        }
    }
    const Dbicc result = dbicc(d, participants);
    EXPECT_EQ(result.within, 1 + 1 + 3);
    EXPECT_EQ(result.between, 28 - 5);
    EXPECT_NEAR(result.value, 1.0 - (within / 5.0) / (between / 23.0), 1e-14);
}

TEST(Dbicc, RepeatedExactlyItIsOne)
{
    Eigen::MatrixXd places = RandomNumbers(4).normal(6, 3);
    places.bottomRows(3) = places.topRows(3);
    EXPECT_EQ(dbicc(euclidean(places), {"a", "b", "c", "a", "b", "c"}).value, 1.0);
    EXPECT_LT(dbicc(euclidean(places), {"a", "a", "b", "b", "c", "c"}).value, 0.0);
    EXPECT_TRUE(std::isnan(dbicc(Eigen::MatrixXd::Zero(3, 3), {"a", "a", "b"}).value));
    EXPECT_EQ(error_text([] {
                  dbicc(Eigen::MatrixXd::Zero(2, 2), {"a", "b"});
              }),
              "no participant has two sessions, so there is no distance within one");
    EXPECT_EQ(error_text([] {
                  dbicc(Eigen::MatrixXd::Zero(2, 2), {"a", "a"});
              }),
              "all sessions are of one participant, so there is no distance between two");
    EXPECT_EQ(error_text([] { dbicc(Eigen::MatrixXd::Zero(2, 2), {"a"}); }),
              "distances of 2 sessions with 1 participant label");
    EXPECT_EQ(error_text([] { dbicc(Eigen::MatrixXd(0, 0), {}); }),
              "no participant has two sessions, so there is no distance within one");
}

} // namespace
