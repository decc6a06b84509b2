// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QString>
#include <QStringList>

namespace corvane
{

/// Writes a matrix as nodalis::to_csv does: a row in a line, commas, the shortest text of each
/// number. Names of its columns stand above it as a header and names of its rows beside it as an
/// index, each if there are any; the corner of both is empty. Throws InputError, which says why the
/// file cannot be written.
void writeMatrixTable(const QString &path, const Eigen::MatrixXf &matrix,
                      const QStringList &columns = {}, const QStringList &rows = {});

} // namespace corvane
