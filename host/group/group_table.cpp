// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/group/group_table.h"

#include "host/files/input_error.h"
#include "host/files/text_check.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <set>

namespace corvane
{

namespace
{

using statistics::Index;

const QString participantColumn = QStringLiteral("participant_id");
const QString uncleanedColumn = QStringLiteral("matrix_uncleaned");

/// Where `connectome` puts the uncleaned matrix: its name has no measure, window or condition, but
/// says what it is.
QString besideMatrix(const QString &matrix)
{
    static const QRegularExpression measure(QStringLiteral("_stat-[^_]*_relmat\\.tsv$"));
    QString path = matrix;
    path.replace(measure, QStringLiteral("_desc-uncleaned_relmat.tsv"));
    return path != matrix && QFileInfo(path).isFile() ? path : QString();
}

} // namespace

GroupTable::GroupTable(const QString &path) : GroupTable(TsvTable(path)) {}

GroupTable::GroupTable(TsvTable table)
    : m_table(std::move(table)), m_matrix(m_table.requiredColumn(QStringLiteral("matrix")))
{
    const int participants = m_table.requiredColumn(participantColumn);
    for (int column = 0; column < m_table.columns().size(); ++column) {
        statistics::Column values{m_table.columns()[column].toStdString(), {}};
        for (int row = 0; row < m_table.rowCount(); ++row)
            values.values.push_back(m_table.cell(row, column).toStdString());
        m_columns.columns.push_back(values);
    }
    for (int row = 0; row < m_table.rowCount(); ++row)
        if (m_table.cell(row, participants).isEmpty())
            throw InputError(m_table.path(), m_table.place(row, participants),
                             QStringLiteral("an empty cell"), QStringLiteral("a participant"));
}

std::string GroupTable::participant(Index row) const
{
    return m_columns.column(participantColumn.toStdString()).values[row];
}

QString GroupTable::pathIn(Index row, int column, const char *what) const
{
    const QString cell = m_table.cell(static_cast<int>(row), column);
    if (statistics::is_missing(cell.toStdString()))
        throw InputError(m_table.path(), m_table.place(static_cast<int>(row), column),
                         QStringLiteral("no %1 of %2")
                             .arg(QLatin1String(what), QString::fromStdString(participant(row))),
                         QStringLiteral("a path"));
    return QFileInfo(m_table.path()).absoluteDir().absoluteFilePath(cell);
}

QString GroupTable::matrixPath(Index row) const
{
    return pathIn(row, m_matrix, "matrix");
}

QString GroupTable::uncleanedPath(Index row) const
{
    const int column = m_table.column(uncleanedColumn);
    return column < 0 ? besideMatrix(matrixPath(row)) : pathIn(row, column, "uncleaned matrix");
}

QString GroupTable::sessionColumn(const QString &asked, bool isNeeded) const
{
    const QString usual = QStringLiteral("session_id");
    if (!asked.isEmpty()) {
        m_table.requiredColumn(asked);
        return asked;
    }
    for (const QString &name : {usual, QStringLiteral("session")})
        if (has(name))
            return name;
    if (isNeeded)
        m_table.requiredColumn(usual);
    return {};
}

Eigen::VectorXd GroupTable::numbers(const QString &column, const std::vector<Index> &rows) const
{
    const int place = m_table.requiredColumn(column);
    Eigen::VectorXd values(static_cast<Index>(rows.size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const int row = static_cast<int>(rows[i]);
        const std::optional<double> number = finiteNumber(m_table.cell(row, place));
        if (!number)
            throw InputError(m_table.path(), m_table.place(row, place),
                             quoted(m_table.cell(row, place)), QStringLiteral("a number"));
        values(static_cast<Index>(i)) = *number;
    }
    return values;
}

void GroupTable::requireOneRowEach(const std::vector<Index> &rows) const
{
    std::set<std::string> seen;
    for (const Index row : rows)
        if (!seen.insert(participant(row)).second)
            throw InputError(m_table.path(), m_table.place(static_cast<int>(row)),
                             QStringLiteral("a second row of ") +
                                 QString::fromStdString(participant(row)),
                             QStringLiteral("one row for each participant, or --paired"));
}

} // namespace corvane
