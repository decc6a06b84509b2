// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/measures.h"

#include <Eigen/LU>

#include <cmath>

namespace
{

/// Sum of the squares, each taken by the library's power function. This file is compiled so that
/// the call stays one: a multiplication differs in the last bit for some values.
float sumOfSquares(const Eigen::ArrayXf &values)
{
    return values.unaryExpr([](float value) { return powf(value, 2.0f); }).sum();
}

/// Population standard deviation of a series that has been demeaned already; what is left of its
/// mean stays in the formula.
float standardDeviation(const Eigen::ArrayXf &deviations)
{
    const auto count = static_cast<float>(deviations.size());
    const float squares = sumOfSquares(deviations);
    const float sum = deviations.sum();
    return sqrtf(squares / count - powf(sum / count, 2.0f));
}

/// Correlation of two series of equal length, from scratch.
float correlation(const Eigen::ArrayXf &x, const Eigen::ArrayXf &y)
{
    const auto count = static_cast<float>(x.size());
    const Eigen::ArrayXf dx = x - x.sum() / count;
    const Eigen::ArrayXf dy = y - y.sum() / count;
    const float product = (dx * dy).sum();
    const float sdx = standardDeviation(dx);
    const float sdy = standardDeviation(dy);
    return product / (count * sdx * sdy);
}

void tell(const MeasureProgress &progress, double share)
{
    if (progress)
        progress(share);
}

} // namespace

Eigen::MatrixXf correlationMatrix(const Eigen::MatrixXf &series)
{
    return watchedCorrelationMatrix(series, {});
}

Eigen::MatrixXf partialCorrelationMatrix(const Eigen::MatrixXf &series)
{
    return watchedPartialCorrelationMatrix(series, {});
}

Eigen::MatrixXf watchedCorrelationMatrix(const Eigen::MatrixXf &series,
                                         const MeasureProgress &progress)
{
    // Transposed, each node's time course is contiguous.
    const Eigen::MatrixXf courses = series.transpose();
    const Eigen::Index nodes = courses.cols();
    Eigen::MatrixXf result(nodes, nodes);
    for (Eigen::Index a = 0; a < nodes; ++a) {
        for (Eigen::Index b = 0; b < nodes; ++b) {
            const Eigen::ArrayXf x = courses.col(a);
            const Eigen::ArrayXf y = courses.col(b);
            result(a, b) = correlation(x, y);
        }
        tell(progress, double(a + 1) / double(nodes));
    }
    return result;
}

Eigen::MatrixXf watchedPartialCorrelationMatrix(const Eigen::MatrixXf &series,
                                                const MeasureProgress &progress)
{
    // The inverse tells nothing in between.
    constexpr double shareOfCorrelation = 0.8;
    const Eigen::MatrixXf c = watchedCorrelationMatrix(
        series, [&](double share) { tell(progress, share * shareOfCorrelation); });
    const Eigen::MatrixXf p = c.inverse();
    Eigen::MatrixXf result(c.rows(), c.cols());
    for (Eigen::Index i = 0; i < result.rows(); ++i) {
        for (Eigen::Index j = 0; j < result.cols(); ++j)
            result(i, j) = -(p(i, j) / sqrtf(p(i, i) * c(j, j)));
    }
    tell(progress, 1.0);
    return result;
}
