// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <Eigen/Core>
#include <QJsonObject>

/// Graphs with values of their measures from independent tools, in a folder outside the tree.
namespace reference_data
{

/// Empty when the folder is missing.
std::vector<std::string> names_with(const std::string &ending);
Eigen::MatrixXf matrix(const std::string &file);
QJsonObject expected(const std::string &name);
Eigen::ArrayXd values(const QJsonValue &list);
std::string folder();

} // namespace reference_data
