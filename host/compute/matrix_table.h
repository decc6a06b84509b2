// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/progress.h"

#include <Eigen/Core>
#include <QString>
#include <QStringList>

namespace corvane
{

/// Writes a matrix as nodalis::to_csv does: a row in a line, commas, the shortest text of each
/// number. Names of its columns stand above it as a header and names of its rows beside it as an
/// index, each if there are any; the corner of both is empty. The watch is told of rows. Throws
/// InputError, which says why the file cannot be written, and WorkStopped.
void writeMatrixTable(const QString &path, const Eigen::MatrixXf &matrix,
                      const QStringList &columns = {}, const QStringList &rows = {},
                      const ProgressWatch &watch = {});

} // namespace corvane
