// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include "statistics/correlation.h"
#include "statistics/distributions.h"
#include "statistics/false_discovery.h"
#include "statistics/qcfc.h"
#include "tests/statistics/error_text.h"
#include "tests/statistics/random_data.h"

namespace
{

using namespace statistics;

/// What a model of the covariates and a constant leaves of some values.
Eigen::VectorXd left_over(const Eigen::VectorXd &y, const Eigen::MatrixXd &covariates)
{
    Eigen::MatrixXd m(y.size(), covariates.cols() + 1);
    m.col(0).setOnes();
    m.rightCols(covariates.cols()) = covariates;
    return y - m * (m.transpose() * m).inverse() * m.transpose() * y;
}

class QcFcOfAStudy : public testing::Test
{
protected:
    RandomNumbers m_random{21};
    Eigen::VectorXd m_fd = m_random.normal(30, 1).array().exp();
    Eigen::MatrixXd m_covariates = m_random.normal(30, 2);
    EdgeData m_data = m_random.data(30, 45);
    Eigen::ArrayXd m_distances = m_random.normal(45, 1).array().abs() * 60.0;
    const std::vector<std::string> m_names = {"age", "sex"};

    void SetUp() override
    {
        m_data.leftCols(20) += 0.5 * m_fd * Eigen::RowVectorXd::Ones(20);
        m_data += m_covariates.col(0) * Eigen::RowVectorXd::Ones(45);
    }
};

TEST_F(QcFcOfAStudy, IsThePartialCorrelationWithMotion)
{
    const QcFc result = qcfc(m_data, m_fd, m_covariates, m_names, m_distances);
    EXPECT_EQ(result.df, 30.0 - 2.0 - 2.0);
    const Eigen::VectorXd motion = left_over(m_fd, m_covariates);
    for (Index e = 0; e < 45; ++e) {
        const double r = pearson(motion.array(), left_over(m_data.col(e), m_covariates).array());
        EXPECT_NEAR(result.r(e), r, 1e-12);
        EXPECT_NEAR(result.p(e), t_two_sided(r * std::sqrt(26.0 / (1.0 - r * r)), 26), 1e-11);
    }
    EXPECT_TRUE((result.q == benjamini_hochberg(result.p)).all());
    EXPECT_EQ(result.share_p_below_05, static_cast<double>((result.p < 0.05).count()) / 45.0);
    EXPECT_EQ(result.share_q_below_05, static_cast<double>((result.q < 0.05).count()) / 45.0);
    EXPECT_GT(result.share_p_below_05, 0.1);
    std::vector<double> sizes(45);
    Eigen::ArrayXd::Map(sizes.data(), 45) = result.r.abs();
    std::sort(sizes.begin(), sizes.end());
    EXPECT_EQ(result.median_absolute_r, sizes[22]);
    EXPECT_EQ(result.distance_dependence, spearman(result.r, m_distances));
    EXPECT_EQ(result.distances, 45);
}

TEST_F(QcFcOfAStudy, AConstantIsAddedOnlyIfItIsMissing)
{
    Eigen::MatrixXd with_constant(30, 3);
    with_constant << Eigen::VectorXd::Ones(30), m_covariates;
    Eigen::MatrixXd groups = Eigen::MatrixXd::Zero(30, 2);
    groups.col(0).head(13).setOnes();
    groups.col(1).tail(17).setOnes();
    const QcFc plain = qcfc(m_data, m_fd, m_covariates, m_names);
    const QcFc written = qcfc(m_data, m_fd, with_constant, {"(Intercept)", "age", "sex"});
    EXPECT_EQ(written.df, plain.df);
    EXPECT_LT((written.r - plain.r).abs().maxCoeff(), 1e-13);
    EXPECT_EQ(qcfc(m_data, m_fd, groups, {"g[1]", "g[2]"}).df, 27.0);
    EXPECT_EQ(qcfc(m_data, m_fd, groups.leftCols(1), {"g[1]"}).df, 27.0);
    const QcFc none = qcfc(m_data, m_fd, Eigen::MatrixXd(), {});
    EXPECT_EQ(none.df, 28.0);
    EXPECT_NEAR(none.r(3), pearson(m_fd.array(), m_data.col(3).array()), 1e-13);
}

TEST_F(QcFcOfAStudy, ConstantEdgesAndUnknownDistancesAreLeftOut)
{
    m_data.col(4).setConstant(0.25);
    m_data.col(30) = 3.0 * m_covariates.col(1);
    m_distances(0) = std::nan("");
    const QcFc result = qcfc(m_data, m_fd, m_covariates, m_names, m_distances);
    EXPECT_TRUE(std::isnan(result.r(4)));
    EXPECT_TRUE(std::isnan(result.p(30)));
    EXPECT_TRUE(std::isnan(result.q(4)));
    EXPECT_EQ(result.distances, 42);
    EXPECT_EQ(result.share_p_below_05, static_cast<double>((result.p < 0.05).count()) / 43.0);
    EXPECT_TRUE(std::isnan(qcfc(m_data, m_fd, m_covariates, m_names).distance_dependence));
}

TEST(QcFc, OfFourSubjectsByHand)
{
    Eigen::VectorXd fd(4);
    fd << 0, 0, 1, 1;
    EdgeData data(4, 4);
    data.col(0) = fd;
    data.col(1) = 0.5 - 0.5 * fd.array();
    data.col(2) << 0, 1, 0, 1;
    data.col(3) << 0, 0, 0, 1;
    const QcFc result = qcfc(data, fd, Eigen::MatrixXd(), {});
    EXPECT_EQ(result.df, 2.0);
    EXPECT_EQ(result.r(0), 1.0);
    EXPECT_EQ(result.r(1), -1.0);
    EXPECT_EQ(result.p(0), 0.0);
    EXPECT_EQ(result.p(1), 0.0);
    EXPECT_NEAR(result.r(2), 0.0, 1e-15);
    EXPECT_NEAR(result.p(2), 1.0, 1e-15);
    // r^2 = 1/3 is a t of 1, beyond which Student's distribution on 2 has 1 - 1/sqrt(3).
    EXPECT_NEAR(result.r(3), std::sqrt(1.0 / 3.0), 1e-15);
    EXPECT_NEAR(result.p(3), 1.0 - std::sqrt(1.0 / 3.0), 1e-14);
    EXPECT_EQ(result.share_p_below_05, 0.5);
    EXPECT_EQ(result.share_q_below_05, 0.5);
    EXPECT_NEAR(result.median_absolute_r, (1.0 + std::sqrt(1.0 / 3.0)) / 2.0, 1e-15);
}

TEST_F(QcFcOfAStudy, OfConstantEdgesAloneNothingIsKnown)
{
    const QcFc result =
        qcfc(EdgeData::Constant(30, 45, 0.25), m_fd, m_covariates, m_names, m_distances);
    EXPECT_TRUE(result.r.isNaN().all());
    EXPECT_TRUE(std::isnan(result.share_p_below_05));
    EXPECT_TRUE(std::isnan(result.share_q_below_05));
    EXPECT_TRUE(std::isnan(result.median_absolute_r));
    EXPECT_TRUE(std::isnan(result.distance_dependence));
    EXPECT_EQ(result.distances, 0);
}

TEST_F(QcFcOfAStudy, RefusesWhatTellsNothing)
{
    const auto text = [&](const Eigen::VectorXd &fd, const Eigen::MatrixXd &covariates,
                          const std::vector<std::string> &names) {
        return error_text([&] { qcfc(m_data, fd, covariates, names); });
    };
    EXPECT_EQ(text(Eigen::VectorXd::Constant(30, 0.2), m_covariates, m_names),
              "mean FD is the same in all subjects, or follows from the covariates");
    EXPECT_EQ(text(2.0 * m_covariates.col(0), m_covariates, m_names),
              "mean FD is the same in all subjects, or follows from the covariates");
    EXPECT_EQ(text(m_fd.head(29), m_covariates, m_names),
              "mean FD or a covariate is missing for a subject: 29 values of FD for 30 subjects");
    Eigen::VectorXd unknown = m_fd;
    unknown(7) = std::nan("");
    Eigen::MatrixXd gap = m_covariates;
    gap(7, 1) = std::nan("");
    for (const auto &[fd, covariates] : {std::pair(unknown, m_covariates), std::pair(m_fd, gap)}) {
        EXPECT_EQ(text(fd, covariates, m_names),
                  "mean FD or a covariate is missing for a subject: 30 values of FD for 30 "
                  "subjects");
    }
    EXPECT_EQ(text(m_fd, m_covariates.topRows(3), m_names), "covariates of 3 subjects, data of 30");
    EXPECT_EQ(text(m_fd, m_covariates, {"age"}), "1 name for 2 covariates");
    Eigen::MatrixXd bad = m_covariates;
    bad.col(1) = 2.0 * bad.col(0);
    EXPECT_EQ(text(m_fd, bad, m_names), "the design is collinear: sex follows from age");
    EXPECT_EQ(error_text(
                  [&] { qcfc(m_data.topRows(4), m_fd.head(4), m_covariates.topRows(4), m_names); }),
              "4 subjects with 3 columns beside motion leave no degree of freedom for QC-FC");
    EXPECT_EQ(error_text([&] { qcfc(m_data, m_fd, m_covariates, m_names, m_distances.head(7)); }),
              "7 distances for 45 edges");
}

} // namespace
