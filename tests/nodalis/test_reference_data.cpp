// SPDX-License-Identifier: GPL-3.0-or-later
// Every graph of the reference folder, against values that other tools computed in double.

#include <algorithm>
#include <cmath>

#include <QJsonArray>
#include <gtest/gtest.h>
#include <nodalis/nodalis.h>

#include "tests/nodalis/near.h"
#include "tests/nodalis/plain.h"
#include "tests/nodalis/reference_data.h"

namespace
{

using reference_data::matrix;
using reference_data::values;

/// The endings that the tests below read; together they hold every case of the folder.
const std::string missing = "";

std::vector<std::string> cases_that(bool (*wanted)(const std::string &name))
{
    std::vector<std::string> names;
    for (const std::string &name : reference_data::names_with(".expected.json")) {
        if (wanted(name)) {
            names.push_back(name);
        }
    }
    return names.empty() ? std::vector<std::string>{missing} : names;
}

bool begins(const std::string &name, const std::string &with)
{
    return name.rfind(with, 0) == 0;
}

bool is_treatment(const std::string &name)
{
    return begins(name, "treat_");
}

bool is_measured(const std::string &name)
{
    return !is_treatment(name) && !begins(name, "signed_") && name != "spectral_pairs";
}

std::string case_name(const testing::TestParamInfo<std::string> &info)
{
    return info.param == missing ? "folder_missing" : info.param;
}

class ReferenceData : public testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        if (GetParam() == missing) {
            GTEST_SKIP() << "no reference graphs in " << reference_data::folder();
        }
    }
};

std::vector<plain::Edge> edges_of(const Eigen::MatrixXf &kept)
{
    std::vector<plain::Edge> edges;
    for (int i = 0; i < kept.rows(); ++i) {
        for (int j = i + 1; j < kept.cols(); ++j) {
            if (kept(i, j) != 0.0F) {
                edges.push_back({i, j, kept(i, j)});
            }
        }
    }
    return edges;
}

void expect_spanning_tree(const Eigen::MatrixXf &graph, const QJsonObject &wanted)
{
    const auto [kept, tree] = nodalis::mst::minimum_spanning_tree(graph, false, true);
    const std::vector<plain::Edge> edges = edges_of(kept);
    double total = 0.0;
    for (const plain::Edge &edge : edges) {
        total += double{edge.weight};
    }
    EXPECT_EQ(edges.size(), wanted["n_edges"].toInt());
    EXPECT_NEAR(total, wanted["total_weight"].toDouble(), 1e-9 * wanted["total_weight"].toDouble());
    EXPECT_EQ(tree, (kept.array() != 0.0F).cast<int>().matrix());
    std::vector<plain::Edge> wanted_edges;
    for (const QJsonValue &edge : wanted["edges"].toArray()) {
        wanted_edges.push_back(
            {edge[0].toInt(), edge[1].toInt(), static_cast<float>(edge[2].toDouble())});
    }
    EXPECT_EQ(edges, wanted_edges);
}

class Measured : public ReferenceData
{
};

TEST_P(Measured, EveryMeasureIsAsExpected)
{
    const Eigen::MatrixXf graph = matrix(GetParam() + ".matrix.csv");
    const QJsonObject measures = reference_data::expected(GetParam())["measures"].toObject();
    const auto wanted = [&](const char *key) -> QJsonValue {
        return measures[key].toObject()["value"];
    };

    EXPECT_TRUE(near(nodalis::degree(graph), values(wanted("degree")), 0.0));
    EXPECT_TRUE(near(nodalis::strength(graph), values(wanted("strength"))));
    EXPECT_TRUE(near(nodalis::clustering_coeff(graph), values(wanted("clustering_coeff"))));
    EXPECT_TRUE(near(nodalis::local_efficiency(graph), values(wanted("local_efficiency"))));
    EXPECT_TRUE(near(nodalis::global_efficiency(graph), wanted("global_efficiency").toDouble()));
    EXPECT_TRUE(
        near(nodalis::nodal_global_efficiency(graph), values(wanted("nodal_global_efficiency"))));

    const double gap =
        measures["eigenvector_centrality"].toObject()["spectral_gap_relative"].toDouble(1.0);
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph),
                     values(wanted("eigenvector_centrality")), 1e-6 / std::min(gap, 1.0)));

    expect_spanning_tree(graph, measures["mst"].toObject());

    Eigen::MatrixXf copy = graph;
    Eigen::MatrixXf nothing;
    EXPECT_TRUE(near(nodalis::distances::spectral_euclidean(copy, nothing, 0),
                     values(wanted("spectrum")).matrix().norm()));
}

