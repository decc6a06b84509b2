// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/dvars.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "signals/finite.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
/// Interquartile range of the normal distribution with standard deviation 1.
constexpr double normal_range = 1.349;

double robust_deviation(Eigen::VectorXd values)
{
    const auto at = [&](double share) {
        const auto place = values.begin() + Index(std::floor(share * double(values.size() - 1)));
        std::nth_element(values.begin(), place, values.end());
        return *place;
    };
    const double low = at(0.25);
    return (at(0.75) - low) / normal_range;
}

double lag_one(const Eigen::VectorXd &values)
{
    const Eigen::VectorXd y = values.array() - values.mean();
    return y.head(y.size() - 1).dot(y.tail(y.size() - 1)) / y.squaredNorm();
}

} // namespace

Dvars dvars(const Eigen::MatrixXd &series)
{
    require_finite(series, "voxel");
    const Index volumes = series.rows();
    Dvars result{Eigen::ArrayXd::Constant(volumes, nan), Eigen::ArrayXd::Constant(volumes, nan)};
    if (volumes < 2) {
        return result;
    }
    Eigen::ArrayXd squares = Eigen::ArrayXd::Zero(volumes - 1);
    double expected = 0;
    Index voxels = 0;
    for (const auto voxel : series.colwise()) {
        const double deviation = robust_deviation(voxel);
        if (deviation > 0) {
            squares += (voxel.tail(volumes - 1) - voxel.head(volumes - 1)).array().square();
            expected += std::sqrt(2 * (1 - lag_one(voxel))) * deviation;
            ++voxels;
        }
    }
    if (voxels > 0) {
        result.plain.tail(volumes - 1) = (squares / double(voxels)).sqrt();
        result.standardised = result.plain / (expected / double(voxels));
    }
    return result;
}

double dvars_scale(const Eigen::MatrixXd &series)
{
    if (series.size() == 0) {
        return nan;
    }
    std::vector<double> values(series.data(), series.data() + series.size());
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    const double median = values.size() % 2 == 1
                              ? *middle
                              : (*std::max_element(values.begin(), middle) + *middle) / 2;
    return median == 0 ? nan : 1000 / median;
}

} // namespace signals
