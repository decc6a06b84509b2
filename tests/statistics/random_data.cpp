// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/statistics/random_data.h"

#include <cmath>

RandomNumbers::RandomNumbers(std::uint64_t seed, std::uint64_t number)
    : m_words(seed, statistics::Purpose{1000}, number)
{
}

double RandomNumbers::uniform()
{
    return (m_words.next() + 0.5) / 4294967296.0;
}

double RandomNumbers::normal()
{
    const double radius = std::sqrt(-2.0 * std::log(uniform()));
    return radius * std::cos(2.0 * 3.14159265358979323846 * uniform());
}

int RandomNumbers::below(int n)
{
    return static_cast<int>(m_words.below(static_cast<std::uint32_t>(n)));
}

Eigen::MatrixXd RandomNumbers::normal(Eigen::Index rows, Eigen::Index columns)
{
    return Eigen::MatrixXd::NullaryExpr(rows, columns, [this] { return normal(); });
}

statistics::EdgeData RandomNumbers::data(Eigen::Index subjects, Eigen::Index edges)
{
    return normal(subjects, edges);
}

Eigen::MatrixXd RandomNumbers::covariance(Eigen::Index nodes)
{
    const Eigen::MatrixXd series = normal(3 * nodes, nodes);
    return series.transpose() * series / static_cast<double>(3 * nodes);
}
