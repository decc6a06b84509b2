// SPDX-License-Identifier: GPL-3.0-or-later
// Networks and sides from names and tables, and the orders by them and by similarity.
#include "host/explorer/node_facts.h"
#include "host/explorer/node_ordering.h"
#include "tests/host/support/host_files.h"

#include <cmath>
#include <gmock/gmock.h>
#include <set>

namespace corvane
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

TEST(NodeFacts, NetworkIsInTheName)
{
    EXPECT_EQ(networkOfName(QStringLiteral("7Networks_LH_Vis_1")), QStringLiteral("Vis"));
    EXPECT_EQ(networkOfName(QStringLiteral("17Networks_RH_VisCent_ExStr_2")),
              QStringLiteral("VisCent"));
    EXPECT_EQ(networkOfName(QStringLiteral("Networks_LH_Vis_1")), QString());
    EXPECT_EQ(networkOfName(QStringLiteral("Calcarine L")), QString());
}

TEST(NodeFacts, SideIsInTheName)
{
    for (const char *const name : {"7Networks_LH_Vis_1", "Calcarine L", "ctx-lh-insula",
                                   "Left-Hippocampus", "Precentral_L", "L_V1_ROI", "insula.left"})
        EXPECT_EQ(hemisphereOfName(QLatin1String(name)), QStringLiteral("Left")) << name;
    EXPECT_EQ(hemisphereOfName(QStringLiteral("Amygdala_R")), QStringLiteral("Right"));
    for (const char *const name : {"Brainstem", "Vermis", "Lingual", "Regional", "Rolandic"})
        EXPECT_EQ(hemisphereOfName(QLatin1String(name)), QString()) << name;
}

TEST(NodeFacts, TableGoesBeforeNames)
{
    std::vector<ResultNode> nodes{{QStringLiteral("a_L")}, {QStringLiteral("b_R")}};
    takeLabels(nodes,
               {{1, {QStringLiteral("a_L"), {}, QStringLiteral("Visual"), QStringLiteral("rh")}}},
               QStringLiteral("t.tsv"));
    takeNames(nodes);
    EXPECT_EQ(nodes[0].network, QStringLiteral("Visual"));
    EXPECT_EQ(nodes[0].hemisphere, QStringLiteral("Right"));
    EXPECT_EQ(nodes[1].hemisphere, QStringLiteral("Right"));
    EXPECT_THAT(errorOf([&] {
                    takeLabels(nodes, {{1, {QStringLiteral("c"), {}}}}, QStringLiteral("t.tsv"));
                }),
                HasSubstr("t.tsv: names: found none of the nodes"));
}

std::vector<ResultNode> sixNodes()
{
    const auto node = [](const char *name, const char *network, const char *side) {
        return ResultNode{QLatin1String(name), QLatin1String(network), QLatin1String(side)};
    };
    return {node("0", "B", "Right"), node("1", "A", "Right"), node("2", "", "Left"),
            node("3", "B", "Left"),  node("4", "A", "Left"),  node("5", "B", "Right")};
}

QStringList groupsOf(const OrderedNodes &order)
{
    QStringList texts;
    for (const NodeGroup &group : order.groups)
        texts += QStringLiteral("%1 %2+%3").arg(group.name).arg(group.first).arg(group.count);
    return texts;
}

TEST(NodeOrdering, NetworksStandTogetherTheirLeftSideFirst)
{
    const OrderedNodes order = orderedNodes(sixNodes(), NodeOrdering::Network, {});
    EXPECT_THAT(order.nodes, ElementsAre(3, 0, 5, 4, 1, 2));
    EXPECT_EQ(groupsOf(order), QStringList({QStringLiteral("B 0+3"), QStringLiteral("A 3+2"),
                                            QStringLiteral("no network 5+1")}));
}

TEST(NodeOrdering, SidesStandTogether)
{
    const OrderedNodes order = orderedNodes(sixNodes(), NodeOrdering::Hemisphere, {});
    EXPECT_THAT(order.nodes, ElementsAre(3, 4, 2, 0, 5, 1));
    EXPECT_EQ(groupsOf(order),
              QStringList({QStringLiteral("Left 0+3"), QStringLiteral("Right 3+3")}));
}

TEST(NodeOrdering, AtlasWithoutNetworksKeepsItsOrder)
{
    const std::vector<ResultNode> nodes{{QStringLiteral("b")}, {QStringLiteral("a")}};
    for (const auto ordering :
         {NodeOrdering::Network, NodeOrdering::Hemisphere, NodeOrdering::File}) {
        const OrderedNodes order = orderedNodes(nodes, ordering, {});
        EXPECT_THAT(order.nodes, ElementsAre(0, 1));
        EXPECT_TRUE(order.groups.empty());
    }
}

