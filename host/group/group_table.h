// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/tsv_table.h"
#include "statistics/table.h"

namespace corvane
{

/// The table of a group: who there is, where each matrix is, and what a model may hold. Functions
/// throw InputError with the place of what is wrong.
class GroupTable
{
public:
    /// Throws without the columns participant_id and matrix, or for a row without a participant.
    explicit GroupTable(const QString &path);
    explicit GroupTable(TsvTable table);

    const statistics::Table &columns() const { return m_columns; }
    bool has(const QString &column) const { return m_table.column(column) >= 0; }

    std::string participant(statistics::Index row) const;
    /// The matrix of a row; relative paths count from the table's folder. Throws without one.
    QString matrixPath(statistics::Index row) const;
    /// The matrix of the same volumes without cleaning: what the column matrix_uncleaned names, or
    /// without that column the file beside the matrix; empty without such a file. Throws for an
    /// empty cell of that column.
    QString uncleanedPath(statistics::Index row) const;

    /// The column of sessions: the one that is asked for, else session_id or session; empty
    /// without. Throws when the one that is asked for is not there, or one is needed.
    QString sessionColumn(const QString &asked, bool isNeeded) const;

    /// Numbers of a column. Throws for what is none.
    Eigen::VectorXd numbers(const QString &column,
                            const std::vector<statistics::Index> &rows) const;

    /// Throws for a second row of a participant.
    void requireOneRowEach(const std::vector<statistics::Index> &rows) const;

private:
    QString pathIn(statistics::Index row, int column, const char *what) const;

    TsvTable m_table;
    int m_matrix;
    statistics::Table m_columns;
};

} // namespace corvane
