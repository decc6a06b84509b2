// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/correlation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include "statistics/error.h"
#include "statistics/rearrangements.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

void require_equal_length(const Eigen::ArrayXd &x, const Eigen::ArrayXd &y)
{
    if (x.size() != y.size()) {
        throw Error("two lists to correlate have " + counted(x.size(), "value") + " and " +
                    std::to_string(y.size()));
    }
}

/// Less the mean and of length 1; empty if it does not vary.
Eigen::VectorXd standardised(const Eigen::ArrayXd &values)
{
    if (values.size() < 2) {
        return {};
    }
    Eigen::VectorXd centred = values - values.mean();
    centred.array() -= centred.mean();
    if (centred.squaredNorm() <= 1e-20 * values.matrix().squaredNorm()) {
        return {};
    }
    return centred.normalized();
}

double p_of_shuffles(const Eigen::VectorXd &x, const Eigen::VectorXd &y,
                     const Rearrangements &shuffles,
                     const std::function<void(Index done)> &progress)
{
    constexpr Index between = 256;
    const double bound = reaching(std::abs(x.dot(y)));
    std::vector<int> source(static_cast<std::size_t>(y.size()));
    std::vector<double> sign(source.size());
    Index reached = 0;
    for (Index p = 0; p < shuffles.count(); ++p) {
        if (p % between == 0) {
            progress(p);
        }
        shuffles.get(p, source.data(), sign.data());
        double product = 0.0;
        for (Index i = 0; i < x.size(); ++i) {
            product += x(i) * y(source[i]);
        }
        reached += std::abs(product) >= bound ? 1 : 0;
    }
    return shuffles.p_value(reached);
}

} // namespace

double pearson(const Eigen::ArrayXd &x, const Eigen::ArrayXd &y)
{
    require_equal_length(x, y);
    const Eigen::VectorXd a = standardised(x);
    const Eigen::VectorXd b = standardised(y);
    if (a.size() == 0 || b.size() == 0) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return std::clamp(a.dot(b), -1.0, 1.0);
}

Eigen::ArrayXd average_ranks(const Eigen::ArrayXd &values)
{
    std::vector<Index> order(static_cast<std::size_t>(values.size()));
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(),
              [&values](Index a, Index b) { return values(a) < values(b); });
    Eigen::ArrayXd ranks(values.size());
    for (std::size_t first = 0; first < order.size();) {
        std::size_t behind = first;
        while (behind < order.size() && values(order[behind]) == values(order[first])) {
            ++behind;
        }
        for (std::size_t i = first; i < behind; ++i) {
            ranks(order[i]) = static_cast<double>(first + 1 + behind) / 2.0;
        }
        first = behind;
    }
    return ranks;
}

double spearman(const Eigen::ArrayXd &x, const Eigen::ArrayXd &y)
{
    require_equal_length(x, y);
    return pearson(average_ranks(x), average_ranks(y));
}

MapComparison compare_maps(const Eigen::ArrayXd &x, const Eigen::ArrayXd &y, Index permutations,
                           std::uint64_t seed,
                           const std::function<void(Index done, Index count)> &progress)
{
    require_equal_length(x, y);
    std::vector<Index> both;
    for (Index i = 0; i < x.size(); ++i) {
        if (std::isfinite(x(i)) && std::isfinite(y(i))) {
            both.push_back(i);
        }
    }
    if (both.size() < 3) {
        throw Error(counted(static_cast<Index>(both.size()), "node") +
                    " with a value in both maps; a correlation needs at least 3");
    }
    const Eigen::ArrayXd a = x(both);
    const Eigen::ArrayXd b = y(both);
    MapComparison result;
    result.nodes = a.size();
    result.pearson = pearson(a, b);
    result.spearman = spearman(a, b);
    if (std::isnan(result.pearson)) {
        throw Error("a map has the same value at all nodes, so there is no correlation");
    }
    const Rearrangements shuffles(static_cast<int>(a.size()), permutations, seed, Purpose::map);
    const Index count = shuffles.count();
    const auto tell = [&](Index done) {
        if (progress) {
            progress(done, 2 * count);
        }
    };
    result.p_pearson = p_of_shuffles(standardised(a), standardised(b), shuffles, tell);
    result.p_spearman =
        p_of_shuffles(standardised(average_ranks(a)), standardised(average_ranks(b)), shuffles,
                      [&](Index done) { tell(count + done); });
    tell(2 * count);
    return result;
}

} // namespace statistics
