// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <random>
#include <string>
#include <vector>

#include <Eigen/Core>

/// Graphs with known properties, and random ones that are the same on every platform.
namespace graphs
{

Eigen::MatrixXf complete(int n, float weight = 1.0F);
/// Node 0 in the middle of n - 1 others.
Eigen::MatrixXf star(int n, float weight = 1.0F);
Eigen::MatrixXf path(int n, float weight = 1.0F);
Eigen::MatrixXf cycle(int n, float weight = 1.0F);
/// Two complete graphs of n nodes each; node n - 1 and node n are bridged.
Eigen::MatrixXf two_cliques(int n, float bridge);
/// Both graphs side by side, unconnected.
Eigen::MatrixXf side_by_side(const Eigen::MatrixXf &a, const Eigen::MatrixXf &b);

/// Which weights a random graph has.
enum class Weights {
    uniform, ///< (0, 1]
    decades, ///< 1e-6 to 1, evenly over the decades
    tied,    ///< 0.25, 0.5, 0.75 or 1
    one,     ///< 1
    signs    ///< [-1, 1]
};

using Random = std::mt19937;

/// Even over [0, 1), from 24 random bits.
double uniform(Random &random);
/// Even over 0 to bound - 1.
int below(int bound, Random &random);

/// Symmetric with zero diagonal; each pair is an edge with probability \p density.
Eigen::MatrixXf random(int n, double density, Weights weights, Random &random);
/// Of random size 0 to \p largest, density and kind of weights.
Eigen::MatrixXf any(int largest, Random &random);

std::vector<int> permutation(int n, Random &random);
/// Node k of the result is node order[k] of the graph.
Eigen::MatrixXf permuted(const Eigen::MatrixXf &graph, const std::vector<int> &order);
Eigen::ArrayXf permuted(const Eigen::ArrayXf &values, const std::vector<int> &order);

} // namespace graphs
