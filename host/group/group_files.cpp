// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/group_files.h"

#include "host/files/output_file.h"
#include "host/group/table_cells.h"
#include "host/group/test_tables.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace corvane
{

namespace
{

using statistics::Index;

/// The design after the first contrast's rows: those of pairs if participants are paired.
QByteArray designTable(const ContrastResult &result)
{
    QByteArrayList head{"participant_id"};
    for (const std::string &column : result.hypothesis.columns)
        head += cell(column);
    QByteArray table = line(head);
    for (Index row = 0; row < result.hypothesis.design.rows(); ++row) {
        QByteArrayList cells{cell(result.participants[row])};
        for (Index column = 0; column < result.hypothesis.design.cols(); ++column)
            cells += cell(result.hypothesis.design(row, column));
        table += line(cells);
    }
    return table;
}

QByteArray edgeTable(const GroupData &data, const std::vector<ContrastResult> &results)
{
    const auto pairs = statistics::node_pairs(static_cast<int>(data.nodes.size()));
    QByteArray table = line(
        {"contrast", "node_1", "node_2", "estimate", "t", "F", "df", "p", "p_perm", "p_fwe", "q"});
    for (const ContrastResult &result : results) {
        const statistics::GlmResult &model = result.test.model;
        const bool isF = result.hypothesis.is_f();
        for (Index e = 0; e < model.statistic.size(); ++e) {
            const QByteArray statistic = cell(model.statistic(e));
            table += line({cell(result.hypothesis.name), cell(data.nodes[pairs[e].first]),
                           cell(data.nodes[pairs[e].second]),
                           isF ? QByteArray("n/a") : cell(model.estimate(e)),
                           isF ? QByteArray("n/a") : statistic, isF ? statistic : QByteArray("n/a"),
                           cell(model.df), cell(model.p(e)), cell(result.test.p_permuted(e)),
                           cell(result.test.p_fwe(e)), cell(result.test.q(e))});
        }
    }
    return table;
}

QByteArray sideName(statistics::Side side)
{
    switch (side) {
    case statistics::Side::greater:
        break;
    case statistics::Side::less:
        return "less";
    case statistics::Side::both:
        return "both";
    }
    return "greater";
}

/// The edges of a component: pairs of the nodes' places in the table of edges, from 0.
QByteArray members(const statistics::Component &component,
                   const std::vector<statistics::NodePair> &pairs)
{
    QByteArrayList edges;
    for (const Index e : component.edges)
        edges += QByteArray::number(pairs[e].first) + '-' + QByteArray::number(pairs[e].second);
    return edges.join(' ');
}

QByteArray componentTable(const GroupData &data, const std::vector<ContrastResult> &results)
{
    const auto pairs = statistics::node_pairs(static_cast<int>(data.nodes.size()));
    QByteArray table = line({"contrast", "threshold", "side", "edges", "intensity", "p_extent",
                             "p_intensity", "members"});
    for (const ContrastResult &result : results) {
        for (const statistics::NetworkResult &network : result.test.networks) {
            for (const statistics::Component &component : network.components) {
                table += line({cell(result.hypothesis.name), cell(network.threshold),
                               sideName(component.side), cell(Index(component.edges.size())),
                               cell(component.intensity), cell(component.p_extent),
                               cell(component.p_intensity), members(component, pairs)});
            }
        }
    }
    return table;
}

/// The two nodes of an edge, or "n/a" without one.
QByteArrayList nodesOf(Index edge, const GroupData &data,
                       const std::vector<statistics::NodePair> &pairs)
{
    if (edge < 0)
        return {"n/a", "n/a"};
    return {cell(data.nodes[pairs[edge].first]), cell(data.nodes[pairs[edge].second])};
}

QByteArray influenceTable(const GroupData &data, const std::vector<ContrastResult> &results,
                          bool withNetworks)
{
    const auto pairs = statistics::node_pairs(static_cast<int>(data.nodes.size()));
    QByteArray table = line({"contrast", "participant_id", "leverage", "t_change", "node_1",
                             "node_2", "edges", "jaccard"});
    for (const ContrastResult &result : results) {
        for (std::size_t i = 0; i < result.influences.size(); ++i) {
            const statistics::Influence &without = result.influences[i];
            const bool hasNetworks = withNetworks && without.t_edge >= 0;
            table += line(QByteArrayList{cell(result.hypothesis.name), cell(result.participants[i]),
                                         cell(without.leverage), cell(without.t_change)} +
                          nodesOf(without.t_edge, data, pairs) +
                          QByteArrayList{hasNetworks ? cell(without.extent) : "n/a",
                                         hasNetworks ? cell(without.jaccard) : "n/a"});
        }
    }
    return table;
}

QJsonObject contrastFacts(const ContrastResult &result)
{
    QJsonArray weights;
    for (Index row = 0; row < result.hypothesis.contrast.rows(); ++row) {
        QJsonArray values;
        for (Index column = 0; column < result.hypothesis.contrast.cols(); ++column)
            values += result.hypothesis.contrast(row, column);
        weights += values;
    }
    return {
        {QStringLiteral("Name"), QString::fromStdString(result.hypothesis.name)},
        {QStringLiteral("Columns"), texts(result.hypothesis.columns)},
        {QStringLiteral("Weights"), weights},
        {QStringLiteral("Statistic"),
         result.hypothesis.is_f() ? QStringLiteral("F") : QStringLiteral("t")},
        {QStringLiteral("DegreesOfFreedom"), result.hypothesis.df},
        {QStringLiteral("Exchange"),
         result.bySigns ? QStringLiteral("signs") : QStringLiteral("permutations")},
        {QStringLiteral("Rearrangements"), qint64(result.test.rearrangements)},
        {QStringLiteral("AllRearrangements"), result.test.is_exhaustive},
        {QStringLiteral("ConstantEdges"), qint64(result.test.model.constant_edges.size())},
        {QStringLiteral("Notes"), QJsonArray::fromStringList(result.notes)},
    };
}

/// Null without a study.
QJsonValue studyFacts(const GroupRequest &request)
{
    if (!request.study)
        return {};
    const StudySelection &study = *request.study;
    return QJsonObject{{QStringLiteral("Folder"), study.out},
                       {QStringLiteral("Participants"), study.participants},
                       {QStringLiteral("Atlas"), study.atlas},
                       {QStringLiteral("Space"), study.space},
                       {QStringLiteral("Task"), study.task},
                       {QStringLiteral("Session"), study.session},
                       {QStringLiteral("AllSessions"), study.allSessions},
                       {QStringLiteral("Measure"), study.measure}};
}

QJsonArray testNames(const GroupRequest &request)
{
    QJsonArray names;
    for (const GroupTest test : request.tests)
        names += QLatin1String(nameOf(test, groupTestNames));
    return names;
}

QJsonObject settings(const GroupRequest &request, const GroupData &data)
{
    QJsonArray thresholds;
    for (const double threshold : request.thresholds)
        thresholds += threshold;
    return {
        {QStringLiteral("Tests"), testNames(request)},
        {QStringLiteral("Table"), request.table},
        {QStringLiteral("Study"), studyFacts(request)},
        {QStringLiteral("Formula"), request.formula},
        {QStringLiteral("Contrasts"), QJsonArray::fromStringList(request.contrasts)},
        {QStringLiteral("Sides"), QLatin1String(nameOf(request.sides, sidesNames))},
        {QStringLiteral("Thresholds"), thresholds},
        {QStringLiteral("Permutations"), request.permutations},
        // As text: JSON has no whole numbers of 64 bits.
        {QStringLiteral("Seed"), QString::number(request.seed)},
        {QStringLiteral("PermutationFile"), request.permutationFile},
        {QStringLiteral("Blocks"), request.blocks},
        {QStringLiteral("Paired"), request.paired},
        {QStringLiteral("Session"), request.session},
        {QStringLiteral("Centroids"), request.centroids},
        {QStringLiteral("FisherZ"), QLatin1String(nameOf(request.fisherZ, fisherZNames))},
        {QStringLiteral("FisherZApplied"), data.isFisherZ},
        {QStringLiteral("MinNodeSubjects"), request.neededNodes()},
    };
}

QByteArray sidecar(const GroupRequest &request, const GroupData &data, const GroupResults &results)
{
    QJsonArray contrasts;
    for (const ContrastResult &result : results.contrasts)
        contrasts += contrastFacts(result);
    QJsonObject json{
        {QStringLiteral("Settings"), settings(request, data)},
        {QStringLiteral("Participants"), texts(data.participants)},
        {QStringLiteral("Sessions"), texts(data.sessions)},
        {QStringLiteral("Nodes"), texts(data.nodes)},
        {QStringLiteral("LeftOut"), QJsonArray::fromStringList(data.left)},
        {QStringLiteral("ClippedCorrelations"), data.clipped},
        {QStringLiteral("Contrasts"), contrasts},
        {QStringLiteral("Notes"), QJsonArray::fromStringList(results.notes)},
    };
    const QJsonObject facts = testFacts(data, results);
    for (auto fact = facts.begin(); fact != facts.end(); ++fact)
        json.insert(fact.key(), fact.value());
    return QJsonDocument(json).toJson();
}

/// The tables of the model at every edge.
void writeModelTables(const OutputFolder &folder, bool hasNetworks, const GroupData &data,
                      const std::vector<ContrastResult> &results)
{
    bool hasInfluences = false;
    for (const ContrastResult &result : results)
        hasInfluences = hasInfluences || !result.influences.empty();
    writeFile(folder.path(QStringLiteral("design.tsv")), designTable(results.front()));
    writeFile(folder.path(QStringLiteral("edges.tsv")), edgeTable(data, results));
    if (hasNetworks)
        writeFile(folder.path(QStringLiteral("components.tsv")), componentTable(data, results));
    if (hasInfluences)
        writeFile(folder.path(QStringLiteral("influence.tsv")),
                  influenceTable(data, results, hasNetworks));
}

} // namespace

void writeGroupFiles(const OutputFolder &folder, const GroupRequest &request, const GroupData &data,
                     const GroupResults &results)
{
    if (!results.contrasts.empty())
        writeModelTables(folder, !request.thresholds.empty(), data, results.contrasts);
    if (results.distance)
        writeDistanceTables(folder, data, *results.distance);
    if (results.icc)
        writeIccTable(folder, data, *results.icc);
    if (!results.fingerprints.empty())
        writeFingerprintTables(folder, results.fingerprints);
    if (!results.qcfc.empty())
        writeQcFcTables(folder, data, results.qcfc);
    if (data.tangentMean.size() > 0)
        writeTangentTable(folder, data);
    writeFile(folder.path(QStringLiteral("group.json")), sidecar(request, data, results));
}

} // namespace corvane
