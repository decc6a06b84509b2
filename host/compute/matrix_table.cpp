// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/compute/matrix_table.h"

#include "host/files/csv_text.h"
#include "host/files/output_file.h"

namespace corvane
{

void writeMatrixTable(const QString &path, const Eigen::MatrixXf &matrix, const QStringList &names)
{
    OutputFile file(path);
    QByteArray line;
    for (const QString &name : names)
        line += ',' + csvField(name);
    if (!names.isEmpty())
        file.write(line + '\n');
    for (Eigen::Index row = 0; row < matrix.rows(); ++row) {
        line = names.isEmpty() ? QByteArray() : csvField(names[static_cast<int>(row)]) + ',';
        for (Eigen::Index column = 0; column < matrix.cols(); ++column)
            line += (column > 0 ? "," : "") + csvField(matrix(row, column));
        file.write(line + '\n');
    }
    file.commit();
}

} // namespace corvane
