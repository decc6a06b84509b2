// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/test_tables.h"

#include "host/files/output_file.h"
#include "host/group/table_cells.h"

#include <QJsonArray>
#include <set>

namespace corvane
{

namespace
{

using statistics::Index;

/// Each row of the group by name: its participant, and its session where it has one.
std::vector<std::string> rowNames(const GroupData &data)
{
    std::vector<std::string> names = data.participants;
    for (std::size_t row = 0; row < data.sessions.size(); ++row)
        names[row] += "_" + data.sessions[row];
    return names;
}

QByteArrayList nodesOf(const GroupData &data, const statistics::NodePair &pair)
{
    return {cell(data.nodes[pair.first]), cell(data.nodes[pair.second])};
}

std::vector<statistics::NodePair> pairsOf(const GroupData &data)
{
    return statistics::node_pairs(static_cast<int>(data.nodes.size()));
}

QJsonObject distanceFacts(const DistanceResult &result)
{
    QJsonArray contrasts;
    for (const DistanceContrast &contrast : result.contrasts)
        contrasts += QJsonObject{
            {QStringLiteral("Name"), QString::fromStdString(contrast.name)},
            {QStringLiteral("Rearrangements"), contrast.rearrangements},
            {QStringLiteral("AllRearrangements"), contrast.isExhaustive},
        };
    return {{QStringLiteral("Distance"),
             QStringLiteral("spectral: norm of the difference of sorted adjacency spectra")},
            {QStringLiteral("Contrasts"), contrasts},
            {QStringLiteral("Note"), QStringLiteral("groups of unequal spread alone can reject")}};
}

QJsonObject fingerprintFacts(const FingerprintResult &result)
{
    return {{QStringLiteral("Sessions"), texts({result.first, result.second})},
            {QStringLiteral("Participants"), texts(result.participants)},
            {QStringLiteral("Incomplete"), texts(result.incomplete)},
            {QStringLiteral("Shuffles"), qint64(result.fingerprint.null_1_to_2.size())}};
}

} // namespace

void writeDistanceTables(const OutputFolder &folder, const GroupData &data,
                         const DistanceResult &result)
{
    writeFile(folder.path(QStringLiteral("distances.tsv")),
              namedMatrix(rowNames(data), result.distances));
    if (!result.contrasts.empty()) {
        QByteArray table = line({"contrast", "F", "df_tested", "df_residual", "r_squared", "p"});
        for (const DistanceContrast &contrast : result.contrasts) {
            const statistics::DistanceAnova &anova = contrast.anova;
            table += line({cell(contrast.name), cell(anova.f), cell(anova.df_tested),
                           cell(anova.df_residual), cell(anova.r_squared), cell(anova.p)});
        }
        writeFile(folder.path(QStringLiteral("distance_tests.tsv")), table);
    }
    if (result.dbicc)
        writeFile(folder.path(QStringLiteral("dbicc.tsv")),
                  line({"dbicc", "pairs_within", "pairs_between"}) +
                      line({cell(result.dbicc->value), cell(result.dbicc->within),
                            cell(result.dbicc->between)}));
}

void writeIccTable(const OutputFolder &folder, const GroupData &data, const IccResult &result)
{
    QByteArray table = line({"node_1", "node_2", "icc_1_1", "icc_2_1", "icc_3_1"});
    Index edge = 0;
    for (const statistics::NodePair &pair : pairsOf(data)) {
        table += line(nodesOf(data, pair) + QByteArrayList{cell(result.icc.icc_1_1(edge)),
                                                           cell(result.icc.icc_2_1(edge)),
                                                           cell(result.icc.icc_3_1(edge))});
        ++edge;
    }
    writeFile(folder.path(QStringLiteral("icc.tsv")), table);
}

void writeFingerprintTables(const OutputFolder &folder,
                            const std::vector<FingerprintResult> &results)
{
    QByteArray table = line({"session_1", "session_2", "participants", "rate_1_to_2", "p_1_to_2",
                             "rate_2_to_1", "p_2_to_1", "idiff"});
    QByteArray similarity = line({"session_1", "session_2", "participant_1", "participant_2", "r"});
    for (const FingerprintResult &result : results) {
        const statistics::Fingerprint &found = result.fingerprint;
        const QByteArrayList sessions{cell(result.first), cell(result.second)};
        table += line(sessions + QByteArrayList{cell(Index(result.participants.size())),
                                                cell(found.rate_1_to_2), cell(found.p_1_to_2),
                                                cell(found.rate_2_to_1), cell(found.p_2_to_1),
                                                cell(found.idiff)});
        for (std::size_t i = 0; i < result.participants.size(); ++i)
            for (std::size_t j = 0; j < result.participants.size(); ++j)
                similarity +=
                    line(sessions + QByteArrayList{cell(result.participants[i]),
                                                   cell(result.participants[j]),
                                                   cell(found.similarity(Index(i), Index(j)))});
    }
    writeFile(folder.path(QStringLiteral("fingerprint.tsv")), table);
    writeFile(folder.path(QStringLiteral("similarity.tsv")), similarity);
}

void writeQcFcTables(const OutputFolder &folder, const GroupData &data,
                     const std::vector<QcFcResult> &results)
{
    const auto pairs = pairsOf(data);
    QByteArray table = line({"data", "node_1", "node_2", "r", "p", "q", "distance"});
    QByteArray summary = line({"data", "participants", "df", "share_p_below_05", "share_q_below_05",
                               "median_absolute_r", "distance_dependence", "edges_with_distance",
                               "mean_degrees_of_freedom"});
    const Eigen::ArrayXd &distances = data.motion.distances;
    for (const QcFcResult &result : results) {
        const statistics::QcFc &found = result.qcfc;
        for (Index edge = 0; edge < found.r.size(); ++edge)
            table +=
                line(QByteArrayList{result.data} + nodesOf(data, pairs[edge]) +
                     QByteArrayList{cell(found.r(edge)), cell(found.p(edge)), cell(found.q(edge)),
                                    distances.size() > 0 ? cell(distances(edge)) : "n/a"});
        summary += line({result.data, cell(Index(data.participants.size())), cell(found.df),
                         cell(found.share_p_below_05), cell(found.share_q_below_05),
                         cell(found.median_absolute_r), cell(found.distance_dependence),
                         cell(found.distances), cell(data.motion.meanDegreesOfFreedom)});
    }
    writeFile(folder.path(QStringLiteral("qcfc.tsv")), table);
    writeFile(folder.path(QStringLiteral("qcfc_summary.tsv")), summary);
}

void writeTangentTable(const OutputFolder &folder, const GroupData &data)
{
    writeFile(folder.path(QStringLiteral("tangent_mean.tsv")),
              namedMatrix(data.nodes, data.tangentMean));
}

QJsonObject testFacts(const GroupData &data, const GroupResults &results)
{
    QJsonObject facts;
    if (results.distance)
        facts.insert(QStringLiteral("Distances"), distanceFacts(*results.distance));
    if (results.icc)
        facts.insert(QStringLiteral("Icc"),
                     QJsonObject{{QStringLiteral("Sessions"), texts(results.icc->sessions)},
                                 {QStringLiteral("Participants"), texts(results.icc->participants)},
                                 {QStringLiteral("Incomplete"), texts(results.icc->incomplete)}});
    if (!results.fingerprints.empty()) {
        QJsonArray pairs;
        for (const FingerprintResult &result : results.fingerprints)
            pairs += fingerprintFacts(result);
        facts.insert(QStringLiteral("Fingerprints"), pairs);
    }
    if (!results.qcfc.empty())
        facts.insert(QStringLiteral("QcFc"),
                     QJsonObject{{QStringLiteral("Covariates"), texts(data.motion.columns)},
                                 {QStringLiteral("Uncleaned"), results.qcfc.size() > 1}});
    if (data.tangentMean.size() > 0)
        facts.insert(
            QStringLiteral("Tangent"),
            QJsonObject{{QStringLiteral("Steps"), data.tangentSteps},
                        {QStringLiteral("Note"),
                         QStringLiteral("the geometric mean is of all rows, so that none of them "
                                        "is independent of the others")}});
    return facts;
}

} // namespace corvane
