// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include "statistics/hypothesis.h"
#include "tests/statistics/error_text.h"
#include "tests/statistics/random_data.h"

namespace
{

using namespace statistics;
using Names = std::vector<std::string>;

Eigen::MatrixXd with_constant(Eigen::MatrixXd design)
{
    design.col(0).setOnes();
    return design;
}

TEST(Hypothesis, DirectionsAreThoseOfTheDefinition)
{
    const Names names = {"(Intercept)", "a", "b", "c"};
    RandomNumbers random(2);
    const Eigen::MatrixXd m = with_constant(random.normal(20, 4));
    for (const char *text : {"x=a", "x=0.5*a - c", "x=a;b - c", "x=a;b;c", "x=(Intercept)"}) {
        SCOPED_TRACE(text);
        const Contrast contrast = read_contrast(text, names);
        const Hypothesis h = make_hypothesis(m, names, contrast);
        const Eigen::Index k = contrast.weights.rows();
        ASSERT_EQ(h.tested.cols(), k);
        ASSERT_EQ(h.nuisance.cols(), 4 - k);
        EXPECT_EQ(h.df, 16.0);

        const Eigen::MatrixXd inverse = (m.transpose() * m).inverse();
        const Eigen::MatrixXd directions = m * inverse * contrast.weights.transpose();
        const Eigen::MatrixXd reduced =
            m * Eigen::FullPivLU<Eigen::MatrixXd>(contrast.weights).kernel();
        EXPECT_NEAR((h.tested.transpose() * h.tested - Eigen::MatrixXd::Identity(k, k)).norm(), 0.0,
                    1e-12);
        EXPECT_NEAR((directions - h.tested * (h.tested.transpose() * directions)).norm(), 0.0,
                    1e-12);
        EXPECT_NEAR((reduced - h.nuisance * (h.nuisance.transpose() * reduced)).norm(), 0.0, 1e-12);
        EXPECT_NEAR((h.nuisance.transpose() * h.tested).norm(), 0.0, 1e-12);
        EXPECT_EQ(h.has_constant, std::string(text) != "x=(Intercept)");
        if (h.has_constant) {
            EXPECT_TRUE((h.nuisance.col(0).array() == 1.0 / std::sqrt(20.0)).all());
        }
        if (k == 1) {
            const Eigen::VectorXd y = random.normal(20, 1);
            const double estimate = (contrast.weights * inverse * m.transpose() * y)(0);
            EXPECT_NEAR(h.estimate_scale * h.tested.col(0).dot(y), estimate, 1e-12);
        }
    }
}

TEST(Hypothesis, ConstantMayLieInTheSpanOfCategories)
{
    const Names names = {"g[1]", "g[2]", "age"};
    Eigen::MatrixXd m = RandomNumbers(3).normal(10, 3);
    for (Eigen::Index i = 0; i < 10; ++i) {
        m(i, 0) = i < 4 ? 1.0 : 0.0;
        m(i, 1) = 1.0 - m(i, 0);
    }
    EXPECT_TRUE(make_hypothesis(m, names, read_contrast("x=g[1] - g[2]", names)).has_constant);
    EXPECT_TRUE(make_hypothesis(m, names, read_contrast("x=age", names)).has_constant);
    EXPECT_FALSE(make_hypothesis(m, names, read_contrast("x=g[1]", names)).has_constant);
    EXPECT_FALSE(
        make_hypothesis(m, names, read_contrast("x=0.5*g[1]+0.5*g[2]", names)).has_constant);
}

TEST(Hypothesis, NamesCollinearColumns)
{
    const Names names = {"(Intercept)", "a", "b", "c"};
    const auto text = [&](const Eigen::MatrixXd &m) {
        return error_text([&] { make_hypothesis(m, names, read_contrast("x=a", names)); });
    };
    const Eigen::MatrixXd good = with_constant(RandomNumbers(4).normal(9, 4));
    EXPECT_EQ(text(good), "no error");
    Eigen::MatrixXd bad = good;
    bad.col(3) = 2.0 * bad.col(1);
    EXPECT_EQ(text(bad), "the design is collinear: c follows from a");
    bad.col(3) = 1000.0 * bad.col(1) - 1e-3 * bad.col(2) + bad.col(0);
    EXPECT_EQ(text(bad), "the design is collinear: c follows from (Intercept) and a and b");
    bad.col(3) = bad.col(1) - bad.col(2);
    EXPECT_EQ(text(bad), "the design is collinear: c follows from a and b");
    bad = good;
    bad.col(2).setConstant(7.0);
    EXPECT_EQ(text(bad), "the design is collinear: b follows from (Intercept)");
    bad.col(2).setZero();
    EXPECT_EQ(text(bad), "the column b of the design is 0 in all rows");
    bad(4, 2) = std::nan("");
    EXPECT_EQ(text(bad), "contrast x or its design holds what is no finite number");
}

TEST(Hypothesis, ScalesOfColumnsDoNotMatter)
{
    const Names names = {"(Intercept)", "year", "tiny"};
    Eigen::MatrixXd m = with_constant(RandomNumbers(4).normal(12, 3));
    m.col(1) = 2020.0 + m.col(1).array();
    const Hypothesis plain = make_hypothesis(m, names, read_contrast("x=tiny", names));
    m.col(2) *= 1e-12;
    const Hypothesis scaled = make_hypothesis(m, names, read_contrast("x=tiny", names));
    EXPECT_NEAR((plain.tested - scaled.tested).norm(), 0.0, 1e-10);
}

TEST(Hypothesis, RefusesWhatHasNoAnswer)
{
    const Names names = {"(Intercept)", "a"};
    const Eigen::MatrixXd m = with_constant(RandomNumbers(4).normal(5, 2));
    EXPECT_EQ(
        error_text([&] { make_hypothesis(m.topRows(2), names, read_contrast("x=a", names)); }),
        "2 subjects for 2 columns of the design leave no degree of freedom");
    EXPECT_EQ(error_text([&] { make_hypothesis(m, names, read_contrast("x=a;2*a", names)); }),
              "the rows of contrast x depend on each other");
    EXPECT_EQ(error_text([&] {
                  make_hypothesis(m, names, read_contrast("x=a;(Intercept);a-(Intercept)", names));
              }),
              "the rows of contrast x depend on each other");
    EXPECT_EQ(error_text([&] {
                  make_hypothesis(m, names, {"x", Eigen::MatrixXd::Ones(1, 3)});
              }),
              "contrast x has 3 weights for 2 columns of the design");
    EXPECT_EQ(error_text([&] {
                  make_hypothesis(m, names, {"x", Eigen::MatrixXd(0, 2)});
              }),
              "contrast x has no row");
    Eigen::MatrixXd bad = m;
    bad(3, 1) = std::nan("");
    EXPECT_EQ(error_text([&] { make_hypothesis(bad, names, read_contrast("x=a", names)); }),
              "contrast x or its design holds what is no finite number");
    EXPECT_EQ(error_text([&] {
                  make_hypothesis(m, names, {"x", Eigen::MatrixXd::Constant(1, 2, 1.0 / 0.0)});
              }),
              "contrast x or its design holds what is no finite number");
    EXPECT_EQ(error_text([&] {
                  make_hypothesis(m, names, {"x", Eigen::MatrixXd::Zero(1, 2)});
              }),
              "contrast x: all weights of a row are 0");
    EXPECT_EQ(error_text([&] { make_hypothesis(m, {"a"}, read_contrast("x=a", names)); }),
              "1 name for 2 columns of the design");
}

} // namespace
