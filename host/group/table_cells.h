// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "statistics/edges.h"

#include <QByteArrayList>
#include <string>

/// @file
/// Cells of tables with tabs between them.

namespace corvane
{

/// The shortest decimal that reads back as the same number; "n/a" for NaN.
QByteArray cell(double number);
QByteArray cell(const std::string &text);
QByteArray cell(Eigen::Index number);

/// A line of a table.
QByteArray line(const QByteArrayList &cells);

/// A matrix with names in its first row and column. The corner is empty: so names may be numbers.
QByteArray namedMatrix(const std::vector<std::string> &names, const Eigen::MatrixXd &values);

} // namespace corvane
