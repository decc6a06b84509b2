// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/text_lines.h"

#include <QString>
#include <QStringList>
#include <vector>

namespace corvane
{

/// A table of tab-separated text with the names of its columns in the first line. Blanks around a
/// cell and quotation marks around what is left are no part of it. Comment lines above the names
/// count as nothing.
class TsvTable
{
public:
    /// Throws InputError when the file cannot be read, is no text, or has a line with more or fewer
    /// cells than columns.
    explicit TsvTable(const QString &path);
    /// The same from the lines of a file.
    TsvTable(const QString &path, const std::vector<TextLine> &lines);

    const QString &path() const { return m_path; }
    const QStringList &columns() const { return m_columns; }
    int rowCount() const { return static_cast<int>(m_rows.size()); }
    /// What was skipped, one line for each kind.
    const QStringList &notes() const { return m_notes; }

    /// Position of a column, -1 when there is none.
    int column(const QString &name) const { return m_columns.indexOf(name); }
    /// Throws InputError when there is none.
    int requiredColumn(const QString &name) const;

    QString cell(int row, int column) const { return m_rows[row].cells[column]; }

    /// "line 12", the place of a row in the file.
    QString place(int row) const { return QStringLiteral("line %1").arg(m_rows[row].line); }
    /// "line 12, onset"
    QString place(int row, int column) const
    {
        return place(row) + QStringLiteral(", ") + m_columns[column];
    }

private:
    struct Row {
        int line;
        QStringList cells;
    };

    QString m_path;
    QStringList m_columns;
    QStringList m_notes;
    std::vector<Row> m_rows;
};

} // namespace corvane
