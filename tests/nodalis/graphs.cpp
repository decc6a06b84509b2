// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/nodalis/graphs.h"

#include <cmath>
#include <numeric>
#include <utility>

namespace graphs
{
namespace
{

void connect(Eigen::MatrixXf &graph, int i, int j, float weight)
{
    graph(i, j) = graph(j, i) = weight;
}

float weight_of(Weights weights, Random &random)
{
    switch (weights) {
    case Weights::uniform:
        return static_cast<float>(1.0 - uniform(random));
    case Weights::decades:
        return static_cast<float>(std::pow(10.0, -6.0 * uniform(random)));
    case Weights::tied:
        return 0.25F * static_cast<float>(1 + below(4, random));
    case Weights::one:
        return 1.0F;
    case Weights::signs:
        return static_cast<float>(2.0 * uniform(random) - 1.0);
    }
    return 0.0F;
}

} // namespace

Eigen::MatrixXf complete(int n, float weight)
{
    Eigen::MatrixXf graph = Eigen::MatrixXf::Constant(n, n, weight);
    graph.diagonal().setZero();
    return graph;
}

Eigen::MatrixXf star(int n, float weight)
{
    Eigen::MatrixXf graph = Eigen::MatrixXf::Zero(n, n);
    for (int i = 1; i < n; ++i) {
        connect(graph, 0, i, weight);
    }
    return graph;
}

Eigen::MatrixXf path(int n, float weight)
{
    Eigen::MatrixXf graph = Eigen::MatrixXf::Zero(n, n);
    for (int i = 1; i < n; ++i) {
        connect(graph, i - 1, i, weight);
    }
    return graph;
}

Eigen::MatrixXf cycle(int n, float weight)
{
    Eigen::MatrixXf graph = path(n, weight);
    connect(graph, 0, n - 1, weight);
    return graph;
}

Eigen::MatrixXf two_cliques(int n, float bridge)
{
    Eigen::MatrixXf graph = side_by_side(complete(n), complete(n));
    connect(graph, n - 1, n, bridge);
    return graph;
}

Eigen::MatrixXf side_by_side(const Eigen::MatrixXf &a, const Eigen::MatrixXf &b)
{
    Eigen::MatrixXf graph = Eigen::MatrixXf::Zero(a.rows() + b.rows(), a.rows() + b.rows());
    graph.topLeftCorner(a.rows(), a.rows()) = a;
    graph.bottomRightCorner(b.rows(), b.rows()) = b;
    return graph;
}

double uniform(Random &random)
{
    return static_cast<double>(random() >> 8U) * 0x1p-24;
}

int below(int bound, Random &random)
{
    return static_cast<int>(uniform(random) * bound);
}

Eigen::MatrixXf random(int n, double density, Weights weights, Random &random)
{
    Eigen::MatrixXf graph = Eigen::MatrixXf::Zero(n, n);
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < j; ++i) {
            if (uniform(random) < density) {
                connect(graph, i, j, weight_of(weights, random));
            }
        }
    }
    return graph;
}

Eigen::MatrixXf any(int largest, Random &random)
{
    const int n = below(largest + 1, random);
    const double density = below(4, random) == 0 ? 1.0 : uniform(random);
    const auto weights = static_cast<Weights>(below(4, random));
    return graphs::random(n, density, weights, random);
}

std::vector<int> permutation(int n, Random &random)
{
    std::vector<int> order(n);
    std::iota(order.begin(), order.end(), 0);
    for (int i = n - 1; i > 0; --i) {
        std::swap(order[i], order[below(i + 1, random)]);
    }
    return order;
}

Eigen::MatrixXf permuted(const Eigen::MatrixXf &graph, const std::vector<int> &order)
{
    return graph(order, order);
}

Eigen::ArrayXf permuted(const Eigen::ArrayXf &values, const std::vector<int> &order)
{
    return values(order);
}

} // namespace graphs
