// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/connectome_files.h"

#include "host/derivatives/bids_names.h"
#include "host/extract/connectome_sidecar.h"
#include "host/extract/node_measures.h"
#include "host/files/output_file.h"
#include "host/files/tsv_text.h"

#include <cmath>

namespace corvane
{

namespace
{

using Eigen::MatrixXd;
using Index = Eigen::Index;

/// A table with the names of its columns in the first line.
QByteArray columnTable(const QList<QByteArray> &names, const MatrixXd &values)
{
    QByteArray table = line(names);
    for (Index row = 0; row < values.rows(); ++row) {
        QList<QByteArray> cells;
        for (Index column = 0; column < values.cols(); ++column)
            cells += cell(values(row, column));
        table += line(cells);
    }
    return table;
}

QList<QByteArray> nodeNames(const std::vector<Node> &nodes)
{
    QList<QByteArray> names;
    for (const Node &node : nodes)
        names += node.name.toUtf8();
    return names;
}

/// A table with a row for each node, its name in the column "Node".
QByteArray nodeTable(const QList<QByteArray> &nodes, const QList<QByteArray> &columns,
                     const MatrixXd &values)
{
    QByteArray table = line(QList<QByteArray>{"Node"} + columns);
    for (Index row = 0; row < values.rows(); ++row) {
        QList<QByteArray> cells{nodes[int(row)]};
        for (Index column = 0; column < values.cols(); ++column)
            cells += cell(values(row, column));
        table += line(cells);
    }
    return table;
}

QByteArray coverageTable(const Connectome &connectome)
{
    const Eigen::Map<const Eigen::VectorXd> shares(connectome.coverage.data(),
                                                   Index(connectome.coverage.size()));
    return nodeTable(nodeNames(connectome.nodes), {"coverage"}, shares);
}

/// The middle of each node, in mm: the mean of all voxels of the run that have its label, be they
/// inside the mask or not. NaN for a node without any.
MatrixXd nodePlaces(const Connectome &connectome)
{
    const Index nodes = Index(connectome.nodes.size());
    Eigen::MatrixX3d sums = Eigen::MatrixX3d::Zero(nodes, 3);
    Eigen::ArrayXd counts = Eigen::ArrayXd::Zero(nodes);
    const GridSize &size = connectome.grid.size;
    for (const std::vector<Stretch> *stretches : {&connectome.stretches, &connectome.outside})
        for (const Stretch &stretch : *stretches)
            for (qint64 voxel = stretch.start; voxel < stretch.start + stretch.length; ++voxel) {
                const qint64 row = voxel / size[0];
                const qint64 layer = row / size[1];
                sums.row(stretch.node) += Eigen::RowVector3d(double(voxel % size[0]),
                                                             double(row % size[1]), double(layer));
                counts[stretch.node] += 1;
            }
    for (Index node = 0; node < nodes; ++node)
        sums.row(node) =
            (connectome.grid.toWorld * (sums.row(node) / counts[node]).transpose()).transpose();
    return sums;
}

/// Micrometres are enough for a place.
QByteArray placeCell(double millimetres)
{
    return cell(std::round(millimetres * 1000) / 1000);
}

QByteArray textCell(const QString &text)
{
    return text.isEmpty() ? QByteArray("n/a") : text.toUtf8();
}

/// What is known of the nodes: where they are, and to what they belong.
QByteArray nodesTable(const Connectome &connectome)
{
    QByteArray table =
        line({"index", "name", "network", "hemisphere", "x", "y", "z", "voxels", "used_voxels"});
    const MatrixXd places = nodePlaces(connectome);
    for (std::size_t n = 0; n < connectome.nodes.size(); ++n) {
        const Node &node = connectome.nodes[n];
        const auto place = places.row(Index(n));
        table += line({QByteArray::number(node.label), node.name.toUtf8(), textCell(node.network),
                       textCell(node.hemisphere), placeCell(place[0]), placeCell(place[1]),
                       placeCell(place[2]), QByteArray::number(node.voxels),
                       QByteArray::number(connectome.usedVoxels[n])});
    }
    return table;
}

/// FD, standardised DVARS and the motion parameters, as far as the table of confounds knows them.
QByteArray motionTable(const RunCleaning &cleaning)
{
    const signals::Volumes &volumes = cleaning.selection.volumes;
    QList<QByteArray> names{"framewise_displacement"};
    MatrixXd values(volumes.count(), 8);
    values.col(0).setConstant(std::numeric_limits<double>::quiet_NaN());
    if (volumes.fd.size() > 0)
        values.col(0) = volumes.fd;
    Index next = 1;
    std::vector<std::string> wanted{"std_dvars"};
    wanted.insert(wanted.end(), signals::motion_columns().begin(), signals::motion_columns().end());
    for (const std::string &name : wanted)
        if (const auto column = signals::column_named(cleaning.table, name)) {
            names += QByteArray::fromStdString(name);
            values.col(next++) = cleaning.table.values.col(*column);
        }
    return columnTable(names, values.leftCols(next));
}

QByteArray outlierTable(const signals::Volumes &volumes)
{
    QByteArray table = "outlier\n";
    const signals::Flags kept = volumes.kept();
    for (Index volume = 0; volume < kept.size(); ++volume)
        table += kept[volume] ? "0\n" : "1\n";
    return table;
}

QByteArray designTable(const signals::Design &design)
{
    QList<QByteArray> names;
    for (const std::string &name : design.names)
        names += QByteArray::fromStdString(name);
    return columnTable(names, design.columns);
}

QByteArray graphTable(const Connectome &connectome, int threads, const StepWatch &steps)
{
    const NodeMeasures measures =
        nodeMeasures(connectome, threads, beginStep(steps, QStringLiteral("graph measures")));
    return nodeTable(nodeNames(connectome.nodes), measures.columns, measures.values);
}

void writeMatrix(const OutputFolder &folder, const QString &stem, const QList<QByteArray> &nodes,
                 const MatrixXd &values, const QByteArray &sidecar)
{
    writeFile(folder.path(stem + QStringLiteral("_relmat.tsv")), nodeTable(nodes, nodes, values));
    writeFile(folder.path(stem + QStringLiteral("_relmat.json")), sidecar);
}

} // namespace

QString ConnectomeNames::stem() const
{
    return prefix + QStringLiteral("_atlas-") + atlas;
}

QString ConnectomeNames::file(const QString &rest) const
{
    return stem() + QLatin1Char('_') + rest;
}

ConnectomeNames namesOf(const ConnectomeRequest &request)
{
    return {runPrefix(request.run), atlasName(request.atlas), {}};
}

QString matrixStem(const ConnectomeNames &names, const PartMatrix &matrix)
{
    const QString part =
        matrix.part.entity.isEmpty() ? QString() : matrix.part.entity + QLatin1Char('_');
    return names.file(part + QStringLiteral("stat-") +
                      QLatin1String(factsOf(matrix.relationship).stat));
}

void writeConnectomeTables(const OutputFolder &folder, const ConnectomeRequest &request,
                           const ConnectomeNames &names, const Connectome &connectome, int threads,
                           const StepWatch &steps)
{
    const QList<QByteArray> nodes = nodeNames(connectome.nodes);
    const auto write = [&](const char *rest, const QByteArray &bytes) {
        writeFile(folder.path(names.file(QLatin1String(rest))), bytes);
    };
    write("stat-mean_timeseries.tsv", columnTable(nodes, connectome.cleaned.values));
    write("stat-mean_timeseries.json", seriesSidecar(request, names, connectome));
    write("stat-coverage_bold.tsv", coverageTable(connectome));
    write("nodes.tsv", nodesTable(connectome));
    write("motion.tsv", motionTable(connectome.cleaning));
    write("outliers.tsv", outlierTable(connectome.cleaning.selection.volumes));
    write("design.tsv", designTable(connectome.cleaning.design));
    write("stat-graphmeasures_nodes.tsv", graphTable(connectome, threads, steps));
    beginStep(steps, QStringLiteral("writing"));
    for (const PartMatrix &matrix : connectome.matrices)
        writeMatrix(folder, matrixStem(names, matrix), nodes, matrix.matrix.values,
                    matrixSidecar(request, names, connectome, matrix));
    const PartMatrix uncleaned{connectome.matrices.front().part, Relationship::Pearson,
                               matrixOf(connectome.uncleaned, connectome.matrices.front().part,
                                        Relationship::Pearson, false)};
    writeMatrix(folder, names.file(QStringLiteral("desc-uncleaned")), nodes,
                uncleaned.matrix.values, uncleanedSidecar(request, names, connectome, uncleaned));
}

} // namespace corvane
