// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/drift.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "signals/text.h"

namespace signals
{

namespace
{

constexpr double pi = 3.141592653589793238462643383279502884;

} // namespace

Eigen::Index cosine_count(Eigen::Index volumes, double tr, double high_pass)
{
    if (volumes < 2) {
        return 0;
    }
    const double wanted = std::floor(2 * double(volumes) * high_pass * tr);
    return static_cast<Eigen::Index>(std::min(double(volumes - 1), std::max(wanted, 0.0)));
}

std::vector<Eigen::Index> cosines_below(Eigen::Index volumes, double tr, double high_pass)
{
    std::vector<Eigen::Index> numbers(cosine_count(volumes, tr, high_pass));
    std::iota(numbers.begin(), numbers.end(), Eigen::Index(1));
    return numbers;
}

std::vector<Eigen::Index> cosines_above(Eigen::Index volumes, double tr, double high_pass,
                                        double low_pass)
{
    std::vector<Eigen::Index> numbers;
    for (Eigen::Index k = cosine_count(volumes, tr, high_pass) + 1; k < volumes; ++k) {
        if (double(k) / (2 * double(volumes) * tr) > low_pass) {
            numbers.push_back(k);
        }
    }
    return numbers;
}

Eigen::MatrixXd cosines(Eigen::Index volumes, const std::vector<Eigen::Index> &numbers)
{
    const double n = double(volumes);
    Eigen::MatrixXd basis(volumes, static_cast<Eigen::Index>(numbers.size()));
    const Eigen::ArrayXd centres = Eigen::ArrayXd::LinSpaced(volumes, 0.5, n - 0.5);
    for (Eigen::Index column = 0; column < basis.cols(); ++column) {
        const Eigen::Index k = numbers[column];
        if (k < 1 || k >= volumes) {
            throw Error("cosine " + std::to_string(k) + " of " + std::to_string(volumes) +
                        " volumes: expected 1 to " + std::to_string(volumes - 1));
        }
        basis.col(column) = std::sqrt(2 / n) * (pi / n * double(k) * centres).cos();
    }
    return basis;
}

Eigen::MatrixXd detrended(Eigen::MatrixXd series)
{
    const Eigen::Index rows = series.rows();
    if (rows == 0) {
        return series;
    }
    series.rowwise() -= series.colwise().mean().eval();
    if (rows == 1) {
        return series;
    }
    const double half = double(rows - 1) / 2;
    const Eigen::VectorXd line = Eigen::VectorXd::LinSpaced(rows, -half, half).normalized();
    series -= line * (line.transpose() * series).eval();
    return series;
}

} // namespace signals
