// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/mst.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "graph.h"

// Prim's method on the full matrix. With an order of the edges that leaves no ties there is only
// one spanning forest, so that it finds the same edges as Kruskal's without sorting them.

namespace nodalis
{
namespace
{

/// Weights as whole numbers, the better edge the larger one. 0 is no edge.
using Rank = std::int32_t;

static_assert(sizeof(float) == sizeof(Rank) && std::numeric_limits<float>::is_iec559,
              "the bits of positive floats are in the order of their values");

struct Edge {
    int i;
    int j;
    float weight;
};

class Forest
{
public:
    Forest(const Eigen::MatrixXf &weights, bool weights_are_lengths)
        : m_weights(weights), m_weights_are_lengths(weights_are_lengths),
          m_size(static_cast<int>(weights.rows())), m_ranks(weights.rows()),
          m_best(weights.rows(), 0), m_to(weights.rows(), 0)
    {
    }

    std::vector<Edge> grow()
    {
        std::vector<Edge> edges;
        Rank best = 0;
        for (int round = 0; round < m_size; ++round) {
            const int node = best > 0 ? nearest(best) : any_outside();
            if (best > 0) {
                const auto [i, j] = ends(node);
                edges.push_back({i, j, m_weights(i, j)});
            }
            m_best[node] = inside;
            best = offer_edges_of(node);
        }
        return edges;
    }

private:
    /// In the place of the rank of a node that is in the forest. No edge ranks higher.
    static constexpr Rank inside = std::numeric_limits<Rank>::max();

    /// Of the edge from a node outside to the forest, the lower one first.
    std::pair<int, int> ends(int node) const { return std::minmax(node, int{m_to[node]}); }

    /// The node outside with the best edge, of those with the first in the order.
    int nearest(Rank best) const
    {
        int found = -1;
        for (int node = 0; node < m_size; ++node) {
            if (m_best[node] == best && (found < 0 || ends(node) < ends(found))) {
                found = node;
            }
        }
        return found;
    }

    int any_outside() const
    {
        const auto found =
            std::find_if(m_best.begin(), m_best.end(), [](Rank rank) { return rank != inside; });
        return static_cast<int>(found - m_best.begin());
    }

    /// Improves the edges that nodes outside have to the forest by those to \p node. Returns the
    /// rank of the best. Of two edges of one rank the one to the lower node comes first, whichever
    /// end is named first. Written without branches, so that compilers vectorise it.
    Rank offer_edges_of(int node)
    {
        read_ranks(node);
        const Rank *const ranks = m_ranks.data();
        Rank *const best = m_best.data();
        Rank *const to = m_to.data();
        const int size = m_size;
        Rank top = 0;
        for (int other = 0; other < size; ++other) {
            const bool better =
                (ranks[other] > best[other]) | ((ranks[other] == best[other]) & (node < to[other]));
            best[other] = better ? ranks[other] : best[other];
            to[other] = better ? node : to[other];
            top = std::max(top, best[other] == inside ? 0 : best[other]);
        }
        return top;
    }

    /// Bits of negative weights are negative numbers.
    void read_ranks(int node)
    {
        std::memcpy(m_ranks.data(), m_weights.col(node).data(), m_ranks.size() * sizeof(Rank));
        for (Rank &rank : m_ranks) {
            rank = std::max(rank, 0);
        }
        if (m_weights_are_lengths) {
            for (Rank &rank : m_ranks) {
                rank = rank > 0 ? inside - rank : 0;
            }
        }
    }

    const Eigen::MatrixXf &m_weights;
    bool m_weights_are_lengths;
    int m_size;
    std::vector<Rank> m_ranks; ///< of the edges of one node
    std::vector<Rank> m_best;  ///< of the edges from each node to the forest
    std::vector<Rank> m_to;    ///< the forest's end of that edge
};

} // namespace

inline namespace NODALIS_ABI
{

namespace mst
{

std::tuple<Eigen::MatrixXf, Eigen::MatrixXi>
minimum_spanning_tree(const Eigen::MatrixXf &matrix, bool weights_are_lengths, bool mirrored)
{
    Eigen::MatrixXf weights = detail::conditioned(matrix, "mst::minimum_spanning_tree");
    const std::vector<Edge> edges = Forest(weights, weights_are_lengths).grow();
    // The weights are not needed any more: their matrix becomes the first result.
    Eigen::MatrixXf &kept = weights.setZero();
    Eigen::MatrixXi tree = Eigen::MatrixXi::Zero(kept.rows(), kept.cols());
    for (const Edge &edge : edges) {
        kept(edge.i, edge.j) = edge.weight;
        tree(edge.i, edge.j) = 1;
        if (mirrored) {
            kept(edge.j, edge.i) = edge.weight;
            tree(edge.j, edge.i) = 1;
        }
    }
    return {std::move(weights), std::move(tree)};
}

} // namespace mst

} // namespace NODALIS_ABI
} // namespace nodalis
