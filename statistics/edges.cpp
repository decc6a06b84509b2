// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/edges.h"

#include <algorithm>
#include <cmath>

#include "statistics/error.h"
#include "statistics/text.h"

namespace statistics
{
namespace
{

void require_square(const Eigen::MatrixXd &matrix)
{
    if (matrix.rows() != matrix.cols()) {
        throw Error("the matrix has " + counted(matrix.rows(), "row") + " and " +
                    counted(matrix.cols(), "column") +
                    ", a connectivity matrix has as many of both");
    }
}

} // namespace

Index edge_count(Index nodes)
{
    return nodes < 2 ? 0 : nodes * (nodes - 1) / 2;
}

int node_count(Index edges)
{
    const auto nodes = static_cast<Index>(
        std::llround((1.0 + std::sqrt(1.0 + 8.0 * static_cast<double>(edges))) / 2.0));
    if (edges < 1 || edge_count(nodes) != edges) {
        throw Error(counted(edges, "edge") + " are no upper triangle of a matrix");
    }
    return static_cast<int>(nodes);
}

std::vector<NodePair> node_pairs(int nodes)
{
    std::vector<NodePair> pairs;
    pairs.reserve(static_cast<std::size_t>(edge_count(nodes)));
    for (int i = 0; i < nodes; ++i) {
        for (int j = i + 1; j < nodes; ++j) {
            pairs.push_back({i, j});
        }
    }
    return pairs;
}

std::vector<char> nodes_present(const Eigen::MatrixXd &matrix)
{
    require_square(matrix);
    std::vector<char> present(static_cast<std::size_t>(matrix.rows()), 0);
    for (Index j = 0; j < matrix.cols(); ++j) {
        for (Index i = 0; i < matrix.rows(); ++i) {
            if (i != j && !std::isnan(matrix(i, j))) {
                present[i] = present[j] = 1;
            }
        }
    }
    return present;
}

CompletePart complete_part(const std::vector<std::vector<char>> &present, double min_node_subjects)
{
    if (!(min_node_subjects >= 0.0 && min_node_subjects <= 1.0)) {
        throw Error("the share of subjects that a node needs lies between 0 and 1");
    }
    if (present.empty()) {
        throw Error("there are no subjects");
    }
    const std::size_t nodes = present.front().size();
    for (std::size_t s = 0; s < present.size(); ++s) {
        if (present[s].size() != nodes) {
            throw Error("subject " + std::to_string(s) + " has " +
                        counted(static_cast<Index>(present[s].size()), "node") +
                        ", the first subject has " + std::to_string(nodes));
        }
    }

    CompletePart part;
    // A share that falls on a whole number of subjects must not miss it by rounding.
    const double needed = min_node_subjects * static_cast<double>(present.size()) - 1e-9;
    for (std::size_t node = 0; node < nodes; ++node) {
        const auto have = std::count_if(present.begin(), present.end(),
                                        [node](const auto &of) { return of[node] != 0; });
        (static_cast<double>(have) < needed ? part.dropped_nodes : part.nodes)
            .push_back(static_cast<Index>(node));
    }
    for (std::size_t s = 0; s < present.size(); ++s) {
        std::vector<Index> lacking;
        std::copy_if(part.nodes.begin(), part.nodes.end(), std::back_inserter(lacking),
                     [&](Index node) { return present[s][node] == 0; });
        if (lacking.empty()) {
            part.subjects.push_back(static_cast<Index>(s));
        } else {
            part.dropped_subjects.push_back(static_cast<Index>(s));
            part.lacking.push_back(std::move(lacking));
        }
    }
    if (part.nodes.size() < 2) {
        throw Error(counted(static_cast<Index>(part.nodes.size()), "node") + " of " +
                    std::to_string(nodes) +
                    " left that enough subjects have; at least 2 are needed");
    }
    if (part.subjects.empty()) {
        throw Error("no subject has all of the " +
                    counted(static_cast<Index>(part.nodes.size()), "node"));
    }
    return part;
}

Eigen::RowVectorXd edges_of(const Eigen::MatrixXd &matrix, const std::vector<Index> &nodes,
                            const std::vector<std::string> &node_names)
{
    require_square(matrix);
    const auto name = [&](Index node) {
        return node_names.empty() ? std::to_string(node) : node_names.at(node);
    };
    Eigen::RowVectorXd edges(edge_count(static_cast<Index>(nodes.size())));
    Index at = 0;
    for (std::size_t a = 0; a < nodes.size(); ++a) {
        for (std::size_t b = a + 1; b < nodes.size(); ++b) {
            const double value = matrix(nodes[a], nodes[b]);
            const double mirrored = matrix(nodes[b], nodes[a]);
            const auto edge = [&] { return "the edge " + name(nodes[a]) + " - " + name(nodes[b]); };
            if (std::isnan(value) || std::isnan(mirrored)) {
                throw Error(edge() + " is n/a although both nodes have other edges");
            }
            if (!std::isfinite(value) || !std::isfinite(mirrored)) {
                throw Error(edge() + " is infinite");
            }
            if (std::abs(value - mirrored) > 1e-6 * std::max(1.0, std::abs(value))) {
                throw Error(edge() + " has two values, the matrix is not symmetric");
            }
            edges(at++) = value;
        }
    }
    return edges;
}

void require_finite(const EdgeData &data)
{
    if (data.rows() == 0 || data.cols() == 0) {
        throw Error("there are " + counted(data.rows(), "subject") + " and " +
                    counted(data.cols(), "edge") + " to test");
    }
    for (Index s = 0; s < data.rows(); ++s) {
        for (Index e = 0; e < data.cols(); ++e) {
            if (!std::isfinite(data(s, e))) {
                throw Error("edge " + std::to_string(e) + " of subject " + std::to_string(s) +
                            " is not a finite number; tests run on complete data");
            }
        }
    }
}

} // namespace statistics
