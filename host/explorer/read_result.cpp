// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/read_result.h"

#include "host/explorer/node_facts.h"
#include "host/explorer/result_readers.h"
#include "host/files/input_error.h"
#include "host/files/text_lines.h"
#include "host/group/node_places.h"

#include <QDir>
#include <QFileInfo>
#include <cmath>

namespace corvane
{

namespace
{

QStringList foldersIn(const QString &path, const QStringList &names = {})
{
    QStringList folders;
    for (const QString &name : QDir(path).entryList(
             names, QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::Name))
        folders += path + QLatin1Char('/') + name;
    return folders;
}

/// Adds a folder with matrices of runs, and those that a study has below it.
void addFoldersOfRuns(const QString &path, QStringList &folders)
{
    if (!runsIn(path).isEmpty())
        folders += path;
    for (const QString &folder : foldersIn(
             path, {QStringLiteral("sub-*"), QStringLiteral("ses-*"), QStringLiteral("func")}))
        addFoldersOfRuns(folder, folders);
}

/// The folders below with matrices of runs, in the order of names: below any folder in this one,
/// and further down where a study has its participants. All of a disk is not looked through.
QStringList foldersOfRuns(const QString &path)
{
    QStringList folders;
    for (const QString &folder : foldersIn(path))
        addFoldersOfRuns(folder, folders);
    return folders;
}

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
    // A participant's folder of a study, or the study's: what is meant lies below.
    const QStringList below = foldersOfRuns(request.path);
    if (below.size() == 1)
        return readConnectomeResult(below.front(), request.run);
    if (!below.isEmpty())
        throw InputError(request.path, QStringLiteral("its files"),
                         QStringLiteral("%1 folders with matrices").arg(below.size()),
                         QStringLiteral("one of them, such as %1").arg(below.front()));
    throw InputError(request.path, QStringLiteral("its files"),
                     info.exists() ? QStringLiteral("none of a finished result")
                                   : QStringLiteral("no such folder"),
                     QStringLiteral("a folder with *_relmat.tsv (connectome, a participant's "
                                    "func folder of a study), summary.json (compute) or "
                                    "group.json (group), or a matrix"));
}

/// Names in the order of the nodes, one in each line or with commas between them; false when the
/// file is something else, such as a table of labels.
bool takeListOfNames(std::vector<ResultNode> &nodes, const QString &path)
{
    QStringList names;
    for (const TextLine &line : readTextLines(path))
        for (const QString &name : line.text.split(QLatin1Char(',')))
            names += name.trimmed();
    names.removeAll(QString());
    if (names.size() != int(nodes.size()))
        return false;
    for (std::size_t node = 0; node < nodes.size(); ++node)
        nodes[node].name = names[int(node)];
    return true;
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
    if (result.matrices.empty())
        throw InputError(request.path, QStringLiteral("its files"), QStringLiteral("no matrix"),
                         QStringLiteral("one or more"));
    if (!request.labels.isEmpty() && !result.hasNames &&
        takeListOfNames(result.nodes, request.labels))
        result.hasNames = true;
    else if (!request.labels.isEmpty()) {
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
