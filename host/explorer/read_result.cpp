// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/read_result.h"

#include "host/explorer/node_facts.h"
#include "host/explorer/result_readers.h"
#include "host/files/input_error.h"
#include "host/group/node_places.h"

#include <QDir>
#include <QFileInfo>
#include <cmath>

namespace corvane
{

namespace
{

NetworkResult readFiles(const ResultRequest &request)
{
    const QFileInfo info(request.path);
    if (info.isFile())
        return readMatrixResult(request.path);
    const QDir folder(request.path);
    if (folder.exists(QStringLiteral("group.json")))
        return readGroupResult(request.path);
    if (folder.exists(QStringLiteral("summary.json")))
        return readComputeResult(request.path);
    if (!runsIn(request.path).isEmpty())
        return readConnectomeResult(request.path, request.run);
    throw InputError(request.path, QStringLiteral("its files"),
                     info.exists() ? QStringLiteral("none of a finished result")
                                   : QStringLiteral("no such folder"),
                     QStringLiteral("a folder with *_relmat.tsv (connectome, a participant's "
                                    "func folder of a study), summary.json (compute) or "
                                    "group.json (group), or a matrix"));
}

void takePlaces(std::vector<ResultNode> &nodes, const QString &path)
{
    const NodePlaces places = readNodePlaces(path);
    bool areNamed = nodes.empty();
    for (ResultNode &node : nodes) {
        const auto found = places.find(node.name);
        if (found == places.end())
            continue;
        areNamed = true;
        node.place = found->second;
    }
    if (!areNamed)
        throw InputError(path, QStringLiteral("names"), QStringLiteral("none of the nodes"),
                         QStringLiteral("names such as %1").arg(quoted(nodes.front().name)));
}

} // namespace

NetworkResult readResult(const ResultRequest &request)
{
    NetworkResult result = readFiles(request);
    result.folder = request.path;
    if (!request.labels.isEmpty()) {
        for (ResultNode &node : result.nodes)
            node.network = node.hemisphere = QString();
        takeLabels(result.nodes, readLabelTable(request.labels, result.notes), request.labels);
    }
    if (!request.centroids.isEmpty())
        takePlaces(result.nodes, request.centroids);
    takeNames(result.nodes);
    if (!request.atlas.isEmpty())
        result.atlasFile = request.atlas;
    return result;
}

ResultMatrix resultMatrix(const QString &name, const QString &measure, ValueKind kind,
                          const Eigen::MatrixXd &values)
{
    ResultMatrix matrix;
    matrix.name = name;
    matrix.measure = measure;
    matrix.kind = kind;
    matrix.values = (values + values.transpose()) / 2;
    double limit = 0;
    for (Eigen::Index to = 0; to < matrix.values.cols(); ++to)
        for (Eigen::Index from = 0; from < to; ++from)
            if (std::isfinite(matrix.values(from, to)))
                limit = std::max(limit, std::abs(matrix.values(from, to)));
    const bool endsAtOne = kind == ValueKind::Correlation || kind == ValueKind::PartialCorrelation;
    matrix.limit = endsAtOne || limit == 0 ? 1 : limit;
    return matrix;
}

} // namespace corvane
