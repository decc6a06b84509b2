// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/group_data.h"

#include "dataset/counted.h"
#include "host/files/graph_table.h"
#include "host/files/input_error.h"
#include "host/files/input_file.h"
#include "host/files/limits.h"
#include "host/files/tsv_table.h"
#include "statistics/error.h"
#include "statistics/fisher_z.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <numeric>
#include <optional>
#include <set>

namespace corvane
{

namespace
{

using statistics::Index;

const QString participantColumn = QStringLiteral("participant_id");
const QString matrixColumn = QStringLiteral("matrix");

/// The table as text, and where its rows stand in the file.
class Study
{
public:
    explicit Study(const QString &path) : m_table(path)
    {
        const int participants = m_table.requiredColumn(participantColumn);
        m_matrix = m_table.requiredColumn(matrixColumn);
        for (int column = 0; column < m_table.columns().size(); ++column) {
            statistics::Column values{m_table.columns()[column].toStdString(), {}};
            for (int row = 0; row < m_table.rowCount(); ++row)
                values.values.push_back(m_table.cell(row, column).toStdString());
            m_columns.columns.push_back(values);
        }
        for (int row = 0; row < m_table.rowCount(); ++row)
            if (m_table.cell(row, participants).isEmpty())
                throw InputError(path, m_table.place(row, participants),
                                 QStringLiteral("an empty cell"), QStringLiteral("a participant"));
    }

    const statistics::Table &columns() const { return m_columns; }

    std::string participant(Index row) const
    {
        return m_columns.column(participantColumn.toStdString()).values[row];
    }

    /// The matrix of a row; relative paths count from the table's folder.
    QString matrixPath(Index row) const
    {
        const QString cell = m_table.cell(static_cast<int>(row), m_matrix);
        if (statistics::is_missing(cell.toStdString()))
            throw InputError(m_table.path(), m_table.place(static_cast<int>(row), m_matrix),
                             QStringLiteral("no matrix of ") +
                                 QString::fromStdString(participant(row)),
                             QStringLiteral("a path"));
        return QFileInfo(m_table.path()).absoluteDir().absoluteFilePath(cell);
    }

    void requireOneRowEach(const std::vector<Index> &rows) const
    {
        std::set<std::string> seen;
        for (const Index row : rows)
            if (!seen.insert(participant(row)).second)
                throw InputError(m_table.path(), m_table.place(static_cast<int>(row)),
                                 QStringLiteral("a second row of ") +
                                     QString::fromStdString(participant(row)),
                                 QStringLiteral("one row for each participant, or --paired"));
    }

private:
    TsvTable m_table;
    int m_matrix = 0;
    statistics::Table m_columns;
};

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

struct Matrix {
    QString path;
    MatrixTable table;
};

/// Matrices of the same nodes.
std::vector<Matrix> readMatrices(const Study &study, const std::vector<Index> &rows)
{
    std::vector<Matrix> matrices;
    for (const Index row : rows) {
        const QString path = study.matrixPath(row);
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

/// Whether the matrices hold correlations: the same for all of them.
bool areCorrelations(const std::vector<Matrix> &matrices)
{
    std::optional<bool> all;
    for (const Matrix &matrix : matrices) {
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

bool isWanted(FisherZ wanted, const std::vector<Matrix> &matrices)
{
    return wanted == FisherZ::Auto ? areCorrelations(matrices) : wanted == FisherZ::Yes;
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

template <typename Value>
std::vector<Value> chosen(const std::vector<Value> &values, const std::vector<Index> &which)
{
    std::vector<Value> some;
    for (const Index i : which)
        some.push_back(values[i]);
    return some;
}

QString listed(const std::vector<std::string> &names)
{
    QStringList list;
    for (const std::string &name : names)
        list += QString::fromStdString(name);
    return list.join(QStringLiteral(", "));
}

QStringList leftForValues(const Study &study, const statistics::Design &design)
{
    QStringList left;
    for (const statistics::MissingValue &missing : design.missing)
        left += QStringLiteral("%1 is left out: no %2")
                    .arg(QString::fromStdString(study.participant(missing.row)),
                         QString::fromStdString(missing.column));
    return left;
}

QStringList leftForNodes(const Study &study, const std::vector<Index> &rows,
                         const statistics::CompletePart &part,
                         const std::vector<std::string> &names)
{
    QStringList left;
    for (const Index node : part.dropped_nodes)
        left += QStringLiteral("node %1 is left out: too few participants have it")
                    .arg(QString::fromStdString(names[node]));
    for (std::size_t i = 0; i < part.dropped_subjects.size(); ++i)
        left += QStringLiteral("%1 is left out: lacks %2")
                    .arg(QString::fromStdString(study.participant(rows[part.dropped_subjects[i]])),
                         listed(chosen(names, part.lacking[i])));
    return left;
}

/// The kept nodes' edges of the kept matrices.
void takeEdges(const std::vector<Matrix> &matrices, const statistics::CompletePart &part,
               const std::vector<std::string> &names, FisherZ wanted, GroupData &data)
{
    data.isFisherZ = isWanted(wanted, matrices);
    data.edges.resize(static_cast<Index>(part.subjects.size()),
                      statistics::edge_count(static_cast<int>(part.nodes.size())));
    for (std::size_t i = 0; i < part.subjects.size(); ++i) {
        const Matrix &matrix = matrices[part.subjects[i]];
        ofFile(matrix.path, [&] {
            Eigen::RowVectorXd edges = statistics::edges_of(matrix.table.values, part.nodes, names);
            if (data.isFisherZ)
                data.clipped += static_cast<qint64>(statistics::fisher_z(edges).size());
            data.edges.row(static_cast<Index>(i)) = edges;
        });
    }
}

} // namespace

GroupData readGroupData(const GroupRequest &request)
{
    const Study study(request.table);
    std::vector<std::string> needed = {participantColumn.toStdString()};
    if (!request.blocks.isEmpty())
        needed.push_back(request.blocks.toStdString());
    const std::string formula = request.formula.toStdString();
    const statistics::Design all = statistics::make_design(formula, study.columns(), needed);
    if (!request.paired)
        study.requireOneRowEach(all.rows);

    const std::vector<Matrix> matrices = readMatrices(study, all.rows);
    std::vector<std::vector<char>> present;
    for (const Matrix &matrix : matrices)
        present.push_back(statistics::nodes_present(matrix.table.values));
    const statistics::CompletePart part =
        statistics::complete_part(present, request.minNodeSubjects);
    const std::vector<std::string> names = nodeNames(matrices.front().table);
    const std::vector<Index> rows = chosen(all.rows, part.subjects);

    GroupData data;
    data.left = leftForValues(study, all) + leftForNodes(study, all.rows, part, names);
    data.nodes = chosen(names, part.nodes);
    const statistics::Table kept = study.columns().with_rows(rows);
    data.participants = kept.column(participantColumn.toStdString()).values;
    if (!request.blocks.isEmpty())
        data.blocks = kept.column(request.blocks.toStdString()).values;
    data.design = statistics::make_design(formula, kept, needed);
    takeEdges(matrices, part, names, request.fisherZ, data);
    return data;
}

} // namespace corvane
