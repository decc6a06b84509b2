// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/measures.h"

#include <Eigen/LU>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <stdexcept>
#include <vector>

namespace
{

Eigen::MatrixXf randomSeries(int nodes, int volumes, float mean, unsigned seed)
{
    std::mt19937 generator(seed);
    std::normal_distribution<float> noise(0.0f, 10.0f);
    Eigen::MatrixXf series(nodes, volumes);
    for (int t = 0; t < volumes; ++t) {
        const float shared = noise(generator);
        for (int n = 0; n < nodes; ++n)
            series(n, t) = mean + shared + noise(generator);
    }
    return series;
}

/// Textbook correlation in double precision.
double pearson(const Eigen::MatrixXf &series, int a, int b)
{
    const Eigen::ArrayXd x = series.row(a).cast<double>().transpose().array();
    const Eigen::ArrayXd y = series.row(b).cast<double>().transpose().array();
    const Eigen::ArrayXd dx = x - x.mean();
    const Eigen::ArrayXd dy = y - y.mean();
    return (dx * dy).sum() / std::sqrt(dx.square().sum() * dy.square().sum());
}

bool allNaN(const Eigen::MatrixXf &matrix)
{
    return matrix.array().isNaN().all();
}

TEST(CorrelationMatrix, IsTheTextbookCorrelation)
{
    const Eigen::MatrixXf series = randomSeries(10, 121, 1000.0f, 1);
    const Eigen::MatrixXf r = correlationMatrix(series);
    ASSERT_EQ(r.rows(), 10);
    ASSERT_EQ(r.cols(), 10);
    for (int a = 0; a < 10; ++a) {
        for (int b = 0; b < 10; ++b)
            EXPECT_NEAR(r(a, b), pearson(series, a, b), 1e-5) << a << "," << b;
    }
}

TEST(CorrelationMatrix, DividesByTheNumberOfVolumesAndItsPopulationDeviations)
{
    // With a divisor of T - 1 in one place only, a series of two volumes would be off by 2.
    Eigen::MatrixXf series(2, 2);
    series << 1.0f, 3.0f, 2.0f, -2.0f;
    const Eigen::MatrixXf r = correlationMatrix(series);
    EXPECT_FLOAT_EQ(r(0, 0), 1.0f);
    EXPECT_FLOAT_EQ(r(0, 1), -1.0f);
    EXPECT_FLOAT_EQ(r(1, 0), -1.0f);
}

/// The settled form of one entry, step by step, with the library's power function called through a
/// pointer that the compiler cannot see through.
float settledEntry(const Eigen::MatrixXf &series, int a, int b)
{
    float (*volatile power)(float, float) = powf;
    const Eigen::ArrayXf x = series.row(a).transpose().array();
    const Eigen::ArrayXf y = series.row(b).transpose().array();
    const auto count = static_cast<float>(x.size());
    const Eigen::ArrayXf dx = x - x.sum() / count;
    const Eigen::ArrayXf dy = y - y.sum() / count;
    const auto deviation = [&](const Eigen::ArrayXf &d) {
        Eigen::ArrayXf squares(d.size());
        for (Eigen::Index t = 0; t < d.size(); ++t)
            squares(t) = power(d(t), 2.0f);
        return sqrtf(squares.sum() / count - power(d.sum() / count, 2.0f));
    };
    return (dx * dy).sum() / (count * deviation(dx) * deviation(dy));
}

TEST(CorrelationMatrix, KeepsItsSettledForm)
{
    const Eigen::MatrixXf series = randomSeries(12, 200, 500.0f, 2);
    const Eigen::MatrixXf r = correlationMatrix(series);
    for (int a = 0; a < 12; ++a) {
        // The order of additions inside a reduction is free, so the last bits are.
        for (int b = 0; b < 12; ++b)
            EXPECT_NEAR(r(a, b), settledEntry(series, a, b), 5e-7f) << a << "," << b;
        EXPECT_NEAR(r(a, a), 1.0f, 1e-5f);
    }
}

/// Equal bits; any NaN equals any other.
bool same(float a, float b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

/// With two volumes no sum can be taken in another order, so that each bit is settled: single
/// precision throughout, and squares by the power function. Around 3e7 the mean is rounded by as
/// much as the values deviate, and what is left of it counts.
TEST(CorrelationMatrix, OfTwoVolumesIsItsSettledFormToTheBit)
{
    float (*volatile power)(float, float) = powf;
    const auto deviation = [&](const Eigen::Array2f &d) {
        return sqrtf((power(d(0), 2.0f) + power(d(1), 2.0f)) / 2.0f -
                     power((d(0) + d(1)) / 2.0f, 2.0f));
    };
    std::mt19937 generator(13);
    std::normal_distribution<float> usual(300.0f, 100.0f);
    std::normal_distribution<float> large(3e7f, 10.0f);
    for (int n = 0; n < 40000; ++n) {
        auto &value = n % 2 == 0 ? usual : large;
        Eigen::MatrixXf series(2, 2);
        series << value(generator), value(generator), value(generator), value(generator);
        const Eigen::MatrixXf r = correlationMatrix(series);
        for (int a = 0; a < 2; ++a) {
            for (int b = 0; b < 2; ++b) {
                const Eigen::Array2f x = series.row(a).transpose().array();
                const Eigen::Array2f y = series.row(b).transpose().array();
                const Eigen::Array2f dx = x - (x(0) + x(1)) / 2.0f;
                const Eigen::Array2f dy = y - (y(0) + y(1)) / 2.0f;
                const float product = dx(0) * dy(0) + dx(1) * dy(1);
                const float below = 2.0f * deviation(dx) * deviation(dy);
                ASSERT_TRUE(same(r(a, b), product / below)) << series;
            }
        }
    }
}

/// Whole numbers with a whole mean have exact sums in any order: what is rounded are the deviations
/// and the factors below the line, from left to right. The two triangles may differ.
TEST(CorrelationMatrix, OfWholeNumbersIsItsSettledFormToTheBit)
{
    constexpr int nodes = 20;
    constexpr int volumes = 7;
    std::mt19937 generator(14);
    std::uniform_int_distribution<int> value(-50, 50);
    Eigen::MatrixXf series(nodes, volumes);
    for (int n = 0; n < nodes; ++n) {
        for (int t = 0; t < volumes; ++t)
            series(n, t) = static_cast<float>(value(generator));
        const int excess = static_cast<int>(series.row(n).sum()) % volumes;
        series(n, 0) -= static_cast<float>(excess);
    }
    const Eigen::MatrixXf r = correlationMatrix(series);
    const auto deviations = [&](int node) {
        const Eigen::ArrayXf row = series.row(node).transpose().array();
        return Eigen::ArrayXf(row - row.sum() / 7.0f);
    };
    bool trianglesDiffer = false;
    for (int a = 0; a < nodes; ++a) {
        const Eigen::ArrayXf dx = deviations(a);
        const float sdx = sqrtf(dx.square().sum() / 7.0f);
        for (int b = 0; b < nodes; ++b) {
            const Eigen::ArrayXf dy = deviations(b);
            const float sdy = sqrtf(dy.square().sum() / 7.0f);
            const float below = 7.0f * sdx;
            EXPECT_EQ(r(a, b), (dx * dy).sum() / (below * sdy)) << a << "," << b;
            trianglesDiffer = trianglesDiffer || r(a, b) != r(b, a);
        }
    }
    EXPECT_TRUE(trianglesDiffer);
}

TEST(CorrelationMatrix, OfNoNodesIsEmptyWithAndWithoutVolumes)
{
    EXPECT_EQ(correlationMatrix(Eigen::MatrixXf(0, 100)).size(), 0);
    EXPECT_EQ(correlationMatrix(Eigen::MatrixXf(0, 0)).size(), 0);
    EXPECT_EQ(partialCorrelationMatrix(Eigen::MatrixXf(0, 100)).size(), 0);
    EXPECT_EQ(partialCorrelationMatrix(Eigen::MatrixXf(0, 0)).size(), 0);
}

TEST(CorrelationMatrix, OfOneNodeIsOne)
{
    const Eigen::MatrixXf r = correlationMatrix(randomSeries(1, 50, 0.0f, 3));
    ASSERT_EQ(r.size(), 1);
    EXPECT_NEAR(r(0, 0), 1.0f, 1e-6f);
}

TEST(CorrelationMatrix, OfBlockWithoutVolumesIsNaN)
{
    const Eigen::MatrixXf r = correlationMatrix(Eigen::MatrixXf(3, 0));
    ASSERT_EQ(r.rows(), 3);
    ASSERT_EQ(r.cols(), 3);
    EXPECT_TRUE(allNaN(r));
    EXPECT_TRUE(allNaN(partialCorrelationMatrix(Eigen::MatrixXf(3, 0))));
}

TEST(CorrelationMatrix, OfOneVolumeIsNaN)
{
    EXPECT_TRUE(allNaN(correlationMatrix(randomSeries(3, 1, 0.0f, 4))));
}

TEST(CorrelationMatrix, OfIdenticalRowsIsOneAndOfNegatedRowsMinusOne)
{
    Eigen::MatrixXf series = randomSeries(3, 60, 10.0f, 5);
    series.row(1) = series.row(0);
    series.row(2) = -series.row(0);
    const Eigen::MatrixXf r = correlationMatrix(series);
    EXPECT_NEAR(r(0, 1), 1.0f, 1e-6f);
    EXPECT_NEAR(r(0, 2), -1.0f, 1e-6f);
    EXPECT_NEAR(r(2, 1), -1.0f, 1e-6f);
}

TEST(CorrelationMatrix, OfConstantRowIsCrossOfNaN)
{
    Eigen::MatrixXf series = randomSeries(4, 64, 0.0f, 6);
    series.row(2).setConstant(8.0f);
    const Eigen::MatrixXf r = correlationMatrix(series);
    for (int a = 0; a < 4; ++a) {
        for (int b = 0; b < 4; ++b)
            EXPECT_EQ(std::isnan(r(a, b)), a == 2 || b == 2) << a << "," << b;
    }
    EXPECT_TRUE(allNaN(partialCorrelationMatrix(series)));
}

TEST(CorrelationMatrix, LeavesItsArgumentAlone)
{
    const Eigen::MatrixXf series = randomSeries(4, 30, 3.0f, 7);
    const Eigen::MatrixXf before = series;
    correlationMatrix(series);
    partialCorrelationMatrix(series);
    EXPECT_EQ(series, before);
}

TEST(PartialCorrelationMatrix, IsItsFormulaInDoublePrecision)
{
    const Eigen::MatrixXf series = randomSeries(8, 121, 1000.0f, 8);
    const Eigen::MatrixXf r = partialCorrelationMatrix(series);
    Eigen::MatrixXd c(8, 8);
    for (int a = 0; a < 8; ++a) {
        for (int b = 0; b < 8; ++b)
            c(a, b) = pearson(series, a, b);
    }
    const Eigen::MatrixXd p = c.inverse();
    for (int i = 0; i < 8; ++i) {
        for (int j = 0; j < 8; ++j) {
            const double expected = -(p(i, j) / std::sqrt(p(i, i) * c(j, j)));
            EXPECT_NEAR(r(i, j), expected, 1e-4 * std::max(1.0, std::abs(expected)));
        }
    }
}

TEST(PartialCorrelationMatrix, DividesByTheDiagonalOfTheCorrelation)
{
    const Eigen::MatrixXf series = randomSeries(3, 80, 0.0f, 9);
    const Eigen::MatrixXf c = correlationMatrix(series);
    const Eigen::MatrixXf p = c.inverse();
    const Eigen::MatrixXf r = partialCorrelationMatrix(series);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            EXPECT_EQ(r(i, j), -(p(i, j) / sqrtf(p(i, i) * c(j, j))));
        EXPECT_LT(r(i, i), -0.99f);
    }
    EXPECT_NE(r(0, 1), r(1, 0));
    EXPECT_NE(r(0, 2), r(2, 0));
}

TEST(PartialCorrelationMatrix, OfOneNodeIsAboutMinusOne)
{
    const Eigen::MatrixXf r = partialCorrelationMatrix(randomSeries(1, 50, 0.0f, 10));
    ASSERT_EQ(r.size(), 1);
    EXPECT_NEAR(r(0, 0), -1.0f, 1e-5f);
}

TEST(PartialCorrelationMatrix, InvertsSingularMatrixWithoutComplaint)
{
    Eigen::MatrixXf series = randomSeries(3, 40, 0.0f, 11);
    series.row(1) = series.row(0);
    const Eigen::MatrixXf r = partialCorrelationMatrix(series);
    ASSERT_EQ(r.rows(), 3);
    const bool huge = !r.allFinite() || r.cwiseAbs().maxCoeff() > 100.0f;
    EXPECT_TRUE(huge) << r;
}

TEST(MeasureFunction, HoldsEither)
{
    const Eigen::MatrixXf series = randomSeries(3, 20, 0.0f, 12);
    const MeasureFunction correlation = correlationMatrix;
    const MeasureFunction partial = partialCorrelationMatrix;
    EXPECT_EQ(correlation(series), correlationMatrix(series));
    EXPECT_EQ(partial(series), partialCorrelationMatrix(series));
}

using WatchedMeasure = Eigen::MatrixXf (*)(const Eigen::MatrixXf &, const MeasureProgress &);

TEST(WatchedMeasures, AreTheSameBitForBitAndTellAscendingSharesUpToOne)
{
    for (const auto &[watched, plain] :
         {std::pair<WatchedMeasure, MeasureFunction>{watchedCorrelationMatrix, correlationMatrix},
          {watchedPartialCorrelationMatrix, partialCorrelationMatrix}}) {
        const Eigen::MatrixXf series = randomSeries(9, 31, 500.0f, 13);
        std::vector<double> shares;
        const Eigen::MatrixXf matrix =
            watched(series, [&](double share) { shares.push_back(share); });
        EXPECT_EQ(matrix, plain(series));
        ASSERT_GE(shares.size(), 9U);
        EXPECT_GT(shares.front(), 0.0);
        EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
        EXPECT_EQ(shares.back(), 1.0);
    }
}

TEST(WatchedMeasures, EndWithWhatTheirProgressThrows)
{
    for (const WatchedMeasure watched :
         {watchedCorrelationMatrix, watchedPartialCorrelationMatrix}) {
        int told = 0;
        const auto stop = [&](double) {
            if (++told == 3)
                throw std::runtime_error("enough");
        };
        EXPECT_THROW(watched(randomSeries(9, 31, 0.0f, 14), stop), std::runtime_error);
        EXPECT_EQ(told, 3);
    }
}

} // namespace
