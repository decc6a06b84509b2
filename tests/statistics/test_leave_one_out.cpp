// SPDX-License-Identifier: GPL-3.0-or-later
//
// Leaving a subject out, against models fitted again without it.
#include <cmath>
#include <set>

#include <gtest/gtest.h>

#include "statistics/components.h"
#include "statistics/leave_one_out.h"
#include "tests/statistics/error_text.h"
#include "tests/statistics/random_data.h"

namespace
{

using namespace statistics;

const std::vector<std::string> names = {"(Intercept)", "group", "age"};

template <typename Matrix>
Matrix without_row(const Matrix &matrix, Index row)
{
    Matrix rest(matrix.rows() - 1, matrix.cols());
    rest.topRows(row) = matrix.topRows(row);
    rest.bottomRows(rest.rows() - row) = matrix.bottomRows(rest.rows() - row);
    return rest;
}

class LeaveOneOutOfAStudy : public testing::Test
{
protected:
    void SetUp() override
    {
        m_design.col(0).setOnes();
        for (Index i = 0; i < 22; ++i) {
            m_design(i, 1) = i % 2 == 0 ? 1.0 : 0.0;
        }
        m_data.leftCols(10) += m_design.col(1) * Eigen::RowVectorXd::Ones(10);
        m_data.row(5).array() += 4.0; // an outlier
    }
    Hypothesis question(const Eigen::MatrixXd &design, const std::string &contrast = "group") const
    {
        return make_hypothesis(design, names, read_contrast("x=" + contrast, names));
    }