INSTANTIATE_TEST_SUITE_P(Graphs, Measured, testing::ValuesIn(cases_that(is_measured)), case_name);

class Treated : public ReferenceData
{
};

TEST_P(Treated, GivesTheExpectedMatrix)
{
    Eigen::MatrixXf graph = matrix(GetParam() + ".raw.csv");
    nodalis::treatment(graph);
    EXPECT_EQ(graph, matrix(GetParam() + ".matrix.csv"));
}

INSTANTIATE_TEST_SUITE_P(Graphs, Treated, testing::ValuesIn(cases_that(is_treatment)), case_name);

TEST(SignedReferenceData, NegativeWeightsCountWhereTheyShould)
{
    if (reference_data::names_with(".expected.json").empty()) {
        GTEST_SKIP() << "no reference graphs in " << reference_data::folder();
    }
    const Eigen::MatrixXf graph = matrix("signed_nitime28.matrix.csv");
    const QJsonObject measures = reference_data::expected("signed_nitime28")["measures"].toObject();
    const auto wanted = [&](const char *key) { return values(measures[key].toObject()["value"]); };
    EXPECT_TRUE(near(nodalis::degree(graph), wanted("degree_nonzero"), 0.0));
    EXPECT_TRUE(near(nodalis::strength(graph), wanted("strength")));
    EXPECT_TRUE(near(nodalis::eigenvector_centrality(graph), wanted("eigenvector_centrality_abs"),
                     1e-6 / plain::relative_gap(graph)));

    const Eigen::MatrixXf positive = matrix("real_nitime28_pos.matrix.csv");
    EXPECT_EQ(positive, graph.cwiseMax(0.0F));
    EXPECT_TRUE(nodalis::clustering_coeff(graph).isApprox(nodalis::clustering_coeff(positive), 0));
    EXPECT_TRUE(nodalis::local_efficiency(graph).isApprox(nodalis::local_efficiency(positive), 0));
    EXPECT_EQ(nodalis::global_efficiency(graph), nodalis::global_efficiency(positive));
    EXPECT_EQ(std::get<0>(nodalis::mst::minimum_spanning_tree(graph, false, true)),
              std::get<0>(nodalis::mst::minimum_spanning_tree(positive, false, true)));
}

TEST(SpectralReferenceData, DistancesOfPairsAreAsExpected)
{
    if (reference_data::names_with(".expected.json").empty()) {
        GTEST_SKIP() << "no reference graphs in " << reference_data::folder();
    }
    const QJsonArray pairs = reference_data::expected("spectral_pairs")["pairs"].toArray();
    EXPECT_FALSE(pairs.isEmpty());
    for (const QJsonValue &pair : pairs) {
        SCOPED_TRACE(pair["A"].toString().toStdString() + " " + pair["B"].toString().toStdString());
        Eigen::MatrixXf a = matrix(pair["A"].toString().toStdString() + ".matrix.csv");
        Eigen::MatrixXf b = matrix(pair["B"].toString().toStdString() + ".matrix.csv");
        EXPECT_TRUE(near(nodalis::distances::spectral_euclidean(a, b, pair["size"].toInt()),
                         pair["value"].toDouble()));
    }
}

TEST(ReferenceFolder, HoldsNoCaseThatTheTestsLeaveOut)
{
    if (reference_data::names_with(".expected.json").empty()) {
        GTEST_SKIP() << "no reference graphs in " << reference_data::folder();
    }
    for (const std::string &name : reference_data::names_with(".expected.json")) {
        EXPECT_TRUE(is_measured(name) || is_treatment(name) || name == "signed_nitime28" ||
                    name == "spectral_pairs")
            << name;
    }
}

} // namespace
