// SPDX-License-Identifier: GPL-3.0-or-later
// Measures a graph: prints a line per node, and writes the spanning tree when given a path.
//
//   nodalis-example [TREE.csv]

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>

#include <nodalis/nodalis.h>

namespace
{

/// A ring of nodes whose connections fade with their distance along it. Some of the longer ones are
/// missing.
Eigen::MatrixXf example_graph(int n)
{
    Eigen::MatrixXf weights = Eigen::MatrixXf::Zero(n, n);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            const int steps = std::min(std::abs(i - j), n - std::abs(i - j));
            if (steps < 3 || (i * j + i + j) % 5 < 3) {
                weights(i, j) = std::exp(-0.1F * static_cast<float>(steps));
            }
        }
    }
    // Makes any matrix a graph: symmetric, finite, without loops.
    nodalis::treatment(weights);
    return weights;
}

int run(const char *tree_path)
{
    Eigen::MatrixXf weights = example_graph(80);
    std::printf("global efficiency %.9g\n", double{nodalis::global_efficiency(weights)});

    const Eigen::ArrayXf degree = nodalis::degree(weights);
    const Eigen::ArrayXf strength = nodalis::strength(weights);
    const Eigen::ArrayXf clustering = nodalis::clustering_coeff(weights);
    const Eigen::ArrayXf local = nodalis::local_efficiency(weights);
    const Eigen::ArrayXf nodal = nodalis::nodal_global_efficiency(weights);
    const Eigen::ArrayXf centrality = nodalis::eigenvector_centrality(weights);
    std::printf("node degree strength clustering local nodal centrality\n");
    for (Eigen::Index i = 0; i < weights.rows(); ++i) {
        std::printf("%d %.9g %.9g %.9g %.9g %.9g %.9g\n", static_cast<int>(i), double{degree[i]},
                    double{strength[i]}, double{clustering[i]}, double{local[i]}, double{nodal[i]},
                    double{centrality[i]});
    }

    // Entries are strengths, and both halves of the tree are wanted.
    auto [kept, tree] = nodalis::mst::minimum_spanning_tree(weights, false, true);
    std::printf("%d edges span the graph\n", tree.sum() / 2);
    std::printf("distance of graph and tree %.9g\n",
                double{nodalis::distances::spectral_euclidean(weights, kept, 0)});
    if (tree_path != nullptr && !nodalis::to_csv(kept, tree_path)) {
        std::fprintf(stderr, "cannot write %s\n", tree_path);
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    try {
        return run(argc > 1 ? argv[1] : nullptr);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