TEST(NodeOrdering, SimilarNodesStandSideBySide)
{
    // Three blocks that the file has shuffled; a node without values comes last.
    const int nodes = 13;
    Eigen::MatrixXd values = Eigen::MatrixXd::Constant(nodes, nodes, std::nan(""));
    for (int j = 0; j < 12; ++j)
        for (int i = 0; i < 12; ++i)
            values(i, j) =
                i % 3 == j % 3 ? 0.8 + 0.01 * ((i * 5 + j * 5) % 7) : 0.02 * ((i + j) % 5);
    const std::vector<int> order = similarityOrder(values);
    ASSERT_EQ(order.size(), 13U);
    EXPECT_EQ(order.back(), 12);
    for (std::size_t place = 0; place < 12; ++place)
        EXPECT_EQ(order[place] % 3, order[place / 4 * 4] % 3) << place;
    std::vector<int> sorted = order;
    std::sort(sorted.begin(), sorted.end());
    for (int node = 0; node < nodes; ++node)
        EXPECT_EQ(sorted[std::size_t(node)], node);
}

/// The plain way: all pairs of clusters looked at for each join.
std::vector<std::set<int>> joinsOf(Eigen::MatrixXd distances)
{
    std::vector<std::set<int>> clusters;
    for (int n = 0; n < distances.rows(); ++n)
        clusters.push_back({n});
    std::vector<std::set<int>> joins;
    while (clusters.size() > 1) {
        std::pair<std::size_t, std::size_t> best;
        double least = 1e9;
        for (std::size_t a = 0; a < clusters.size(); ++a)
            for (std::size_t b = a + 1; b < clusters.size(); ++b) {
                double sum = 0;
                for (const int i : clusters[a])
                    for (const int j : clusters[b])
                        sum += distances(i, j);
                sum /= double(clusters[a].size() * clusters[b].size());
                if (sum < least) {
                    least = sum;
                    best = {a, b};
                }
            }
        clusters[best.first].insert(clusters[best.second].begin(), clusters[best.second].end());
        joins.push_back(clusters[best.first]);
        clusters.erase(clusters.begin() + std::ptrdiff_t(best.second));
    }
    return joins;
}

TEST(NodeOrdering, EveryClusterOfAverageLinkageIsAStretchOfTheOrder)
{
    const int nodes = 17;
    Eigen::MatrixXd values(nodes, nodes);
    unsigned state = 5;
    for (int j = 0; j < nodes; ++j)
        for (int i = 0; i <= j; ++i) {
            state = state * 1664525U + 1013904223U;
            values(i, j) = values(j, i) = double(state >> 8) / 16777216;
        }
    Eigen::MatrixXd distances = Eigen::MatrixXd::Zero(nodes, nodes);
    for (int a = 0; a < nodes; ++a)
        for (int b = 0; b < nodes; ++b) {
            Eigen::ArrayXd x(nodes - 2), y(nodes - 2);
            int n = 0;
            for (int k = 0; k < nodes && a != b; ++k)
                if (k != a && k != b) {
                    x[n] = values(k, a);
                    y[n++] = values(k, b);
                }
            if (a == b)
                continue;
            x -= x.mean();
            y -= y.mean();
            distances(a, b) = 1 - (x * y).sum() / std::sqrt((x * x).sum() * (y * y).sum());
        }
    const std::vector<int> order = similarityOrder(values);
    for (const std::set<int> &cluster : joinsOf(distances)) {
        std::set<int> places;
        for (int place = 0; place < nodes; ++place)
            if (cluster.count(order[std::size_t(place)]) > 0)
                places.insert(place);
        EXPECT_EQ(std::size_t(*places.rbegin() - *places.begin() + 1), cluster.size());
    }
}

TEST(NodeOrdering, ClustersMeetWhereTheirNodesAreMostAlike)
{
    // On a line every node is most like its neighbours: joined at the right ends, the whole line is
    // in order, forwards or backwards, whatever its nodes are called.
    const int nodes = 16;
    std::vector<int> line(nodes);
    for (int n = 0; n < nodes; ++n)
        line[std::size_t((n * 7 + 3) % nodes)] = n;
    Eigen::MatrixXd values(nodes, nodes);
    for (int a = 0; a < nodes; ++a)
        for (int b = 0; b < nodes; ++b) {
            const double apart = line[std::size_t(a)] - line[std::size_t(b)];
            values(a, b) = std::exp(-apart * apart / 8);
        }
    std::vector<int> places;
    for (const int node : similarityOrder(values))
        places.push_back(line[std::size_t(node)]);
    if (places.front() > places.back())
        std::reverse(places.begin(), places.end());
    for (int n = 0; n < nodes; ++n)
        EXPECT_EQ(places[std::size_t(n)], n);
}

} // namespace
} // namespace corvane
