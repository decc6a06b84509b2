// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <limits>
#include <vector>

#include <Eigen/Core>

#include "statistics/edges.h"

namespace statistics
{

/// The direction of the effects that a network is made of.
enum class Side {
    greater,
    less,
    both,
};

/// A connected component of the edges above a threshold. It is the component as a whole that the p
/// values are of, not any of its edges.
struct Component {
    Side side = Side::greater;
    std::vector<Index> edges; ///< ascending; their number is the extent
    double intensity = 0.0;   ///< sum over its edges of (value - threshold)
    double p_extent = std::numeric_limits<double>::quiet_NaN();
    double p_intensity = std::numeric_limits<double>::quiet_NaN();
};

/// The components of the graph of all edges whose value lies strictly above the threshold, those
/// with most edges first, then those of the larger intensity, then of the lower first edge. Values
/// are of the upper triangle of a matrix.
/// \throws Error if they are not.
std::vector<Component> find_components(const Eigen::ArrayXd &values, double threshold,
                                       Side side = Side::greater);

/// The largest extent and the largest intensity of the components of a graph to which edges are
/// added. Tarjan 1975, J ACM 22:215, doi:10.1145/321879.321884. O(1) memory per node.
class GrowingComponents
{
public:
    explicit GrowingComponents(int nodes) : m_nodes(static_cast<std::size_t>(nodes)) { clear(); }

    void clear();
    void add(NodePair edge, double excess);

    /// 0 without edges; the two may be of different components.
    double largest_extent() const { return m_extent; }
    double largest_intensity() const { return m_intensity; }

    /// The node that stands for the component of a node, and that component's intensity.
    int representative(int node);
    double intensity_at(int representative) const { return m_nodes[representative].intensity; }

private:
    struct Node {
        int parent = 0;
        int edges = 0;
        int size = 1;
        double intensity = 0.0;
    };
    std::vector<Node> m_nodes;
    double m_extent = 0.0;
    double m_intensity = 0.0;
};

} // namespace statistics
