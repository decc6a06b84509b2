// SPDX-License-Identifier: GPL-3.0-or-later
#include <nodalis/mst.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "graph.h"

namespace nodalis
{
namespace
{

/// The best known edge from a node outside the tree into it; rank 0 stands for none.
struct Link {
    float rank = 0.0F;
    int to = -1;
};

std::pair<int, int> ends(int a, int b)
{
    return std::minmax(a, b);
}

} // namespace

inline namespace NODALIS_ABI
{

namespace mst
{

std::tuple<Eigen::MatrixXf, Eigen::MatrixXi>
minimum_spanning_tree(const Eigen::MatrixXf &matrix, bool weights_are_lengths, bool mirrored)
{
    const Eigen::MatrixXf weights = detail::conditioned(matrix, "mst::minimum_spanning_tree");
    const int n = static_cast<int>(weights.rows());
    Eigen::MatrixXf kept = Eigen::MatrixXf::Zero(n, n);
    Eigen::MatrixXi tree = Eigen::MatrixXi::Zero(n, n);
    std::vector<Link> links(n);
    std::vector<int> outside(n);
    for (int v = 0; v < n; ++v) {
        outside[v] = v;
    }
    const auto better = [&](float rank, std::pair<int, int> edge, const Link &than, int v) {
        return rank != than.rank ? rank > than.rank : than.to >= 0 && edge < ends(v, than.to);
    };
    while (!outside.empty()) {
        std::size_t best = 0;
        for (std::size_t k = 1; k < outside.size(); ++k) {
            const Link &link = links[outside[k]];
            if (link.to >= 0 &&
                (links[outside[best]].to < 0 || better(link.rank, ends(outside[k], link.to),
                                                       links[outside[best]], outside[best]))) {
                best = k;
            }
        }
        const int u = outside[best];
        outside[best] = outside.back();
        outside.pop_back();
        if (links[u].to >= 0) {
            const auto [i, j] = ends(u, links[u].to);
            kept(i, j) = weights(i, j);
            tree(i, j) = 1;
            if (mirrored) {
                kept(j, i) = weights(i, j);
                tree(j, i) = 1;
            }
        }
        for (const int v : outside) {
            const float w = weights(v, u);
            const float rank = weights_are_lengths ? -w : w;
            if (w > 0.0F && (links[v].to < 0 || better(rank, ends(u, v), links[v], v))) {
                links[v] = {rank, u};
            }
        }
    }
    return {std::move(kept), std::move(tree)};
}

} // namespace mst

} // namespace NODALIS_ABI
} // namespace nodalis