    RandomNumbers m_random{8};
    Eigen::MatrixXd m_design = m_random.normal(22, 3);
    EdgeData m_data = m_random.data(22, edge_count(11));
};

TEST_F(LeaveOneOutOfAStudy, IsTheModelOfTheOthers)
{
    for (const char *contrast : {"group", "age - 2*group", "(Intercept)"}) {
        const LeaveOneOut model(m_data, question(m_design, contrast));
        for (Index i = 0; i < 22; ++i) {
            const WithoutSubject left = model.without(i);
            const GlmResult again =
                glm(without_row(m_data, i), question(without_row(m_design, i), contrast));
            EXPECT_EQ(left.df, again.df);
            ASSERT_LT((left.estimate - again.estimate).abs().maxCoeff(), 1e-11);
            ASSERT_LT((left.t - again.statistic).abs().maxCoeff(), 1e-9);
        }
    }
}

TEST_F(LeaveOneOutOfAStudy, LargestChangesAndNetworks)
{
    const LeaveOneOut model(m_data, question(m_design));
    const GlmResult all = glm(m_data, question(m_design));
    const double threshold = 1.8;
    const auto largest = [&](const Eigen::ArrayXd &t) {
        std::vector<Component> both = find_components(t, threshold);
        const std::vector<Component> less = find_components(-t, threshold);
        both.insert(both.end(), less.begin(), less.end());
        std::set<Index> edges;
        double intensity = 0.0;
        for (const Component &component : both) {
            if (component.edges.size() > edges.size() ||
                (component.edges.size() == edges.size() && component.intensity > intensity)) {
                edges = {component.edges.begin(), component.edges.end()};
                intensity = component.intensity;
            }
        }
        return edges;
    };
    const std::set<Index> with_all = largest(all.statistic);
    ASSERT_GE(with_all.size(), 3U);
    const std::vector<Influence> influences = model.influences(threshold);
    ASSERT_EQ(influences.size(), 22U);
    double leverages = 0.0;
    for (Index i = 0; i < 22; ++i) {
        const Influence &influence = influences[i];
        const GlmResult again = glm(without_row(m_data, i), question(without_row(m_design, i)));
        const Eigen::ArrayXd t_changes = again.statistic.abs() - all.statistic.abs();
        const Eigen::ArrayXd estimate_changes = again.estimate - all.estimate;
        EXPECT_NEAR(std::abs(influence.t_change), t_changes.abs().maxCoeff(), 1e-9);
        EXPECT_NEAR(influence.t_change, t_changes(influence.t_edge), 1e-9);
        EXPECT_NEAR(std::abs(influence.estimate_change), estimate_changes.abs().maxCoeff(), 1e-11);
        EXPECT_NEAR(influence.estimate_change, estimate_changes(influence.estimate_edge), 1e-11);
        const std::set<Index> own = largest(again.statistic);
        EXPECT_EQ(influence.extent, static_cast<Index>(own.size()));
        double shared = 0.0;
        for (const Index e : own) {
            shared += with_all.count(e) > 0 ? 1.0 : 0.0;
        }
        EXPECT_NEAR(influence.jaccard,
                    shared / (static_cast<double>(own.size() + with_all.size()) - shared), 1e-15);
        leverages += influence.leverage;
    }
    EXPECT_NEAR(leverages, 3.0, 1e-12);
    EXPECT_EQ(model.influences(threshold, Sides::each, 1)[5].t_change,
              model.influences(threshold, Sides::each, 3)[5].t_change);
    EXPECT_EQ(model.influences(100.0)[0].jaccard, 1.0) << "no network with or without";
    EXPECT_EQ(model.influences()[0].extent, 0);
}

TEST_F(LeaveOneOutOfAStudy, NetworksOfEverySide)
{
    const LeaveOneOut model(m_data, question(m_design));
    const Eigen::ArrayXd t = model.without(3).t;
    const auto extent = [](const Eigen::ArrayXd &values) {
        return static_cast<Index>(find_components(values, 1.5).front().edges.size());
    };
    EXPECT_EQ(model.influences(1.5, Sides::greater)[3].extent, extent(t));
    EXPECT_EQ(model.influences(1.5, Sides::less)[3].extent, extent(-t));
    EXPECT_EQ(model.influences(1.5, Sides::both)[3].extent, extent(t.abs()));
}

TEST_F(LeaveOneOutOfAStudy, SubjectsThatTheModelNeedsHaveNone)
{
    m_design.col(2).setZero();
    m_design(7, 2) = 1.0; // a column that only subject 7 has
    m_data.col(3).setConstant(1.5);
    const LeaveOneOut model(m_data, question(m_design));
    EXPECT_TRUE(model.without(7).t.isNaN().all());
    const std::vector<Influence> influences = model.influences(2.0);
    EXPECT_NEAR(influences[7].leverage, 1.0, 1e-12);
    EXPECT_TRUE(std::isnan(influences[7].t_change));
    EXPECT_TRUE(std::isnan(influences[7].jaccard));
    EXPECT_EQ(influences[7].t_edge, -1);
    EXPECT_EQ(influences[7].extent, 0);
    EXPECT_EQ(model.without(2).t(3), 0.0) << "a constant edge";
    EXPECT_TRUE(model.without(2).t.allFinite());
}

TEST_F(LeaveOneOutOfAStudy, RefusesWhatHasNoT)
{
    EXPECT_EQ(error_text([&] { LeaveOneOut(m_data, question(m_design, "group;age")); }),
              "contrast x is an F; the influence of subjects is that on a t");
    EXPECT_EQ(error_text([&] { LeaveOneOut(m_data.topRows(4), question(m_design.topRows(4))); }),
              "with one degree of freedom no subject can be left out");
    EXPECT_EQ(error_text([&] { LeaveOneOut(m_data.topRows(9), question(m_design)); }),
              "the data have 9 subjects, the design has 22");
    EXPECT_EQ(error_text([&] { LeaveOneOut(m_data, question(m_design)).without(22); }),
              "there is no subject 22");
    EXPECT_EQ(error_text([&] { LeaveOneOut(m_data, question(m_design)).without(-1); }),
              "there is no subject -1");
    EXPECT_EQ(error_text([&] { LeaveOneOut(m_data, question(m_design)).influences(-2.0); }),
              "the threshold of a network is a t of 0 or above");
}

} // namespace
