// SPDX-License-Identifier: GPL-3.0-or-later
// A second opinion where igraph has the measure; docs/graph-measures.md lists where it differs.

#include <algorithm>

#include <gtest/gtest.h>
#include <nodalis/nodalis.h>

#include "tests/nodalis/graphs.h"
#include "tests/nodalis/igraph_graph.h"
#include "tests/nodalis/near.h"
#include "tests/nodalis/plain.h"

namespace
{

class Igraph : public testing::TestWithParam<std::tuple<int, double, graphs::Weights>>
{
protected:
    Eigen::MatrixXf graph() const
    {
        const auto [n, density, weights] = GetParam();
        graphs::Random random(51);
        return graphs::random(n, density, weights, random);
    }
};

TEST_P(Igraph, CountsTheSame)
{
    const Eigen::MatrixXf matrix = graph();
    const IgraphGraph other(matrix);
    EXPECT_TRUE(near(nodalis::degree(matrix), other.degree(), 0.0));
    EXPECT_TRUE(near(nodalis::strength(matrix), other.strength()));
    const Eigen::MatrixXf binary = (matrix.array() > 0.0F).cast<float>();
    EXPECT_TRUE(near(nodalis::clustering_coeff(binary), other.binary_clustering()));
}

TEST_P(Igraph, FindsTheSamePaths)
{
    const Eigen::MatrixXf matrix = graph();
    const IgraphGraph other(matrix);
    EXPECT_TRUE(near(nodalis::global_efficiency(matrix), other.global_efficiency()));
    EXPECT_TRUE(near(nodalis::global_efficiency(matrix), other.floyd_warshall_efficiency()));
    EXPECT_TRUE(near(nodalis::nodal_global_efficiency(matrix), other.harmonic_centrality()));
    EXPECT_TRUE(near(nodalis::local_efficiency(matrix), other.local_efficiency()));
}

TEST_P(Igraph, FindsTheSameTree)
{
    const Eigen::MatrixXf matrix = graph();
    const auto [total, edges] = IgraphGraph(matrix).spanning_forest();
    const auto [kept, tree] = nodalis::mst::minimum_spanning_tree(matrix, false, false);
    EXPECT_EQ(tree.sum(), edges);
    EXPECT_NEAR(kept.cast<double>().sum(), total, 1e-9 * total);
}

TEST_P(Igraph, FindsTheSameEigenvector)
{
    // A path through all nodes joins the components, whose vectors igraph does not tell apart.
    const Eigen::MatrixXf parts = graph();
    const Eigen::MatrixXf matrix =
        parts.cwiseMax(graphs::path(static_cast<int>(parts.rows()), 0.25F));
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(matrix),
                     IgraphGraph(matrix).eigenvector_centrality(),
                     1e-6 / std::min(plain::relative_gap(matrix), 1.0)));
}

INSTANTIATE_TEST_SUITE_P(Shapes, Igraph,
                         testing::Combine(testing::Values(2, 5, 12, 40, 90),
                                          testing::Values(0.1, 0.4, 1.0),
                                          testing::Values(graphs::Weights::uniform,
                                                          graphs::Weights::decades,
                                                          graphs::Weights::tied)));

} // namespace
