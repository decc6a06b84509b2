// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QString>
#include <QStringList>

namespace corvane
{

/// Writes a matrix as nodalis::to_csv does: a row in a line, commas, the shortest text of each
/// number. With `names`, one for each row and column, they stand around it as a header and an
/// index. Throws InputError, which says why the file cannot be written.
void writeMatrixTable(const QString &path, const Eigen::MatrixXf &matrix,
                      const QStringList &names = {});

} // namespace corvane
