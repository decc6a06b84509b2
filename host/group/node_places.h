// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>
#include <QString>
#include <map>
#include <string>
#include <vector>

namespace corvane
{

/// Where nodes are, in mm, by name.
using NodePlaces = std::map<QString, Eigen::Vector3d>;

/// Reads a table with the columns x, y and z, in mm, and the nodes' names in "name", "label" or
/// "Node", such as an atlas' table of labels with these columns. A row with "n/a" among the three
/// has no place. Throws InputError, also for a name that comes twice.
NodePlaces readNodePlaces(const QString &path);

/// The distance of the nodes of each edge, in the order of statistics/edges.h; NaN if one of them
/// has no place.
Eigen::ArrayXd edgeDistances(const NodePlaces &places, const std::vector<std::string> &nodes);

} // namespace corvane
