// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/graph_table.h"

namespace corvane
{

/// Writes the measures of a graph into a folder, which is made when it is missing:
/// "features.csv", a row per node with its number, its name (the number again for nodes without
/// names) and a column per measure; and if wanted "mst.csv", the weights of the minimum spanning
/// tree as a matrix, with the names around it if there are any. Both appear, or neither. Returns
/// what OutputFolder::commit says. Throws InputError.
QStringList writeGraphFiles(const QString &folder, const GraphTable &graph, bool withTree);

/// What the measures do with this matrix that its owner may not expect, one line each.
QStringList graphNotes(const Eigen::MatrixXf &weights);

} // namespace corvane
