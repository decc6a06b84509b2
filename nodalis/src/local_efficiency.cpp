// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <optional>
#include <vector>

#include <nodalis/efficiency.h>

#include "graph.h"
#include "parallel.h"
#include "shortest_paths.h"

// Each node i asks for the shortest paths through its neighbours N_i alone. In a dense graph the
// neighbourhoods of different nodes are nearly the same, so most of the work is shared: a group of
// nodes relaxes the lengths through the nodes that neighbour all of the group, and its parts go on
// from there with what they share beyond that. In a complete graph this takes about log n
// relaxations per node instead of n. Where neighbourhoods have little in common each node works on
// its own, on the matrix of its neighbours.

namespace nodalis
{
namespace
{

using detail::PathLengths;
using detail::tile_size;
using Nodes = std::vector<int>;
/// For each node whether it is in a set.
using Mask = std::vector<char>;

struct Graph {
    Eigen::MatrixXd roots; ///< (w_ij)^(1/3), 0 for no edge
    std::vector<Nodes> neighbours;

    int size() const { return static_cast<int>(roots.rows()); }
};

/// Lengths that are relaxed through some nodes already.
struct Progress {
    PathLengths lengths;
    Mask done;
};

Graph graph_of(const Eigen::MatrixXf &weights)
{
    const Eigen::Index n = weights.rows();
    Graph graph{Eigen::MatrixXd(n, n), std::vector<Nodes>(n)};
    for (int j = 0; j < n; ++j) {
        detail::kernels().cube_roots(graph.roots.col(j).data(), weights.col(j).data(),
                                     static_cast<int>(n));
        for (int i = 0; i < n; ++i) {
            if (weights(i, j) > 0.0F) {
                graph.neighbours[j].push_back(i);
            }
        }
    }
    return graph;
}

/// Sum over a < b of weights_a weights_b / d_ab, with paths through some more nodes allowed.
double weighted_inverse_sum(const PathLengths &lengths, const Nodes &through,
                            const Eigen::VectorXd &weights)
{
    std::vector<detail::Row> strips(lengths.width(), detail::Row{});
    for (Eigen::Index a = 0; a < weights.size(); ++a) {
        strips[a / tile_size].value[a % tile_size] = weights[a];
    }
    std::optional<PathLengths::Panel> panel;
    if (!through.empty()) {
        panel.emplace(lengths, through.data(), static_cast<int>(through.size()));
    }
    double total = 0.0;
    for (int j = 0; j < lengths.width(); ++j) {
        detail::Row sums = {};
        for (int i = 0; i <= j; ++i) {
            detail::Tile tile;
            if (panel) {
                panel->relax(tile.data(), lengths, i, j);
            } else {
                tile = lengths.tile(i, j);
            }
            for (int a = 0; i == j && a < tile_size; ++a) {
                std::fill_n(tile.row[a].value, a + 1, detail::no_path);
            }
            detail::kernels().divide(sums.value, tile.data(), strips[i].value);
        }
        for (int b = 0; b < tile_size; ++b) {
            total += strips[j].value[b] * sums.value[b];
        }
    }
    return total;
}

class LocalEfficiency
{
public:
    LocalEfficiency(const Eigen::MatrixXf &weights, const Effort &effort)
        : m_graph(graph_of(weights)), m_result(Eigen::ArrayXd::Zero(weights.rows())),
          m_effort(effort)
    {
    }

    Eigen::ArrayXd compute()
    {
        const Nodes group = nodes_with_pairs();
        double all = 0.0;
        for (const int node : group) {
            all += cost_of(node);
        }
        if (group.empty()) {
            return m_result;
        }
        const Progress start{PathLengths(m_graph.roots, [](double root) { return 1.0 / root; }),
                             Mask(m_graph.size(), 0)};
        detail::Report report(m_effort, all);
        m_report = &report;
        std::vector<Nodes> independent;
        split(group, start.done, independent);
        detail::for_each_index(independent.size(), m_effort.threads,
                               [&](std::size_t part) { visit_part(independent[part], start); });
        return m_result;
    }

    /// What compute() will do, counted along the same way.
    double relaxations() const
    {
        return relaxations_of(nodes_with_pairs(), Mask(m_graph.size(), 0));
    }

private:
    /// Relaxing through so few nodes is done by each node of a group on its own.
    static constexpr int few = 8;
    /// Copying the lengths, or summing them up, takes about as long as relaxing through so many
    /// nodes.
    static constexpr double copy = 8.0;

    Nodes nodes_with_pairs() const
    {
        Nodes nodes;
        for (int node = 0; node < m_graph.size(); ++node) {
            if (m_graph.neighbours[node].size() >= 2) {
                nodes.push_back(node);
            }
        }
        return nodes;
    }

    double relaxations_of(const Nodes &group, const Mask &done) const
    {
        double sum = 0.0;
        if (is_leaf(group, done)) {
            for (const int node : group) {
                const Nodes &near = m_graph.neighbours[node];
                const double size = static_cast<double>(near.size());
                const auto left =
                    std::count_if(near.begin(), near.end(), [&](int k) { return done[k] == 0; });
                sum += (static_cast<double>(left) + copy) * size * size;
            }
            return sum;
        }
        const double n = m_graph.size();
        for (const Nodes &part : parts_of(group)) {
            const Nodes shared = shared_by(part, done);
            Mask further = done;
            if (is_worth_sharing(part, static_cast<double>(shared.size()))) {
                sum += (static_cast<double>(shared.size()) + copy) * n * n;
                for (const int node : shared) {
                    further[node] = 1;
                }
            }
            sum += relaxations_of(part, further);
        }
        return sum;
    }

