// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/group_data.h"

#include "host/files/input_error.h"
#include "host/group/group_matrices.h"
#include "host/group/group_table.h"
#include "host/group/node_places.h"

#include <algorithm>
#include <limits>

namespace corvane
{

namespace
{

using statistics::Index;

const QString motionColumn = QStringLiteral("mean_fd");
const QString freedomColumn = QStringLiteral("degrees_of_freedom");

template <typename Value>
std::vector<Value> chosen(const std::vector<Value> &values, const std::vector<Index> &which)
{
    std::vector<Value> some;
    for (const Index i : which)
        some.push_back(values[i]);
    return some;
}

/// Matrices are large, and not copied.
std::vector<GroupMatrix> taken(std::vector<GroupMatrix> matrices, const std::vector<Index> &which)
{
    std::vector<GroupMatrix> some;
    for (const Index i : which)
        some.push_back(std::move(matrices[i]));
    return some;
}

QString listed(const std::vector<std::string> &names)
{
    QStringList list;
    for (const std::string &name : names)
        list += QString::fromStdString(name);
    return list.join(QStringLiteral(", "));
}

QStringList leftForValues(const GroupTable &table, const statistics::Design &design)
{
    QStringList left;
    for (const statistics::MissingValue &missing : design.missing)
        left += QStringLiteral("%1 is left out: no %2")
                    .arg(QString::fromStdString(table.participant(missing.row)),
                         QString::fromStdString(missing.column));
    return left;
}

QStringList leftForNodes(const GroupTable &table, const std::vector<Index> &rows,
                         const statistics::CompletePart &part,
                         const std::vector<std::string> &names)
{
    QStringList left;
    for (const Index node : part.dropped_nodes)
        left += QStringLiteral("node %1 is left out: too few participants have it")
                    .arg(QString::fromStdString(names[node]));
    for (std::size_t i = 0; i < part.dropped_subjects.size(); ++i)
        left += QStringLiteral("%1 is left out: lacks %2")
                    .arg(QString::fromStdString(table.participant(rows[part.dropped_subjects[i]])),
                         listed(chosen(names, part.lacking[i])));
    return left;
}

/// The columns in which no row may lack a value, beside those of the formula.
std::vector<std::string> neededColumns(const GroupRequest &request, const QString &session)
{
    std::vector<std::string> needed = {"participant_id"};
    if (!request.blocks.isEmpty())
        needed.push_back(request.blocks.toStdString());
    if (request.asksForSessions())
        needed.push_back(session.toStdString());
    if (request.asks(GroupTest::QcFc))
        needed.push_back(motionColumn.toStdString());
    return needed;
}

/// Each row of these is to be another participant.
bool needsOneRowEach(const GroupRequest &request)
{
    const bool compares = request.asks(GroupTest::Distance) && !request.contrasts.isEmpty();
    return !request.paired && (request.asksForModel() || request.asks(GroupTest::QcFc) || compares);
}

QStringList matrixPaths(const GroupTable &table, const std::vector<Index> &rows)
{
    QStringList paths;
    for (const Index row : rows)
        paths += table.matrixPath(row);
    return paths;
}

/// Whether a column of a design is of motion, alone or in an interaction.
bool isOfMotion(const std::string &column)
{
    for (const QString &factor : QString::fromStdString(column).split(QLatin1Char(':')))
        if (factor == motionColumn || factor == QStringLiteral("center(%1)").arg(motionColumn) ||
            factor.startsWith(motionColumn + QLatin1Char('[')))
            return true;
    return false;
}

void takeCovariates(const statistics::Design &design, MotionData &motion)
{
    motion.covariates.resize(design.matrix.rows(), 0);
    for (std::size_t column = 0; column < design.columns.size(); ++column) {
        if (isOfMotion(design.columns[column]))
            continue;
        motion.columns.push_back(design.columns[column]);
        motion.covariates.conservativeResize(Eigen::NoChange, motion.covariates.cols() + 1);
        motion.covariates.rightCols(1) = design.matrix.col(static_cast<Index>(column));
    }
}

/// The uncleaned matrices of all rows; none if a row has none.
QStringList uncleanedPaths(const GroupTable &table, const std::vector<Index> &rows)
{
    QStringList paths;
    for (const Index row : rows) {
        const QString path = table.uncleanedPath(row);
        if (path.isEmpty())
            return {};
        paths += path;
    }
    return paths;
}

/// Edges for the tests: in tangent space, or as they are.
void takeEdges(const std::vector<GroupMatrix> &matrices, const std::vector<Index> &nodes,
               const std::vector<std::string> &names, const GroupRequest &request, GroupData &data)
{
    if (request.asks(GroupTest::Distance)) {
        edgesOf(matrices, nodes, names, false); // for what it refuses
        data.graphs = graphsOf(matrices, nodes);
    }
    if (request.asks(GroupTest::Tangent)) {
        TangentEdges tangent = tangentEdgesOf(matrices, nodes);
        data.edges = std::move(tangent.edges);
        data.tangentMean = std::move(tangent.mean);
        data.tangentSteps = tangent.steps;
        return;
    }
    data.isFisherZ = becomeFisherZ(request.fisherZ, matrices);
    GroupEdges edges = edgesOf(matrices, nodes, names, data.isFisherZ);
    data.edges = std::move(edges.edges);
    data.clipped = edges.clipped;
}

/// Uncleaned matrices count as the cleaned ones do, but stay out of tangent space.
void takeUncleaned(const GroupTable &table, const std::vector<Index> &rows,
                   const std::vector<Index> &nodes, const MatrixTable &like, GroupData &data,
                   const GroupRequest &request, const StepWatch &steps)
{
    const QStringList paths = uncleanedPaths(table, rows);
    if (request.asks(GroupTest::Tangent)) {
        data.notes += QStringLiteral("QC-FC is of tangent space alone: uncleaned matrices are not "
                                     "taken there");
        return;
    }
    if (paths.isEmpty()) {
        data.notes += QStringLiteral("QC-FC without cleaning is n/a: not all rows have an "
                                     "uncleaned matrix");
        return;
    }
    const std::vector<GroupMatrix> matrices =
        readGroupMatrices(paths, beginStep(steps, QStringLiteral("reading uncleaned matrices")));
    const std::vector<std::string> names = nodeNames(matrices.front().table);
    if (matrices.front().table.names != like.names ||
        matrices.front().table.values.rows() != like.values.rows())
        throw InputError(paths.front(), QStringLiteral("names"), QStringLiteral("other nodes"),
                         QStringLiteral("those of the cleaned matrices in the same order"));
    data.motion.uncleaned = edgesOf(matrices, nodes, names, data.isFisherZ).edges;
}

void takeMotion(const GroupTable &table, const std::vector<Index> &rows,
                const GroupRequest &request, GroupData &data)
{
    MotionData &motion = data.motion;
    motion.meanFd = table.numbers(motionColumn, rows);
    motion.meanDegreesOfFreedom = table.has(freedomColumn)
                                      ? table.numbers(freedomColumn, rows).mean()
                                      : std::numeric_limits<double>::quiet_NaN();
    takeCovariates(data.design, motion);
    if (request.centroids.isEmpty()) {
        data.notes += QStringLiteral("QC-FC's correlation with distance is n/a: --centroids tells "
                                     "where the nodes are");
        return;
    }
    const NodePlaces places = readNodePlaces(request.centroids);
    motion.distances = edgeDistances(places, data.nodes);
    QStringList unknown;
    for (const std::string &node : data.nodes)
        if (places.count(QString::fromStdString(node)) == 0)
            unknown += QString::fromStdString(node);
    if (unknown.size() == int(data.nodes.size()))
        throw InputError(request.centroids, QStringLiteral("name"),
                         QStringLiteral("none of the nodes"),
                         QStringLiteral("nodes such as %1").arg(unknown.front()));
    if (!unknown.isEmpty())
        data.notes += QStringLiteral("without a place: ") + unknown.join(QStringLiteral(", "));
}

} // namespace

GroupData readGroupData(const GroupRequest &request, const StepWatch &steps)
{
    std::optional<StudyTable> study;
    if (request.study)
        study = readStudyTable(*request.study);
    const GroupTable table = study ? GroupTable(study->table) : GroupTable(request.table);
    const QString session = table.sessionColumn(request.session, request.asksForSessions());
    const std::vector<std::string> needed = neededColumns(request, session);
    const std::string formula = request.formula.toStdString();
    const statistics::Design all = statistics::make_design(formula, table.columns(), needed);
    if (needsOneRowEach(request))
        table.requireOneRowEach(all.rows);

    std::vector<GroupMatrix> matrices = readGroupMatrices(
        matrixPaths(table, all.rows), beginStep(steps, QStringLiteral("reading matrices")));
    beginStep(steps, QStringLiteral("preparing edges"));
    std::vector<std::vector<char>> present;
    for (const GroupMatrix &matrix : matrices)
        present.push_back(statistics::nodes_present(matrix.table.values));
    const statistics::CompletePart part = statistics::complete_part(present, request.neededNodes());
    const std::vector<std::string> names = nodeNames(matrices.front().table);
    const std::vector<Index> rows = chosen(all.rows, part.subjects);
    matrices = taken(std::move(matrices), part.subjects);

    GroupData data;
    if (study)
        data.left = study->left;
    data.left += leftForValues(table, all) + leftForNodes(table, all.rows, part, names);
    data.nodes = chosen(names, part.nodes);
    const statistics::Table kept = table.columns().with_rows(rows);
    data.participants = kept.column("participant_id").values;
    if (!session.isEmpty())
        data.sessions = kept.column(session.toStdString()).values;
    if (!request.blocks.isEmpty())
        data.blocks = kept.column(request.blocks.toStdString()).values;
    data.design = statistics::make_design(formula, kept, needed);
    takeEdges(matrices, part.nodes, names, request, data);
    if (request.asks(GroupTest::QcFc)) {
        takeMotion(table, rows, request, data);
        takeUncleaned(table, rows, part.nodes, matrices.front().table, data, request, steps);
    }
    return data;
}

} // namespace corvane
