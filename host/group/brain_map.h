// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QString>
#include <QStringList>

namespace corvane
{

/// One number for each node.
struct BrainMap {
    QString path;
    QString column;        ///< the number's name
    QStringList names;     ///< of the nodes; empty without
    Eigen::ArrayXd values; ///< NaN where there is none
};

/// Reads a column of a table with tabs or commas between its cells and the names of its columns in
/// the first line; cells may stand in double quotation marks. A table whose first line holds
/// numbers alone has columns called 1, 2 and so on.
///
/// The nodes' names stand in the column "name" or "Node", else in the first one that holds a
/// different text in each row. Names that only count the rows from 0 are none.
///
/// \param column its name; empty where there is but one that holds numbers and is no name, index or
///        number of nodes.
/// Throws InputError, for a cell of the column that is neither a number nor missing, and for a name
/// that comes twice.
BrainMap readBrainMap(const QString &path, const QString &column);

/// The values of two maps, those of one node beside each other.
struct MatchedMaps {
    QStringList names; ///< of the nodes, or their rows from 1
    Eigen::ArrayXd first, second;
    QStringList notes; ///< how they were matched, and what was not, one line each
};

/// Matches nodes by name, in the order of the first map; by row where a map has no names. Throws
/// InputError if no name is in both, or rows without names differ in number.
MatchedMaps matchMaps(const BrainMap &first, const BrainMap &second);

} // namespace corvane
