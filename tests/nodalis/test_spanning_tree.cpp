// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>

#include <gtest/gtest.h>
#include <nodalis/mst.h>

#include "tests/nodalis/graphs.h"
#include "tests/nodalis/plain.h"

namespace
{

using nodalis::mst::minimum_spanning_tree;

struct Tree {
    Eigen::MatrixXf kept;
    Eigen::MatrixXi edges;
};

Tree wanted_tree(const Eigen::MatrixXf &graph, bool lengths, bool mirrored)
{
    Tree tree{Eigen::MatrixXf::Zero(graph.rows(), graph.cols()),
              Eigen::MatrixXi::Zero(graph.rows(), graph.cols())};
    for (const plain::Edge &edge : plain::minimum_spanning_tree(graph, lengths)) {
        tree.kept(edge.i, edge.j) = edge.weight;
        tree.edges(edge.i, edge.j) = 1;
        if (mirrored) {
            tree.kept(edge.j, edge.i) = edge.weight;
            tree.edges(edge.j, edge.i) = 1;
        }
    }
    return tree;
}

TEST(SpanningTree, IsKruskalsOnThousandsOfGraphs)
{
    graphs::Random random(31);
    for (int round = 0; round < 4000 && !testing::Test::HasFailure(); ++round) {
        const Eigen::MatrixXf graph = graphs::any(40, random);
        SCOPED_TRACE("round " + std::to_string(round));
        for (const bool lengths : {false, true}) {
            for (const bool mirrored : {false, true}) {
                const auto [kept, edges] = minimum_spanning_tree(graph, lengths, mirrored);
                const Tree wanted = wanted_tree(graph, lengths, mirrored);
                EXPECT_EQ(kept, wanted.kept);
                EXPECT_EQ(edges, wanted.edges);
            }
        }
    }
}

TEST(SpanningTree, IsKruskalsOnLargeGraphs)
{
    graphs::Random random(32);
    for (const int n : {200, 333}) {
        for (const auto weights :
             {graphs::Weights::uniform, graphs::Weights::tied, graphs::Weights::one}) {
            for (const double density : {0.01, 0.2, 1.0}) {
                const Eigen::MatrixXf graph = graphs::random(n, density, weights, random);
                const auto [kept, edges] = minimum_spanning_tree(graph, false, true);
                const Tree wanted = wanted_tree(graph, false, true);
                EXPECT_EQ(kept, wanted.kept);
                EXPECT_EQ(edges, wanted.edges);
            }
        }
    }
}

TEST(SpanningTree, HasAnEdgeLessThanNodesPerComponent)
{
    graphs::Random random(33);
    for (int round = 0; round < 2000; ++round) {
        const Eigen::MatrixXf graph = graphs::any(50, random);
        const auto [kept, edges] = minimum_spanning_tree(graph, false, false);
        EXPECT_EQ(edges.sum(), graph.rows() - plain::components(graph));
        EXPECT_EQ(plain::components(kept + kept.transpose()), plain::components(graph));
    }
}

TEST(SpanningTree, PrefersStrengthsOrShortLengths)
{
    Eigen::MatrixXf graph = graphs::complete(3, 1.0F);
    graph(0, 1) = graph(1, 0) = 0.5F;
    graph(1, 2) = graph(2, 1) = 2.0F;
    EXPECT_EQ(std::get<0>(minimum_spanning_tree(graph, false, false)).sum(), 3.0F);
    EXPECT_EQ(std::get<0>(minimum_spanning_tree(graph, true, false)).sum(), 1.5F);
}

TEST(SpanningTree, TellsWeightsApartThatInversesWouldMerge)
{
    // 1/w of both rounds to the same float.
    Eigen::MatrixXf graph = Eigen::MatrixXf::Zero(3, 3);
    const float weaker = 0.91F;
    const float stronger = std::nextafter(weaker, 1.0F);
    EXPECT_EQ(1.0F / stronger, 1.0F / weaker);
    graph(0, 1) = graph(1, 0) = weaker;
    graph(0, 2) = graph(2, 0) = stronger;
    graph(1, 2) = graph(2, 1) = stronger;
    const Eigen::MatrixXf kept = std::get<0>(minimum_spanning_tree(graph, false, false));
    EXPECT_EQ(kept(0, 1), 0.0F);
    EXPECT_EQ(kept(0, 2), stronger);
    EXPECT_EQ(kept(1, 2), stronger);
}

TEST(SpanningTree, LeavesOutWeightsThatAreNotPositive)
{
    Eigen::MatrixXf graph = graphs::complete(4, -1.0F);
    graph(0, 1) = graph(1, 0) = 0.25F;
    for (const bool lengths : {false, true}) {
        const auto [kept, edges] = minimum_spanning_tree(graph, lengths, false);
        EXPECT_EQ(edges.sum(), 1);
        EXPECT_EQ(kept(0, 1), 0.25F);
    }
}

} // namespace
