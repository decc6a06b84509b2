// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/group_matrices.h"

#include "dataset/counted.h"
#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"
#include "statistics/error.h"
#include "statistics/fisher_z.h"
#include "statistics/tangent.h"

#include <Eigen/Cholesky>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <optional>

namespace corvane
{

namespace
{

using statistics::Index;

/// What the file beside a matrix says about it, if there is one.
std::optional<bool> saidToBeCorrelations(const QString &matrix)
{
    const QFileInfo file(matrix);
    const QString beside = file.dir().filePath(file.completeBaseName() + QStringLiteral(".json"));
    if (!QFileInfo(beside).isFile())
        return std::nullopt;
    const QJsonObject json = QJsonDocument::fromJson(InputFile(beside).all(largestText)).object();
    const QString measure = json.value(QStringLiteral("RelationshipMeasure")).toString().toLower();
    if (measure.isEmpty())
        return std::nullopt;
    for (const char *const known : {"pearson", "spearman", "partial"})
        if (measure.contains(QLatin1String(known)))
            return true;
    return false;
}

/// Whether the matrices hold correlations: the same for all of them.
bool areCorrelations(const std::vector<GroupMatrix> &matrices)
{
    std::optional<bool> all;
    for (const GroupMatrix &matrix : matrices) {
        const bool is = saidToBeCorrelations(matrix.path)
                            .value_or(statistics::looks_like_correlations(matrix.table.values));
        if (all && is != *all)
            throw InputError(matrix.path, QStringLiteral("values"),
                             is ? QStringLiteral("correlations")
                                : QStringLiteral("no correlations"),
                             QStringLiteral("the same as in the matrices before, or --fisher-z yes "
                                            "or no"));
        all = is;
    }
    return all.value_or(false);
}

/// Calls a function of the library and names the file that it refuses.
template <typename Function>
void ofFile(const QString &path, const Function &function)
{
    try {
        function();
    } catch (const statistics::Error &error) {
        throw statistics::Error(printable(path, 4096).toStdString() + ": " + error.what());
    }
}

Eigen::MatrixXd among(const std::vector<Index> &nodes, const Eigen::MatrixXd &matrix)
{
    const auto count = static_cast<Index>(nodes.size());
    Eigen::MatrixXd part(count, count);
    for (Index i = 0; i < count; ++i)
        for (Index j = 0; j < count; ++j)
            part(i, j) = (matrix(nodes[i], nodes[j]) + matrix(nodes[j], nodes[i])) / 2;
    return part;
}

} // namespace

std::vector<GroupMatrix> readGroupMatrices(const QStringList &paths, const ProgressWatch &watch)
{
    std::vector<GroupMatrix> matrices;
    for (const QString &path : paths) {
        matrices.push_back({path, readMatrixTable(path)});
        const MatrixTable &first = matrices.front().table;
        const MatrixTable &table = matrices.back().table;
        if (table.values.rows() != first.values.rows())
            throw InputError(
                path, QStringLiteral("size"), counted(table.values.rows(), "node"),
                QStringLiteral("%1 as in %2").arg(first.values.rows()).arg(matrices.front().path));
        if (table.names != first.names)
            throw InputError(
                path, QStringLiteral("names"), QStringLiteral("other nodes"),
                QStringLiteral("those of %1 in the same order").arg(matrices.front().path));
        tellProgress(watch, qint64(matrices.size()), paths.size());
    }
    return matrices;
}

std::vector<std::string> nodeNames(const MatrixTable &table)
{
    std::vector<std::string> names;
    for (Index node = 0; node < table.values.rows(); ++node)
        names.push_back(table.names.isEmpty() ? std::to_string(node)
                                              : table.names[static_cast<int>(node)].toStdString());
    return names;
}

bool becomeFisherZ(FisherZ wanted, const std::vector<GroupMatrix> &matrices)
{
    return wanted == FisherZ::Auto ? areCorrelations(matrices) : wanted == FisherZ::Yes;
}

GroupEdges edgesOf(const std::vector<GroupMatrix> &matrices, const std::vector<Index> &nodes,
                   const std::vector<std::string> &names, bool asFisherZ)
{
    GroupEdges all;
    all.edges.resize(static_cast<Index>(matrices.size()),
                     statistics::edge_count(static_cast<Index>(nodes.size())));
    for (std::size_t i = 0; i < matrices.size(); ++i) {
        ofFile(matrices[i].path, [&] {
            Eigen::RowVectorXd edges = statistics::edges_of(matrices[i].table.values, nodes, names);
            if (asFisherZ)
                all.clipped += static_cast<qint64>(statistics::fisher_z(edges).size());
            all.edges.row(static_cast<Index>(i)) = edges;
        });
    }
    return all;
}

std::vector<Eigen::MatrixXf> graphsOf(const std::vector<GroupMatrix> &matrices,
                                      const std::vector<Index> &nodes)
{
    std::vector<Eigen::MatrixXf> graphs;
    for (const GroupMatrix &matrix : matrices) {
        graphs.push_back(among(nodes, matrix.table.values).cast<float>());
        graphs.back().diagonal().setZero();
    }
    return graphs;
}

TangentEdges tangentEdgesOf(const std::vector<GroupMatrix> &matrices,
                            const std::vector<Index> &nodes)
{
    std::vector<Eigen::MatrixXd> covariances;
    for (const GroupMatrix &matrix : matrices) {
        covariances.push_back(among(nodes, matrix.table.values));
        if (!covariances.back().allFinite() || covariances.back().llt().info() != Eigen::Success)
            throw InputError(matrix.path, QStringLiteral("values"),
                             QStringLiteral("a matrix that is not positive definite"),
                             QStringLiteral("covariances with shrinkage, for tangent space"));
    }
    const statistics::TangentSpace space = statistics::tangent_space(covariances);
    std::vector<Index> all;
    for (std::size_t node = 0; node < nodes.size(); ++node)
        all.push_back(static_cast<Index>(node));
    TangentEdges found;
    found.mean = space.mean;
    found.steps = space.steps;
    found.edges.resize(static_cast<Index>(matrices.size()),
                       statistics::edge_count(static_cast<Index>(nodes.size())));
    for (std::size_t i = 0; i < matrices.size(); ++i)
        found.edges.row(static_cast<Index>(i)) = statistics::edges_of(space.tangent[i], all);
    return found;
}

} // namespace corvane
