// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/node_ordering.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

using Eigen::Index;
using Eigen::MatrixXd;

constexpr double infinite = std::numeric_limits<double>::infinity();

/// 1 - the correlation of two rows. 1 where there is none.
double distanceOf(const MatrixXd &values, Index a, Index b)
{
    double n = 0, sumA = 0, sumB = 0, sumAA = 0, sumBB = 0, sumAB = 0;
    for (Index k = 0; k < values.rows(); ++k) {
        const double x = values(k, a);
        const double y = values(k, b);
        if (k == a || k == b || !std::isfinite(x) || !std::isfinite(y))
            continue;
        n += 1;
        sumA += x;
        sumB += y;
        sumAA += x * x;
        sumBB += y * y;
        sumAB += x * y;
    }
    const double spread = (sumAA - sumA * sumA / n) * (sumBB - sumB * sumB / n);
    return n > 2 && spread > 0 ? 1 - (sumAB - sumA * sumB / n) / std::sqrt(spread) : 1;
}

/// Distances of clusters while they join. The nearest other of each is kept, so that a join looks
/// at few pairs again.
class Linkage
{
public:
    explicit Linkage(MatrixXd distances)
        : m_nodes(distances), m_distances(std::move(distances)),
          m_leaves(std::size_t(m_distances.rows())), m_nearest(m_leaves.size())
    {
        for (std::size_t c = 0; c < m_leaves.size(); ++c)
            m_leaves[c] = {int(c)};
        for (std::size_t c = 0; c < m_leaves.size(); ++c)
            findNearest(c);
    }

    std::vector<int> order()
    {
        for (std::size_t left = m_leaves.size(); left > 1; --left)
            joinClosest();
        for (const std::vector<int> &leaves : m_leaves)
            if (!leaves.empty())
                return leaves;
        return {};
    }

private:
    double distance(std::size_t a, std::size_t b) const { return m_distances(Index(a), Index(b)); }

    /// Among the clusters behind it: each pair is kept at its first.
    void findNearest(std::size_t c)
    {
        m_nearest[c] = c;
        double least = infinite;
        for (std::size_t other = c + 1; other < m_leaves.size(); ++other)
            if (!m_leaves[other].empty() && distance(c, other) < least) {
                least = distance(c, other);
                m_nearest[c] = other;
            }
    }

    void joinClosest()
    {
        std::size_t first = 0;
        double least = infinite;
        for (std::size_t c = 0; c < m_leaves.size(); ++c)
            if (!m_leaves[c].empty() && m_nearest[c] != c && distance(c, m_nearest[c]) < least) {
                least = distance(c, m_nearest[c]);
                first = c;
            }
        const std::size_t second = m_nearest[first];
        const double a = double(m_leaves[first].size());
        const double b = double(m_leaves[second].size());
        for (std::size_t other = 0; other < m_leaves.size(); ++other) {
            if (m_leaves[other].empty() || other == first || other == second)
                continue;
            const double mean =
                (a * distance(first, other) + b * distance(second, other)) / (a + b);
            m_distances(Index(first), Index(other)) = m_distances(Index(other), Index(first)) =
                mean;
        }
        m_leaves[first] = sideBySide(m_leaves[first], m_leaves[second]);
        m_leaves[second].clear();
        for (std::size_t c = 0; c < m_leaves.size(); ++c) {
            if (m_leaves[c].empty())
                continue;
            if (c == first || m_nearest[c] == first || m_nearest[c] == second)
                findNearest(c);
            else if (c < first && distance(c, first) < distance(c, m_nearest[c]))
                m_nearest[c] = first;
        }
    }

    std::vector<int> sideBySide(std::vector<int> a, std::vector<int> b) const
    {
        const auto seam = [&](int x, int y) { return m_nodes(x, y); };
        const double seams[] = {seam(a.back(), b.front()), seam(a.back(), b.back()),
                                seam(a.front(), b.front()), seam(a.front(), b.back())};
        const auto best = std::min_element(std::begin(seams), std::end(seams)) - seams;
        if (best >= 2)
            std::reverse(a.begin(), a.end());
        if (best % 2 == 1)
            std::reverse(b.begin(), b.end());
        a.insert(a.end(), b.begin(), b.end());
        return a;
    }

    MatrixXd m_nodes;
    MatrixXd m_distances;
    std::vector<std::vector<int>> m_leaves; ///< of each cluster; empty when it has joined another
    std::vector<std::size_t> m_nearest;     ///< of those behind it; itself for none
};

} // namespace

std::vector<int> similarityOrder(const MatrixXd &values)
{
    std::vector<int> known;
    std::vector<int> unknown;
    for (Index node = 0; node < values.cols(); ++node) {
        bool hasValue = false;
        for (Index other = 0; other < values.rows(); ++other)
            hasValue = hasValue || (other != node && std::isfinite(values(other, node)));
        (hasValue ? known : unknown).push_back(int(node));
    }
    const Index count = Index(known.size());
    const MatrixXd rows = values(known, known);
    MatrixXd distances = MatrixXd::Zero(count, count);
    for (Index b = 0; b < count; ++b)
        for (Index a = 0; a < b; ++a)
            distances(a, b) = distances(b, a) = distanceOf(rows, a, b);
    std::vector<int> order;
    for (const int leaf : Linkage(distances).order())
        order.push_back(known[std::size_t(leaf)]);
    order.insert(order.end(), unknown.begin(), unknown.end());
    return order;
}

} // namespace corvane
