// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/components.h"

#include <algorithm>
#include <map>

namespace statistics
{

void GrowingComponents::clear()
{
    for (std::size_t n = 0; n < m_nodes.size(); ++n) {
        m_nodes[n] = Node();
        m_nodes[n].parent = static_cast<int>(n);
    }
    m_extent = 0.0;
    m_intensity = 0.0;
}

int GrowingComponents::representative(int node)
{
    while (m_nodes[node].parent != node) {
        m_nodes[node].parent = m_nodes[m_nodes[node].parent].parent;
        node = m_nodes[node].parent;
    }
    return node;
}

void GrowingComponents::add(NodePair edge, double excess)
{
    int top = representative(edge.first);
    int joined = representative(edge.second);
    if (top != joined) {
        if (m_nodes[top].size < m_nodes[joined].size) {
            std::swap(top, joined);
        }
        m_nodes[joined].parent = top;
        m_nodes[top].size += m_nodes[joined].size;
        m_nodes[top].edges += m_nodes[joined].edges;
        m_nodes[top].intensity += m_nodes[joined].intensity;
    }
    Node &component = m_nodes[top];
    component.edges += 1;
    component.intensity += excess;
    m_extent = std::max(m_extent, static_cast<double>(component.edges));
    m_intensity = std::max(m_intensity, component.intensity);
}

std::vector<Component> find_components(const Eigen::ArrayXd &values, double threshold, Side side)
{
    const int nodes = node_count(values.size());
    const std::vector<NodePair> pairs = node_pairs(nodes);
    GrowingComponents graph(nodes);
    std::vector<Index> above;
    for (Index e = 0; e < values.size(); ++e) {
        if (values(e) > threshold) {
            above.push_back(e);
            graph.add(pairs[e], values(e) - threshold);
        }
    }
    std::map<int, Component> of_node;
    for (const Index e : above) {
        of_node[graph.representative(pairs[e].first)].edges.push_back(e);
    }
    std::vector<Component> components;
    for (auto &[node, component] : of_node) {
        component.side = side;
        component.intensity = graph.intensity_at(node);
        components.push_back(std::move(component));
    }
    std::sort(components.begin(), components.end(), [](const Component &a, const Component &b) {
        if (a.edges.size() != b.edges.size()) {
            return a.edges.size() > b.edges.size();
        }
        return a.intensity != b.intensity ? a.intensity > b.intensity
                                          : a.edges.front() < b.edges.front();
    });
    return components;
}

} // namespace statistics
