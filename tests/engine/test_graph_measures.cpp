// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/graph_measures.h"

#include <QString>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nodalis/nodalis.h>

#include <string>

namespace
{

using testing::ElementsAre;

Eigen::MatrixXf graph()
{
    Eigen::MatrixXf weights(4, 4);
    weights << 0.0f, 0.9f, 0.2f, 0.0f, //
        0.9f, 0.0f, 0.5f, 0.3f,        //
        0.2f, 0.5f, 0.0f, 0.0f,        //
        0.0f, 0.3f, 0.0f, 0.0f;
    return weights;
}

std::vector<std::string> columns()
{
    std::vector<std::string> names;
    for (const GraphMeasure &measure : graphMeasuresOfTables())
        names.emplace_back(measure.column);
    return names;
}

TEST(GraphMeasures, HaveColumnsThatEndWithThoseOfTheMatrix)
{
    EXPECT_THAT(columns(), ElementsAre("clustering_coeff", "local_efficiency", "degree",
                                       "eigenvector_centrality", "strength",
                                       "nodal_global_efficiency", "global_efficiency"));
}

TEST(GraphMeasures, AreFoundByTheirKeys)
{
    for (const GraphMeasure &measure : graphMeasures())
        EXPECT_EQ(graphMeasure(QString::fromUtf8(measure.key)), &measure);
    EXPECT_EQ(graphMeasure("nodal_global_efficiency"), nullptr) << "this is a column";
    EXPECT_EQ(graphMeasure(""), nullptr);
}

TEST(GraphMeasures, AreEitherOfNodesOrOfTheMatrix)
{
    for (const GraphMeasure &measure : graphMeasures()) {
        EXPECT_NE(measure.perNode == nullptr, measure.perMatrix == nullptr) << measure.key;
        EXPECT_EQ(measure.perMatrix != nullptr, std::string(measure.key) == "global_efficiency");
        EXPECT_TRUE(measure.perNode != nullptr || measure.withEffort != nullptr) << "a column";
    }
}

TEST(GraphMeasures, GiveTheValuesOfTheLibrary)
{
    const Eigen::MatrixXf weights = graph();
    const auto column = [&](const char *key) { return columnOf(*graphMeasure(key), weights); };
    const auto same = [](const Eigen::ArrayXf &a, const Eigen::ArrayXf &b) {
        return (a == b).all();
    };
    EXPECT_TRUE(same(column("clustering_coeff"), nodalis::clustering_coeff(weights)));
    EXPECT_TRUE(same(column("local_efficiency"), nodalis::local_efficiency(weights)));
    EXPECT_TRUE(same(column("degree"), nodalis::degree(weights)));
    EXPECT_TRUE(same(column("eigenvector_centrality"), nodalis::eigenvector_centrality(weights)));
    EXPECT_TRUE(same(column("strength"), nodalis::strength(weights)));
    EXPECT_TRUE(same(column("nodal_ge"), nodalis::nodal_global_efficiency(weights)));
    EXPECT_TRUE(same(column("global_efficiency"),
                     Eigen::ArrayXf::Constant(4, nodalis::global_efficiency(weights))));
}

TEST(GraphMeasures, GiveAListOfValuesForEachMatrix)
{
    const std::vector<std::vector<float>> values =
        valuesPerNode(*graphMeasure("degree"), {graph(), Eigen::MatrixXf::Zero(2, 2), {}});
    EXPECT_THAT(values, ElementsAre(ElementsAre(2, 3, 2, 1), ElementsAre(0, 0), ElementsAre()));
}

} // namespace