    /// About how long a node takes.
    double cost_of(int node) const
    {
        const double k = static_cast<double>(m_graph.neighbours[node].size());
        return k * k * k;
    }

    bool is_leaf(const Nodes &group, const Mask &done) const
    {
        return group.size() == 1 || little_is_left(group, done);
    }

    std::vector<Nodes> parts_of(const Nodes &group) const
    {
        std::vector<Nodes> all;
        const std::size_t step = (group.size() + parts() - 1) / parts();
        for (std::size_t first = 0; first < group.size(); first += step) {
            const std::size_t last = std::min(first + step, group.size());
            all.emplace_back(group.begin() + first, group.begin() + last);
        }
        return all;
    }

    /// The groups that share nothing with each other: threads may take one each.
    void split(const Nodes &group, const Mask &done, std::vector<Nodes> &independent) const
    {
        if (is_leaf(group, done)) {
            for (const int node : group) {
                independent.push_back({node});
            }
            return;
        }
        for (const Nodes &part : parts_of(group)) {
            if (is_worth_sharing(part, static_cast<double>(shared_by(part, done).size()))) {
                independent.push_back(part);
            } else {
                split(part, done, independent);
            }
        }
    }

    void visit(const Nodes &group, const Progress &progress)
    {
        if (is_leaf(group, progress.done)) {
            for (const int node : group) {
                const double k = static_cast<double>(m_graph.neighbours[node].size());
                m_result[node] = 2.0 * sum_of(node, progress) / (k * (k - 1.0));
                m_report->add(cost_of(node));
            }
            return;
        }
        for (const Nodes &part : parts_of(group)) {
            visit_part(part, progress);
        }
    }

    void visit_part(const Nodes &part, const Progress &progress)
    {
        const Nodes shared = shared_by(part, progress.done);
        if (!is_worth_sharing(part, static_cast<double>(shared.size()))) {
            visit(part, progress);
            return;
        }
        Progress further = progress;
        further.lengths.relax(shared, *m_report);
        for (const int node : shared) {
            further.done[node] = 1;
        }
        visit(part, further);
    }

    /// Groups are split into so many parts: enough to be at most four levels of copies deep, so
    /// that memory stays within O(n^2).
    std::size_t parts() const
    {
        const int groups = m_graph.size() / few;
        int count = 4;
        while (count * count * count * count < groups) {
            ++count;
        }
        return static_cast<std::size_t>(count);
    }

    bool little_is_left(const Nodes &group, const Mask &done) const
    {
        return std::all_of(group.begin(), group.end(), [&](int node) {
            const Nodes &near = m_graph.neighbours[node];
            return std::count_if(near.begin(), near.end(), [&](int k) { return done[k] == 0; }) <=
                   few;
        });
    }

    /// The nodes that neighbour all of the group, apart from those done.
    Nodes shared_by(const Nodes &group, const Mask &done) const
    {
        std::vector<std::size_t> count(m_graph.size(), 0);
        for (const int node : group) {
            for (const int k : m_graph.neighbours[node]) {
                ++count[k];
            }
        }
        Nodes shared;
        for (int k = 0; k < m_graph.size(); ++k) {
            if (count[k] == group.size() && done[k] == 0) {
                shared.push_back(k);
            }
        }
        return shared;
    }

    /// Compares operations: relaxing all lengths once, with the cost of a copy, against relaxing
    /// those of each neighbourhood.
    bool is_worth_sharing(const Nodes &group, double shared) const
    {
        const double n = m_graph.size();
        double apart = 0.0;
        for (const int node : group) {
            const double k = static_cast<double>(m_graph.neighbours[node].size());
            apart += k * k;
        }
        return (shared + copy) * n * n < shared * apart;
    }

    double sum_of(int node, const Progress &progress) const
    {
        const Nodes &near = m_graph.neighbours[node];
        Nodes left;
        Nodes left_positions;
        for (std::size_t a = 0; a < near.size(); ++a) {
            if (progress.done[near[a]] == 0) {
                left.push_back(near[a]);
                left_positions.push_back(static_cast<int>(a));
            }
        }
        const double share = static_cast<double>(near.size()) / m_graph.size();
        if (left.size() <= few && share > 0.8) {
            // Nodes outside the neighbourhood have weight 0.
            return weighted_inverse_sum(progress.lengths, left, m_graph.roots.col(node));
        }
        PathLengths inside(progress.lengths, near);
        // The last panel is applied while summing up.
        const std::size_t last = std::min(left.size(), std::size_t{PathLengths::panel_depth});
        inside.relax(Nodes(left_positions.begin(), left_positions.end() - last), *m_report);
        return weighted_inverse_sum(inside,
                                    Nodes(left_positions.end() - last, left_positions.end()),
                                    m_graph.roots(near, node));
    }

    Graph m_graph;
    Eigen::ArrayXd m_result; ///< of each node, written by the one thread that has it
    const Effort &m_effort;
    detail::Report *m_report = nullptr;
};

} // namespace

inline namespace NODALIS_ABI
{

Eigen::ArrayXf local_efficiency(const Eigen::MatrixXf &matrix)
{
    return local_efficiency(matrix, {});
}

Eigen::ArrayXf local_efficiency(const Eigen::MatrixXf &matrix, const Effort &effort)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "local_efficiency");
    return LocalEfficiency(weights, effort).compute().cast<float>();
}

double local_efficiency_relaxations(const Eigen::MatrixXf &matrix)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "local_efficiency_relaxations");
    return LocalEfficiency(weights, Effort()).relaxations();
}

} // namespace NODALIS_ABI
} // namespace nodalis
