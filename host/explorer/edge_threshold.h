// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/compute_settings.h"

#include <Eigen/Core>
#include <QString>
#include <vector>

/// @file
/// Which edges of a matrix are drawn and measured.

namespace corvane
{

enum class ThresholdKind {
    Weight,        ///< all edges with an absolute value of at least that
    Density,       ///< the strongest edges, a share of all pairs of nodes
    TreeAndDensity ///< the spanning tree of the strongest edges first, then the strongest others
};

inline constexpr NamedValue<ThresholdKind> thresholdKindNames[] = {
    {ThresholdKind::Density, "density"},
    {ThresholdKind::Weight, "weight"},
    {ThresholdKind::TreeAndDensity, "tree"}};

enum class EdgeSigns { Both, Positive, Negative };

inline constexpr NamedValue<EdgeSigns> edgeSignsNames[] = {{EdgeSigns::Both, "both"},
                                                           {EdgeSigns::Positive, "positive"},
                                                           {EdgeSigns::Negative, "negative"}};

struct EdgeThreshold {
    ThresholdKind kind = ThresholdKind::Density;
    double value = 0.05; ///< a weight, or a share of all pairs
    EdgeSigns signs = EdgeSigns::Both;
};

struct NetworkEdge {
    int from, to; ///< from < to
    double value;
};

/// The edges of a matrix in the order of their absolute values, strongest first, ties by (i, j).
/// A pair of nodes without a value, or with 0, is no edge. Values above the diagonal count.
class RankedEdges
{
public:
    RankedEdges() = default;
    RankedEdges(const Eigen::MatrixXd &values, EdgeSigns signs);

    /// The edges that a threshold of these signs keeps: a share d means the round(d N (N - 1)/2)
    /// strongest, N the nodes with values. With a tree the spanning forest of the strongest edges
    /// (nodalis::mst) counts among them, and all of it is kept however small the share. Ordered
    /// likewise.
    std::vector<NetworkEdge> kept(const EdgeThreshold &threshold) const;

    /// Pairs of nodes with values.
    std::size_t pairs() const { return m_nodes * (m_nodes - (m_nodes > 0 ? 1 : 0)) / 2; }
    const std::vector<NetworkEdge> &edges() const { return m_edges; }
    /// How many edges a share of all pairs is, be there so many or not.
    std::size_t countOf(double density) const;

private:
    std::vector<NetworkEdge> m_edges;
    std::vector<bool> m_isInTree; ///< one for each edge
    std::size_t m_treeEdges = 0;
    std::size_t m_nodes = 0;
};

/// What is drawn, in words: "strongest 5 % of 79,800 edges, 3,990".
QString drawnText(const EdgeThreshold &threshold, std::size_t drawn, std::size_t pairs);

/// "79,800"
QString groupedNumber(std::size_t number);

/// The weights that graph measures take: absolute values of the edges, 0 for others.
Eigen::MatrixXf weightsOf(const std::vector<NetworkEdge> &edges, int nodes);

} // namespace corvane
