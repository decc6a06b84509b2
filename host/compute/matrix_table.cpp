// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/compute/matrix_table.h"

#include "host/files/csv_text.h"
#include "host/files/output_file.h"

namespace corvane
{

namespace
{

/// In quotation marks also where a reader might take it for a comment, for several cells or for a
/// name with fewer blanks.
QByteArray nameField(const QString &name)
{
    QByteArray field = csvField(name);
    const bool isQuoted = field.startsWith('"');
    const bool isMisread = name.startsWith(QLatin1Char('#')) || name.contains(QLatin1Char(';')) ||
                           name != name.trimmed();
    return isMisread && !isQuoted ? '"' + field + '"' : field;
}

} // namespace

void writeMatrixTable(const QString &path, const Eigen::MatrixXf &matrix,
                      const QStringList &columns, const QStringList &rows,
                      const ProgressWatch &watch)
{
    OutputFile file(path);
    QByteArrayList header;
    if (!rows.isEmpty())
        header += QByteArray();
    for (const QString &name : columns)
        header += nameField(name);
    if (!columns.isEmpty())
        file.write(header.join(',') + '\n');
    for (Eigen::Index row = 0; row < matrix.rows(); ++row) {
        QByteArray line =
            rows.isEmpty() ? QByteArray() : nameField(rows[static_cast<int>(row)]) + ',';
        for (Eigen::Index column = 0; column < matrix.cols(); ++column)
            line += (column > 0 ? "," : "") + csvField(matrix(row, column));
        file.write(line + '\n');
        tellProgress(watch, row + 1, matrix.rows());
    }
    file.commit();
}

} // namespace corvane
