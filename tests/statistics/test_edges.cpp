// SPDX-License-Identifier: GPL-3.0-or-later
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "statistics/edges.h"
#include "statistics/fisher_z.h"
#include "tests/statistics/error_text.h"

namespace
{

using namespace statistics;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
using Numbers = std::vector<Index>;

/// Entry (i, j) is 10 i + j of the smaller and the larger index, the diagonal 1.
Eigen::MatrixXd numbered(int nodes)
{
    Eigen::MatrixXd matrix = Eigen::MatrixXd::Identity(nodes, nodes);
    for (const auto [first, second] : node_pairs(nodes)) {
        matrix(first, second) = matrix(second, first) = 10 * first + second;
    }
    return matrix;
}

Eigen::MatrixXd without_node(Eigen::MatrixXd matrix, Index node)
{
    matrix.row(node).setConstant(nan);
    matrix.col(node).setConstant(nan);
    return matrix;
}

TEST(Edges, RowByRowOfTheUpperTriangle)
{
    const Eigen::RowVectorXd edges = edges_of(numbered(4), {0, 1, 2, 3});
    EXPECT_EQ(edges, (Eigen::RowVectorXd(6) << 1, 2, 3, 12, 13, 23).finished());
    EXPECT_EQ(edges_of(numbered(4), {0, 1, 3}), Eigen::RowVector3d(1, 3, 13));
    EXPECT_EQ(edge_count(400), 79800);
    EXPECT_EQ(edge_count(1), 0);
    EXPECT_EQ(node_count(79800), 400);
    EXPECT_EQ(node_count(1), 2);
    EXPECT_EQ(node_pairs(3)[2].first, 1);
    EXPECT_EQ(node_pairs(3)[2].second, 2);
    EXPECT_EQ(error_text([] { node_count(7); }), "7 edges are no upper triangle of a matrix");
    EXPECT_EQ(error_text([] { node_count(0); }), "0 edges are no upper triangle of a matrix");
}

TEST(Edges, RefusesWhatIsNoNetwork)
{
    const std::vector<std::string> names = {"A", "B", "C"};
    Eigen::MatrixXd matrix = numbered(3);
    matrix(0, 2) = nan;
    EXPECT_EQ(error_text([&] {
                  edges_of(matrix, {0, 1, 2}, names);
              }),
              "the edge A - C is n/a although both nodes have other edges");
    matrix = numbered(3);
    matrix(2, 0) = nan;
    EXPECT_EQ(error_text([&] {
                  edges_of(matrix, {0, 1, 2}, names);
              }),
              "the edge A - C is n/a although both nodes have other edges");
    matrix = numbered(3);
    matrix(0, 1) = -inf;
    EXPECT_EQ(error_text([&] {
                  edges_of(matrix, {0, 1, 2}, names);
              }),
              "the edge A - B is infinite");
    matrix = numbered(3);
    matrix(2, 1) = inf;
    EXPECT_EQ(error_text([&] {
                  edges_of(matrix, {0, 1, 2}, names);
              }),
              "the edge B - C is infinite");
    matrix = numbered(3);
    matrix(2, 1) += 0.1;
    EXPECT_EQ(error_text([&] {
                  edges_of(matrix, {0, 1, 2});
              }),
              "the edge 1 - 2 has two values, the matrix is not symmetric");
    EXPECT_EQ(error_text([] {
                  edges_of(Eigen::MatrixXd::Zero(2, 3), {0, 1});
              }),
              "the matrix has 2 rows and 3 columns, a connectivity matrix has as many of both");
    EXPECT_EQ(error_text([] { nodes_present(Eigen::MatrixXd::Zero(2, 3)); }),
              "the matrix has 2 rows and 3 columns, a connectivity matrix has as many of both");
}

TEST(CompletePart, NodesThatTooFewHaveGoFirst)
{
    // Node 3 is in 8 of 10 subjects, node 1 in 9.
    std::vector<std::vector<char>> present;
    for (int subject = 0; subject < 10; ++subject) {
        Eigen::MatrixXd matrix = numbered(5);
        if (subject < 2) {
            matrix = without_node(matrix, 3);
        }
        if (subject == 4) {
            matrix = without_node(matrix, 1);
        }
        present.push_back(nodes_present(matrix));
    }
    const CompletePart part = complete_part(present);
    EXPECT_EQ(part.dropped_nodes, Numbers({3}));
    EXPECT_EQ(part.nodes, Numbers({0, 1, 2, 4}));
    EXPECT_EQ(part.dropped_subjects, Numbers({4}));
    EXPECT_EQ(part.lacking, std::vector<Numbers>({{1}}));
    EXPECT_EQ(part.subjects, Numbers({0, 1, 2, 3, 5, 6, 7, 8, 9}));

    EXPECT_EQ(complete_part(present, 1.0).nodes, Numbers({0, 2, 4}));
    EXPECT_EQ(complete_part(present, 1.0).subjects.size(), 10U);
    EXPECT_EQ(complete_part(present, 0.8).dropped_subjects, Numbers({0, 1, 4}));
}

TEST(CompletePart, AShareOfWholeSubjectsCounts)
{
    // 9 of 10, 27 of 30, 63 of 70, ...: exactly the share, whatever its rounding.
    for (int tens = 1; tens < 40; ++tens) {
        std::vector<std::vector<char>> present(static_cast<std::size_t>(10 * tens), {1, 1, 1});
        for (int missing = 0; missing < tens; ++missing) {
            present[missing][2] = 0;
        }
        EXPECT_EQ(complete_part(present).nodes.size(), 3U) << tens;
        present[tens][2] = 0;
        EXPECT_EQ(complete_part(present).nodes.size(), 2U) << tens;
    }
}

TEST(CompletePart, RefusesWhatLeavesNothing)
{
    EXPECT_EQ(error_text([] { complete_part({}); }), "there are no subjects");
    for (const double share : {1.1, -0.1, nan}) {
        EXPECT_EQ(error_text([&] {
                      complete_part({{1, 1}}, share);
                  }),
                  "the share of subjects that a node needs lies between 0 and 1");
    }
    EXPECT_EQ(error_text([] {
                  complete_part({{1, 1}, {1, 1, 1}});
              }),
              "subject 1 has 3 nodes, the first subject has 2");
    EXPECT_EQ(error_text([] {
                  complete_part({{1, 0}, {1, 1}});
              }),
              "1 node of 2 left that enough subjects have; at least 2 are needed");
    EXPECT_EQ(error_text([] {
                  complete_part({{1, 0, 1}, {0, 1, 1}}, 0.5);
              }),
              "no subject has all of the 3 nodes");
}

TEST(NodesPresent, ANodeIsThereIfOneEdgeIs)
{
    EXPECT_EQ(nodes_present(without_node(numbered(4), 2)), std::vector<char>({1, 1, 0, 1}));
    EXPECT_EQ(nodes_present(Eigen::MatrixXd::Constant(2, 2, nan)), std::vector<char>({0, 0}));
    Eigen::MatrixXd matrix = numbered(3);
    matrix(0, 1) = matrix(1, 0) = nan;
    EXPECT_EQ(nodes_present(matrix), std::vector<char>({1, 1, 1}));
}

TEST(RequireFinite, NamesSubjectAndEdge)
{
    EdgeData data = EdgeData::Zero(3, 4);
    EXPECT_EQ(error_text([&] { require_finite(data); }), "no error");
    data(2, 1) = nan;
    EXPECT_EQ(error_text([&] { require_finite(data); }),
              "edge 1 of subject 2 is not a finite number; tests run on complete data");
    EXPECT_EQ(error_text([] { require_finite(EdgeData(0, 4)); }),
              "there are 0 subjects and 4 edges to test");
    EXPECT_EQ(error_text([] { require_finite(EdgeData(3, 0)); }),
              "there are 3 subjects and 0 edges to test");
}

TEST(FisherZ, IsTheInverseHyperbolicTangent)
{
    Eigen::RowVectorXd edges(5);
    edges << -0.5, 0.0, 0.25, 0.999999, 0.5;
    const Eigen::RowVectorXd before = edges;
    EXPECT_TRUE(fisher_z(edges).empty());
    for (Index e = 0; e < edges.size(); ++e) {
        EXPECT_NEAR(edges(e), 0.5 * std::log((1.0 + before(e)) / (1.0 - before(e))), 1e-10);
    }
}

TEST(FisherZ, ClipsAndNamesWhatItClipped)
{
    Eigen::RowVectorXd edges(5);
    edges << 1.0, 0.5, -1.0, largest_correlation, 0.99999999;
    EXPECT_EQ(fisher_z(edges), Numbers({0, 2, 4}));
    EXPECT_NEAR(edges(0), 0.5 * std::log((2.0 - 1e-7) / 1e-7), 1e-8);
    EXPECT_EQ(edges(2), -edges(0));
    EXPECT_EQ(edges(3), edges(0));
    EXPECT_EQ(edges(4), edges(0));
}

TEST(FisherZ, RefusesWhatIsNoCorrelation)
{
    Eigen::RowVectorXd edges(2);
    edges << 0.5, -1.5;
    EXPECT_EQ(error_text([&] { fisher_z(edges); }),
              "edge 1 is -1.500000, a correlation lies between -1 and 1: Fisher's z is for "
              "correlations only");
    EXPECT_EQ(edges(0), 0.5) << "nothing is changed";
    edges(1) = nan;
    EXPECT_NE(error_text([&] { fisher_z(edges); }), "no error");
}

TEST(FisherZ, CorrelationsAreToldFromOtherMatrices)
{
    Eigen::MatrixXd matrix = Eigen::MatrixXd::Constant(3, 3, 0.5);
    matrix.diagonal().setOnes();
    EXPECT_TRUE(looks_like_correlations(matrix));
    EXPECT_TRUE(looks_like_correlations(without_node(matrix, 1)));
    EXPECT_FALSE(looks_like_correlations(Eigen::MatrixXd::Constant(3, 3, nan)));
    EXPECT_FALSE(looks_like_correlations(Eigen::MatrixXd::Constant(2, 3, 1.0)));
    EXPECT_FALSE(looks_like_correlations(Eigen::MatrixXd::Constant(3, 3, 0.5))) << "diagonal";
    matrix(0, 1) = 0.4;
    EXPECT_FALSE(looks_like_correlations(matrix)) << "not symmetric";
    matrix(0, 1) = matrix(1, 0) = -1.01;
    EXPECT_FALSE(looks_like_correlations(matrix)) << "below -1";
    matrix(0, 1) = matrix(1, 0) = nan;
    EXPECT_TRUE(looks_like_correlations(matrix));
    matrix(0, 1) = 0.5;
    EXPECT_FALSE(looks_like_correlations(matrix)) << "one half is missing";
    matrix(0, 1) = nan;
    matrix(1, 0) = 0.5;
    EXPECT_FALSE(looks_like_correlations(matrix)) << "the other half is missing";
    // Equal as far as their difference counts, and one of them beyond 1.
    matrix(0, 1) = 1.0;
    matrix(1, 0) = 1.0 + 5e-7;
    EXPECT_FALSE(looks_like_correlations(matrix)) << "above 1 below the diagonal";
}

} // namespace
