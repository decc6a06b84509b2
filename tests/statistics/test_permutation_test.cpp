// SPDX-License-Identifier: GPL-3.0-or-later
//
// The permutation test against models fitted plainly.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include "statistics/distributions.h"
#include "statistics/false_discovery.h"
#include "statistics/permutation_test.h"
#include "tests/statistics/error_text.h"
#include "tests/statistics/random_data.h"

namespace
{

using namespace statistics;

std::vector<std::string> names(Index columns)
{
    std::vector<std::string> list;
    for (Index c = 0; c < columns; ++c) {
        list.push_back("c" + std::to_string(c));
    }
    return list;
}

Hypothesis hypothesis_of(const Eigen::MatrixXd &design, const std::string &contrast)
{
    return make_hypothesis(design, names(design.cols()),
                           read_contrast("x=" + contrast, names(design.cols())));
}

/// A constant, two groups, and two covariates that differ between them.
Eigen::MatrixXd study_design(Index subjects, std::uint64_t seed)
{
    Eigen::MatrixXd design = RandomNumbers(seed).normal(subjects, 4);
    design.col(0).setOnes();
    for (Index i = 0; i < subjects; ++i) {
        design(i, 1) = i < subjects / 2 ? 0.0 : 1.0;
    }
    design.col(2) += design.col(1);
    return design;
}

/// t of one row, F of several, of a model fitted by its normal equations.
double plain_statistic(const Eigen::MatrixXd &m, const Eigen::MatrixXd &c, const Eigen::VectorXd &y)
{
    const Eigen::MatrixXd inverse = (m.transpose() * m).inverse();
    const Eigen::VectorXd b = inverse * m.transpose() * y;
    const double variance = (y - m * b).squaredNorm() / static_cast<double>(m.rows() - m.cols());
    const Eigen::VectorXd estimate = c * b;
    const Eigen::MatrixXd spread = c * inverse * c.transpose();
    if (c.rows() == 1) {
        return estimate(0) / std::sqrt(variance * spread(0, 0));
    }
    return estimate.dot(spread.inverse() * estimate) / static_cast<double>(c.rows()) / variance;
}

/// Freedman and Lane, word by word: fit without what is tested, rearrange its residuals, add the
/// fit back, fit the full model.
double two_model_statistic(const Eigen::MatrixXd &m, const Eigen::MatrixXd &c,
                           const Eigen::VectorXd &y, const std::vector<int> &source,
                           const std::vector<double> &sign)
{
    const Eigen::MatrixXd z =
        c.rows() == c.cols() ? Eigen::MatrixXd(m.rows(), 0)
                             : Eigen::MatrixXd(m * Eigen::FullPivLU<Eigen::MatrixXd>(c).kernel());
    Eigen::VectorXd fit = Eigen::VectorXd::Zero(y.size());
    if (z.cols() > 0) {
        fit = z * (z.transpose() * z).inverse() * z.transpose() * y;
    }
    Eigen::VectorXd rearranged = fit;
    for (Index i = 0; i < y.size(); ++i) {
        rearranged(i) += sign[i] * (y(source[i]) - fit(source[i]));
    }
    return plain_statistic(m, c, rearranged);
}

struct Question {
    const char *contrast;
    Exchange exchange;
};

class FreedmanLane : public testing::TestWithParam<Question>
{
};

TEST_P(FreedmanLane, IsATwoModelFit)
{
    const Eigen::MatrixXd design = study_design(18, 5);
    const Hypothesis hypothesis = hypothesis_of(design, GetParam().contrast);
    RearrangementOptions wanted;
    wanted.count = 70;
    wanted.exchange = GetParam().exchange;
    const Rearrangements rearrangements(hypothesis, wanted);
    RandomNumbers random(8);
    for (int repeat = 0; repeat < 5; ++repeat) {
        const EdgeData data = (random.data(18, 1).array() + 3.0).matrix();
        const Eigen::VectorXd y = data.col(0);
        PermutationTestOptions options;
        options.sides = Sides::greater;
        const PermutationTestResult result =
            permutation_test(data, hypothesis, rearrangements, options);
        const double observed = plain_statistic(design, hypothesis.contrast, y);
        EXPECT_NEAR(result.model.statistic(0), observed, 1e-10 * (1.0 + std::abs(observed)));
        std::vector<int> source(18);
        std::vector<double> sign(18);
        Index reached = 0;
        for (Index p = 0; p < rearrangements.count(); ++p) {
            rearrangements.get(p, source.data(), sign.data());
            const double value = two_model_statistic(design, hypothesis.contrast, y, source, sign);
            // With one edge the largest statistic is its own.
            ASSERT_NEAR(result.null_maximum(p), value, 1e-9 * (1.0 + std::abs(value)));
            reached += value >= observed - 1e-9 ? 1 : 0;
        }
        EXPECT_EQ(result.p_permuted(0), (static_cast<double>(reached) + 1.0) / 71.0);
        EXPECT_EQ(result.p_fwe(0), result.p_permuted(0));
    }
}

INSTANTIATE_TEST_SUITE_P(Questions, FreedmanLane,
                         testing::Values(Question{"c1", Exchange::automatic},
                                         Question{"c1 - 0.5*c2", Exchange::automatic},
                                         Question{"c1;c3", Exchange::automatic},
                                         Question{"c1;c2;c3", Exchange::automatic},
                                         Question{"c1", Exchange::signs},
                                         Question{"c0", Exchange::automatic},
                                         Question{"c0;c1;c2;c3", Exchange::automatic},
                                         Question{"c0 + 0.5*c1", Exchange::permutations}));

TEST(Glm, StatisticsEstimatesAndTails)
{
    const Eigen::MatrixXd design = study_design(25, 2);
    const EdgeData data = RandomNumbers(4).data(25, 53);
    for (const char *contrast : {"c1", "2*c3 - c1", "c1;c2"}) {
        const Hypothesis hypothesis = hypothesis_of(design, contrast);
        const GlmResult each = glm(data, hypothesis);
        const GlmResult greater = glm(data, hypothesis, Sides::greater);
        const GlmResult less = glm(data, hypothesis, Sides::less);
        EXPECT_EQ(each.df, 21.0);
        EXPECT_TRUE(each.constant_edges.empty());
        for (Index e = 0; e < data.cols(); ++e) {
            const double value = plain_statistic(design, hypothesis.contrast, data.col(e));
            ASSERT_NEAR(each.statistic(e), value, 1e-10 * (1.0 + std::abs(value)));
            if (hypothesis.is_f()) {
                EXPECT_EQ(each.p(e), f_upper_tail(each.statistic(e), 2, 21));
                EXPECT_EQ(less.p(e), each.p(e));
                EXPECT_EQ(each.estimate.size(), 0);
            } else {
                const Eigen::VectorXd b =
                    design.colPivHouseholderQr().solve(Eigen::VectorXd(data.col(e)));
                EXPECT_NEAR(each.estimate(e), hypothesis.contrast.row(0).dot(b), 1e-12);
                EXPECT_EQ(each.p(e), t_two_sided(each.statistic(e), 21));
                EXPECT_EQ(greater.p(e), t_upper_tail(each.statistic(e), 21));
                EXPECT_NEAR(greater.p(e) + less.p(e), 1.0, 1e-15);
            }
        }
    }
}

TEST(Glm, ConstantEdgesAreCountedAndSayNothing)
{
    const Eigen::MatrixXd design = study_design(20, 2);
    EdgeData data = RandomNumbers(4).data(20, 30);
    data.col(3).setConstant(0.7);
    data.col(11).setZero();
    data.col(29) = 2.0 * design.col(2) - 0.1 * design.col(0) + 3.0 * design.col(3);
    const Hypothesis hypothesis = hypothesis_of(design, "c1");
    const PermutationTestResult result =
        permutation_test(data, hypothesis, Rearrangements(hypothesis, {}));
    EXPECT_EQ(result.model.constant_edges, std::vector<Index>({3, 11, 29}));
    for (const Index e : result.model.constant_edges) {
        EXPECT_EQ(result.model.statistic(e), 0.0);
        EXPECT_EQ(result.model.p(e), 1.0);
        EXPECT_EQ(result.p_permuted(e), 1.0);
        EXPECT_EQ(result.p_fwe(e), 1.0);
        EXPECT_NEAR(result.model.estimate(e), 0.0, 1e-12);
    }
    // An edge that is the same in all subjects has a mean, but no t.
    const GlmResult mean = glm(data, hypothesis_of(Eigen::MatrixXd::Ones(20, 1), "c0"));
    EXPECT_EQ(mean.constant_edges, std::vector<Index>({3, 11}));
    EXPECT_NEAR(mean.estimate(3), 0.7, 1e-14);
    EXPECT_EQ(mean.statistic(3), 0.0);
    // Of several columns at once there is an F and no estimate.
    const GlmResult both = glm(data, hypothesis_of(design, "c1;c2"));
    EXPECT_EQ(both.constant_edges, std::vector<Index>({3, 11}));
    EXPECT_EQ(both.statistic(3), 0.0);
    EXPECT_EQ(both.p(11), 1.0);
    EXPECT_EQ(both.estimate.size(), 0);
}

TEST(Glm, AnExactFitStaysFinite)
{
    const Eigen::MatrixXd design = study_design(20, 2);
    EdgeData data(20, 2);
    data.col(0) = design.col(1) + 0.25 * design.col(2);
    data.col(1) = -design.col(1);
    const GlmResult result = glm(data, hypothesis_of(design, "c1"));
    EXPECT_TRUE(result.constant_edges.empty());
    EXPECT_GT(result.statistic(0), 1e6);
    EXPECT_LT(result.statistic(1), -1e6);
    EXPECT_TRUE(result.statistic.allFinite());
    EXPECT_GT(result.p(0), 0.0);
}

TEST(PermutationTest, LargestStatisticOfTheFamily)
{
    const Eigen::MatrixXd design = study_design(16, 9);
    const EdgeData data = RandomNumbers(6).data(16, 45);
    const Hypothesis hypothesis = hypothesis_of(design, "c1");
    RearrangementOptions wanted;
    wanted.count = 130;
    const Rearrangements rearrangements(hypothesis, wanted);
    std::vector<int> source(16);
    std::vector<double> sign(16);
    Eigen::MatrixXd null_t(130, 45);
    for (Index p = 0; p < 130; ++p) {
        rearrangements.get(p, source.data(), sign.data());
        for (Index e = 0; e < 45; ++e) {
            null_t(p, e) =
                two_model_statistic(design, hypothesis.contrast, data.col(e), source, sign);
        }
    }
    for (const Sides sides : {Sides::each, Sides::both, Sides::greater, Sides::less}) {
        PermutationTestOptions options;
        options.sides = sides;
        const PermutationTestResult result =
            permutation_test(data, hypothesis, rearrangements, options);
        Eigen::ArrayXXd counting = null_t.array();
        Eigen::ArrayXd observed = result.model.statistic;
        if (sides == Sides::less) {
            counting = -counting;
            observed = -observed;
        } else if (sides != Sides::greater) {
            counting = counting.abs();
            observed = observed.abs();
        }
        const Eigen::ArrayXd largest = counting.rowwise().maxCoeff();
        EXPECT_LT((result.null_maximum - largest).abs().maxCoeff(), 1e-9);
        for (Index e = 0; e < 45; ++e) {
            const auto own = static_cast<double>((counting.col(e) >= observed(e) - 1e-9).count());
            const auto family = static_cast<double>((largest >= observed(e) - 1e-9).count());
            EXPECT_EQ(result.p_permuted(e), (own + 1.0) / 131.0);
            EXPECT_EQ(result.p_fwe(e), (family + 1.0) / 131.0);
        }
        EXPECT_TRUE((result.q == benjamini_hochberg(result.model.p)).all());
    }
}

/// The components of a graph by colouring, and the largest extent and intensity.
struct PlainNetworks {
    std::vector<std::vector<Index>> components;
    double extent = 0.0;
    double intensity = 0.0;
};

PlainNetworks plain_networks(const Eigen::ArrayXd &values, double threshold, int nodes)
{
    const std::vector<NodePair> pairs = node_pairs(nodes);
    std::vector<int> colour(static_cast<std::size_t>(nodes));
    for (int n = 0; n < nodes; ++n) {
        colour[n] = n;
    }
    for (int round = 0; round < nodes; ++round) {
        for (Index e = 0; e < values.size(); ++e) {
            if (values(e) > threshold) {
                colour[pairs[e].first] = colour[pairs[e].second] =
                    std::min(colour[pairs[e].first], colour[pairs[e].second]);
            }
        }
    }
    PlainNetworks found;
    for (int n = 0; n < nodes; ++n) {
        std::vector<Index> edges;
        double intensity = 0.0;
        for (Index e = 0; e < values.size(); ++e) {
            if (values(e) > threshold && colour[pairs[e].first] == n) {
                edges.push_back(e);
                intensity += values(e) - threshold;
            }
        }
        found.extent = std::max(found.extent, static_cast<double>(edges.size()));
        found.intensity = std::max(found.intensity, intensity);
        if (!edges.empty()) {
            found.components.push_back(edges);
        }
    }
    return found;
}

TEST(PermutationTest, NetworksOfEachSide)
{
    const int nodes = 12;
    const Eigen::MatrixXd design = study_design(14, 9);
    EdgeData data = RandomNumbers(6).data(14, edge_count(nodes));
    data.leftCols(8) += 1.5 * design.col(1) * Eigen::RowVectorXd::Ones(8);
    data.rightCols(5) -= 1.5 * design.col(1) * Eigen::RowVectorXd::Ones(5);
    RearrangementOptions wanted;
    wanted.count = 90;
    for (const char *contrast : {"c1", "c1;c3"}) {
        const Hypothesis hypothesis = hypothesis_of(design, contrast);
        const Rearrangements rearrangements(hypothesis, wanted);
        std::vector<Eigen::ArrayXd> rearranged;
        std::vector<int> source(14);
        std::vector<double> sign(14);
        for (Index p = 0; p < 90; ++p) {
            rearrangements.get(p, source.data(), sign.data());
            rearranged.emplace_back(data.cols());
            for (Index e = 0; e < data.cols(); ++e) {
                rearranged.back()(e) =
                    two_model_statistic(design, hypothesis.contrast, data.col(e), source, sign);
            }
        }
        for (const Sides sides : {Sides::each, Sides::both, Sides::greater, Sides::less}) {
            PermutationTestOptions options;
            options.sides = sides;
            options.thresholds = {1.0, 2.0, 50.0};
            const PermutationTestResult result =
                permutation_test(data, hypothesis, rearrangements, options);
            ASSERT_EQ(result.networks.size(), 3U);

            std::vector<Side> graphs = {Side::greater, Side::less};
            if (hypothesis.is_f() || sides == Sides::greater) {
                graphs = {Side::greater};
            } else if (sides == Sides::less) {
                graphs = {Side::less};
            } else if (sides == Sides::both) {
                graphs = {Side::both};
            }
            const auto on = [](const Eigen::ArrayXd &t, Side side) {
                const double factor = side == Side::less ? -1.0 : 1.0;
                return Eigen::ArrayXd(side == Side::both ? t.abs().eval() : (factor * t).eval());
            };
            for (std::size_t at = 0; at < 3; ++at) {
                const NetworkResult &network = result.networks[at];
                EXPECT_EQ(network.threshold, options.thresholds[at]);
                Eigen::ArrayXd extents = Eigen::ArrayXd::Zero(90);
                Eigen::ArrayXd intensities = Eigen::ArrayXd::Zero(90);
                for (Index p = 0; p < 90; ++p) {
                    for (const Side side : graphs) {
                        const PlainNetworks plain =
                            plain_networks(on(rearranged[p], side), network.threshold, nodes);
                        extents(p) = std::max(extents(p), plain.extent);
                        intensities(p) = std::max(intensities(p), plain.intensity);
                    }
                }
                EXPECT_TRUE((network.null_extent == extents).all());
                EXPECT_LT((network.null_intensity - intensities).abs().maxCoeff(), 1e-8);

                std::size_t components = 0;
                for (const Side side : graphs) {
                    const Eigen::ArrayXd values = on(result.model.statistic, side);
                    const PlainNetworks plain = plain_networks(values, network.threshold, nodes);
                    components += plain.components.size();
                    for (const Component &component : network.components) {
                        if (component.side != side) {
                            continue;
                        }
                        EXPECT_EQ(std::count(plain.components.begin(), plain.components.end(),
                                             component.edges),
                                  1);
                        double intensity = 0.0;
                        for (const Index e : component.edges) {
                            intensity += values(e) - network.threshold;
                        }
                        EXPECT_NEAR(component.intensity, intensity, 1e-10);
                        const auto extent = static_cast<double>(component.edges.size());
                        EXPECT_EQ(component.p_extent,
                                  (static_cast<double>((extents >= extent).count()) + 1.0) / 91.0);
                        EXPECT_EQ(component.p_intensity,
                                  (static_cast<double>(
                                       (intensities >= intensity * (1.0 - 1e-9)).count()) +
                                   1.0) /
                                      91.0);
                    }
                }
                EXPECT_EQ(network.components.size(), components);
            }
        }
    }
}

TEST(PermutationTest, AllRearrangementsOfASmallStudy)
{
    // One sample of eight: 256 flips of signs. The mirrored one reaches |t| as well.
    EdgeData data = (RandomNumbers(3).data(8, 1).cwiseAbs().array() + 0.1).matrix();
    const Hypothesis mean = hypothesis_of(Eigen::MatrixXd::Ones(8, 1), "c0");
    PermutationTestResult result = permutation_test(data, mean, Rearrangements(mean, {}));
    EXPECT_TRUE(result.is_exhaustive);
    EXPECT_EQ(result.rearrangements, 256);
    EXPECT_EQ(result.p_permuted(0), 2.0 / 256.0);
    PermutationTestOptions greater;
    greater.sides = Sides::greater;
    EXPECT_EQ(permutation_test(data, mean, Rearrangements(mean, {}), greater).p_fwe(0),
              1.0 / 256.0);

    // Two groups of four that do not overlap: 70 ways to part them, two of them this extreme.
    Eigen::MatrixXd design = Eigen::MatrixXd::Ones(8, 2);
    design.col(1).head(4).setZero();
    data.col(0) << 1, 2, 3, 4.5, 15, 16, 17, 18.5;
    const Hypothesis groups = hypothesis_of(design, "c1");
    result = permutation_test(data, groups, Rearrangements(groups, {}));
    EXPECT_EQ(result.rearrangements, 70);
    EXPECT_EQ(result.p_permuted(0), 2.0 / 70.0);
}

bool same_bytes(const Eigen::ArrayXd &a, const Eigen::ArrayXd &b)
{
    return a.size() == b.size() &&
           std::memcmp(a.data(), b.data(), static_cast<std::size_t>(a.size()) * sizeof(double)) ==
               0;
}

TEST(PermutationTest, SameBytesOnAnyNumberOfThreads)
{
    const int nodes = 15;
    const Eigen::MatrixXd design = study_design(20, 1);
    const EdgeData data = RandomNumbers(12).data(20, edge_count(nodes));
    const Hypothesis hypothesis = hypothesis_of(design, "c1");
    RearrangementOptions wanted;
    wanted.count = 1001;
    const Rearrangements rearrangements(hypothesis, wanted);
    const auto run = [&](int threads) {
        PermutationTestOptions options;
        options.threads = threads;
        options.thresholds = {1.5, 2.5};
        return permutation_test(data, hypothesis, rearrangements, options);
    };
    const PermutationTestResult one = run(1);
    for (const int threads : {2, 3, 16, 0}) {
        const PermutationTestResult other = run(threads);
        EXPECT_TRUE(same_bytes(one.model.statistic, other.model.statistic));
        EXPECT_TRUE(same_bytes(one.p_permuted, other.p_permuted));
        EXPECT_TRUE(same_bytes(one.p_fwe, other.p_fwe));
        EXPECT_TRUE(same_bytes(one.null_maximum, other.null_maximum));
        for (std::size_t t = 0; t < 2; ++t) {
            EXPECT_TRUE(same_bytes(one.networks[t].null_extent, other.networks[t].null_extent));
            EXPECT_TRUE(
                same_bytes(one.networks[t].null_intensity, other.networks[t].null_intensity));
            ASSERT_EQ(one.networks[t].components.size(), other.networks[t].components.size());
            for (std::size_t c = 0; c < one.networks[t].components.size(); ++c) {
                EXPECT_EQ(one.networks[t].components[c].p_intensity,
                          other.networks[t].components[c].p_intensity);
            }
        }
    }
    // Another seed gives other numbers.
    wanted.seed = 2;
    EXPECT_FALSE(same_bytes(
        one.null_maximum,
        permutation_test(data, hypothesis, Rearrangements(hypothesis, wanted)).null_maximum));
}

TEST(PermutationTest, TellsHowFarItIsAndCanBeEnded)
{
    const Hypothesis hypothesis = hypothesis_of(study_design(20, 1), "c1");
    const EdgeData data = RandomNumbers(12).data(20, 3);
    RearrangementOptions wanted;
    wanted.count = 1000;
    PermutationTestOptions options;
    options.threads = 2;
    Index last = 0;
    options.progress = [&](Index done, Index count) {
        EXPECT_GT(done, last);
        EXPECT_EQ(count, 1000);
        last = done;
    };
    permutation_test(data, hypothesis, Rearrangements(hypothesis, wanted), options);
    EXPECT_EQ(last, 1000);
    options.progress = [](Index, Index) { throw std::runtime_error("enough"); };
    EXPECT_THROW(permutation_test(data, hypothesis, Rearrangements(hypothesis, wanted), options),
                 std::runtime_error);
}

TEST(PermutationTest, RefusesWhatDoesNotFit)
{
    const Hypothesis hypothesis = hypothesis_of(study_design(20, 1), "c1");
    const Rearrangements rearrangements(hypothesis, {});
    const auto text = [&](const EdgeData &data, double threshold) {
        PermutationTestOptions options;
        options.thresholds = {threshold};
        return error_text([&] { permutation_test(data, hypothesis, rearrangements, options); });
    };
    const EdgeData good = RandomNumbers(1).data(20, 6);
    EXPECT_EQ(text(good, 2.0), "no error");
    EXPECT_EQ(text(good.topRows(19), 2.0), "the data have 19 subjects, the design has 20");
    EXPECT_EQ(text(good.leftCols(5), 2.0), "5 edges are no upper triangle of a matrix");
    EXPECT_EQ(text(good, -1.0),
              "the threshold of a network is -1.000000; it is a statistic of 0 or above");
    EXPECT_NE(text(good, std::nan("")), "no error");
    EXPECT_NE(text(good, std::numeric_limits<double>::infinity()), "no error");
    EdgeData missing = good;
    missing(7, 2) = std::nan("");
    EXPECT_EQ(text(missing, 2.0),
              "edge 2 of subject 7 is not a finite number; tests run on complete data");
    const Hypothesis smaller = hypothesis_of(study_design(10, 1), "c1");
    EXPECT_EQ(error_text([&] { permutation_test(good, hypothesis, Rearrangements(smaller, {})); }),
              "the rearrangements are of 10 subjects, the design has 20");
}

TEST(FalseDiscovery, BenjaminiAndHochberg)
{
    // Worked by hand: 0.01 * 5, then the minima from behind.
    Eigen::ArrayXd p(6);
    p << 0.04, 0.01, std::nan(""), 0.9, 0.03, 0.02;
    const Eigen::ArrayXd q = benjamini_hochberg(p);
    EXPECT_NEAR(q(0), 0.05, 1e-15);
    EXPECT_NEAR(q(1), 0.05, 1e-15);
    EXPECT_TRUE(std::isnan(q(2)));
    EXPECT_NEAR(q(3), 0.9, 1e-15);
    EXPECT_NEAR(q(4), 0.05, 1e-15);
    EXPECT_NEAR(q(5), 0.05, 1e-15);
    p << 0.001, 0.8, 0.8, 0.02, 0.2, 1.0;
    const Eigen::ArrayXd other = benjamini_hochberg(p);
    EXPECT_NEAR(other(0), 0.006, 1e-15);
    EXPECT_NEAR(other(3), 0.06, 1e-15);
    EXPECT_NEAR(other(4), 0.4, 1e-15);
    EXPECT_NEAR(other(1), 0.96, 1e-15);
    EXPECT_NEAR(other(5), 1.0, 1e-15);
    EXPECT_EQ(benjamini_hochberg(Eigen::ArrayXd()).size(), 0);
    EXPECT_EQ(error_text([] { benjamini_hochberg(Eigen::ArrayXd::Constant(2, 1.5)); }),
              "a p value lies between 0 and 1, number 0 is 1.500000");
    EXPECT_EQ(error_text([] { benjamini_hochberg(Eigen::ArrayXd::Constant(2, -0.5)); }),
              "a p value lies between 0 and 1, number 0 is -0.500000");
}

} // namespace
