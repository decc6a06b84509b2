// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/files/tsv_text.h"
#include "statistics/edges.h"

#include <QJsonArray>
#include <string>

/// @file
/// What tables and sidecars of a group are written of, beside tsv_text.h.

namespace corvane
{

QByteArray cell(const std::string &text);
QByteArray cell(Eigen::Index number);

/// A matrix with names in its first row and column. The corner is empty: so names may be numbers.
QByteArray namedMatrix(const std::vector<std::string> &names, const Eigen::MatrixXd &values);

QJsonArray texts(const std::vector<std::string> &values);

} // namespace corvane
