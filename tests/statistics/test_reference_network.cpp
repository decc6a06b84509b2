// SPDX-License-Identifier: GPL-3.0-or-later
//
// The network-based statistic of 48 subjects, as three other programs compute it.
#include <algorithm>

#include <gtest/gtest.h>

#include "statistics/design.h"
#include "statistics/permutation_test.h"
#include "tests/statistics/nbs_reference.h"

namespace
{

using namespace statistics;

constexpr double threshold = 2.6870134922422126;

class ReferenceNetwork : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!nbs_reference::is_there()) {
            GTEST_SKIP() << "the folder of reference numbers is not there";
        }
        const Design design = make_design("Group", nbs_reference::subjects());
        ASSERT_EQ(design.columns, (std::vector<std::string>{"(Intercept)", "Group[Patient]"}));
        m_hypothesis = make_hypothesis(design.matrix, design.columns,
                                       read_contrast("group = Group[Patient]", design.columns));
        m_data = nbs_reference::edges();
    }

    PermutationTestResult test(Sides sides) const
    {
        RearrangementOptions given;
        given.given = nbs_reference::permutations();
        PermutationTestOptions options;
        options.sides = sides;
        options.thresholds = {threshold};
        return permutation_test(m_data, m_hypothesis, Rearrangements(m_hypothesis, given), options);
    }

    Hypothesis m_hypothesis;
    EdgeData m_data;
};

/// p of b of 1,000 permutations.
double p_of(int b)
{
    return (b + 1.0) / 1001.0;
}

struct Expected {
    std::size_t edges;
    double intensity;
    int b_extent;
    int b_intensity;
};

void expect_components(const std::vector<Component> &found, const std::vector<Expected> &wanted)
{
    ASSERT_EQ(found.size(), wanted.size());
    for (std::size_t c = 0; c < found.size(); ++c) {
        EXPECT_EQ(found[c].edges.size(), wanted[c].edges) << c;
        EXPECT_NEAR(found[c].intensity, wanted[c].intensity, 1e-10) << c;
        EXPECT_EQ(found[c].p_extent, p_of(wanted[c].b_extent)) << c;
        EXPECT_EQ(found[c].p_intensity, p_of(wanted[c].b_intensity)) << c;
    }
}

TEST_F(ReferenceNetwork, TOfEveryEdge)
{
    const GlmResult result = glm(m_data, m_hypothesis);
    const Eigen::ArrayXd wanted = nbs_reference::t_values();
    ASSERT_EQ(result.statistic.size(), wanted.size());
    EXPECT_EQ(result.df, 46.0);
    EXPECT_LT((result.statistic - wanted).abs().maxCoeff(), 1e-10);
    EXPECT_NEAR(result.statistic.abs().sum(), 486.1935540985611, 1e-10);
    EXPECT_NEAR(result.p.minCoeff(), 0.0002502539544790837, 1e-15);
    EXPECT_EQ((result.p < 0.05).count(), 84);
}

TEST_F(ReferenceNetwork, BothSidesMakeOneComponentOf28Edges)
{
    expect_components(test(Sides::both).networks[0].components, {{28, 10.754851253582796, 1, 1}});
}

TEST_F(ReferenceNetwork, PatientsAboveControls)
{
    expect_components(test(Sides::greater).networks[0].components,
                      {{5, 0.9802065567214835, 48, 125},
                       {2, 0.6330700520149701, 240, 204},
                       {2, 0.446650442866694, 240, 262}});
}

TEST_F(ReferenceNetwork, PatientsBelowControls)
{
    expect_components(test(Sides::less).networks[0].components, {{19, 8.69492420197965, 1, 0}});
}

TEST_F(ReferenceNetwork, EachSideAgainstTheLargerOne)
{
    const PermutationTestResult each = test(Sides::each);
    const NetworkResult greater = test(Sides::greater).networks[0];
    const NetworkResult less = test(Sides::less).networks[0];
    const NetworkResult &network = each.networks[0];
    ASSERT_EQ(network.components.size(), 4U);
    EXPECT_TRUE((network.null_extent == greater.null_extent.max(less.null_extent)).all());
    EXPECT_TRUE((network.null_intensity == greater.null_intensity.max(less.null_intensity)).all());
    EXPECT_EQ(network.components[3].side, Side::less);
    EXPECT_EQ(network.components[3].edges.size(), 19U);
}

TEST_F(ReferenceNetwork, FamilyWiseErrorAndFalseDiscoveries)
{
    const PermutationTestResult result = test(Sides::both);
    EXPECT_NEAR(result.q.minCoeff(), 0.0867162547968655, 1e-12);
    EXPECT_EQ(result.p_fwe.minCoeff(), p_of(44));
    std::vector<double> maxima(result.null_maximum.begin(), result.null_maximum.end());
    std::sort(maxima.begin(), maxima.end());
    EXPECT_NEAR(maxima[950], 3.9354390065427975, 1e-10) << "50 of 1,000 reach it";
}

} // namespace
