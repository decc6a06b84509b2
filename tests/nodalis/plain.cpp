// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/nodalis/plain.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>

#include <Eigen/Eigenvalues>

namespace plain
{
namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
/// Eigenvalues closer than this, relative to the largest, count as one.
constexpr double shared = 1e-11;

std::vector<int> neighbours(const Eigen::MatrixXf &graph, int node)
{
    std::vector<int> result;
    for (int j = 0; j < graph.rows(); ++j) {
        if (graph(node, j) > 0.0F) {
            result.push_back(j);
        }
    }
    return result;
}

/// Sets of nodes that grow together.
class Sets
{
public:
    explicit Sets(int n) : m_parent(n) { std::iota(m_parent.begin(), m_parent.end(), 0); }

    int find(int node) const
    {
        while (m_parent[node] != node) {
            node = m_parent[node];
        }
        return node;
    }

    /// False if both are in one set already.
    bool unite(int a, int b)
    {
        const int root_a = find(a);
        const int root_b = find(b);
        m_parent[root_a] = root_b;
        return root_a != root_b;
    }

private:
    std::vector<int> m_parent;
};

std::vector<Edge> edges(const Eigen::MatrixXf &graph)
{
    std::vector<Edge> result;
    for (int i = 0; i < graph.rows(); ++i) {
        for (int j = i + 1; j < graph.cols(); ++j) {
            if (graph(i, j) > 0.0F) {
                result.push_back({i, j, graph(i, j)});
            }
        }
    }
    return result;
}

} // namespace

Eigen::ArrayXd strength(const Eigen::MatrixXf &graph)
{
    return graph.cast<double>().rowwise().sum();
}

Eigen::ArrayXd clustering_coeff(const Eigen::MatrixXf &graph)
{
    Eigen::ArrayXd result = Eigen::ArrayXd::Zero(graph.rows());
    for (int i = 0; i < graph.rows(); ++i) {
        const std::vector<int> near = neighbours(graph, i);
        const double k = static_cast<double>(near.size());
        double sum = 0.0;
        for (const int j : near) {
            for (const int h : near) {
                if (j != h && graph(j, h) > 0.0F) {
                    sum +=
                        std::cbrt(double{graph(i, j)} * double{graph(i, h)} * double{graph(j, h)});
                }
            }
        }
        if (k >= 2.0) {
            result[i] = sum / (k * (k - 1.0));
        }
    }
    return result;
}

Eigen::MatrixXd shortest_paths(Eigen::MatrixXd lengths)
{
    const Eigen::Index n = lengths.rows();
    lengths.diagonal().setZero();
    for (Eigen::Index k = 0; k < n; ++k) {
        for (Eigen::Index j = 0; j < n; ++j) {
            for (Eigen::Index i = 0; i < n; ++i) {
                lengths(i, j) = std::min(lengths(i, j), lengths(i, k) + lengths(k, j));
            }
        }
    }
    return lengths;
}

Eigen::ArrayXd nodal_global_efficiency(const Eigen::MatrixXf &graph)
{
    const Eigen::Index n = graph.rows();
    if (n < 2) {
        return Eigen::ArrayXd::Zero(n);
    }
    Eigen::MatrixXd d = shortest_paths(
        graph.unaryExpr([](float w) { return w > 0.0F ? 1.0 / double{w} : infinity; }));
    d.diagonal().setConstant(infinity);
    return d.cwiseInverse().rowwise().sum() / static_cast<double>(n - 1);
}

Eigen::ArrayXd local_efficiency(const Eigen::MatrixXf &graph)
{
    Eigen::ArrayXd result = Eigen::ArrayXd::Zero(graph.rows());
    for (int i = 0; i < graph.rows(); ++i) {
        const std::vector<int> near = neighbours(graph, i);
        const double k = static_cast<double>(near.size());
        const Eigen::MatrixXf inside = graph(near, near);
        const Eigen::MatrixXd d = shortest_paths(inside.unaryExpr(
            [](float w) { return w > 0.0F ? std::cbrt(1.0 / double{w}) : infinity; }));
        double sum = 0.0;
        for (std::size_t a = 0; a < near.size(); ++a) {
            for (std::size_t b = 0; b < near.size(); ++b) {
                if (a != b) {
                    sum += std::cbrt(double{graph(i, near[a])} * double{graph(i, near[b])}) /
                           d(static_cast<Eigen::Index>(a), static_cast<Eigen::Index>(b));
                }
            }
        }
        if (k >= 2.0) {
            result[i] = sum / (k * (k - 1.0));
        }
    }
    return result;
}

Eigen::ArrayXd eigenvector_centrality(const Eigen::MatrixXf &graph)
{
    const Eigen::Index n = graph.rows();
    if (n == 0 || graph.isZero(0.0F)) {
        return Eigen::ArrayXd::Zero(n);
    }
    const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver(graph.cast<double>());
    const double top = solver.eigenvalues()[n - 1];
    const Eigen::Index count = (solver.eigenvalues().array() >= top * (1.0 - shared)).count();
    const Eigen::MatrixXd basis = solver.eigenvectors().rightCols(count);
    const Eigen::VectorXd projection = basis * (basis.transpose() * Eigen::VectorXd::Ones(n));
    if (projection.norm() > 1e-6) {
        return projection.normalized().cwiseAbs();
    }
    return basis.rowwise().norm().normalized();
}

double relative_gap(const Eigen::MatrixXf &graph)
{
    const Eigen::Index n = graph.rows();
    if (n == 0 || graph.isZero(0.0F)) {
        return 1.0;
    }
    const Eigen::VectorXd values =
        Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd>(graph.cast<double>(), Eigen::EigenvaluesOnly)
            .eigenvalues();
    const double top = values[n - 1];
    for (Eigen::Index i = n - 1; i >= 0; --i) {
        if (values[i] < top * (1.0 - shared)) {
            return (top - values[i]) / top;
        }
    }
    return 1.0;
}

std::vector<Edge> minimum_spanning_tree(const Eigen::MatrixXf &graph, bool weights_are_lengths)
{
    std::vector<Edge> candidates = edges(graph);
    std::sort(candidates.begin(), candidates.end(), [&](const Edge &a, const Edge &b) {
        const float rank_a = weights_are_lengths ? a.weight : -a.weight;
        const float rank_b = weights_are_lengths ? b.weight : -b.weight;
        return std::tie(rank_a, a.i, a.j) < std::tie(rank_b, b.i, b.j);
    });
    Sets trees(static_cast<int>(graph.rows()));
    std::vector<Edge> kept;
    for (const Edge &edge : candidates) {
        if (trees.unite(edge.i, edge.j)) {
            kept.push_back(edge);
        }
    }
    std::sort(kept.begin(), kept.end(),
              [](const Edge &a, const Edge &b) { return std::tie(a.i, a.j) < std::tie(b.i, b.j); });
    return kept;
}

int components(const Eigen::MatrixXf &graph)
{
    Sets sets(static_cast<int>(graph.rows()));
    int count = static_cast<int>(graph.rows());
    for (const Edge &edge : edges(graph)) {
        count -= sets.unite(edge.i, edge.j) ? 1 : 0;
    }
    return count;
}

} // namespace plain
