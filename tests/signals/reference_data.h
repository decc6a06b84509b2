// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <Eigen/Core>
#include <QJsonObject>

#include "signals/confounds.h"

/// Series, tables and images with what independent tools make of them, in a folder outside the
/// tree.
namespace reference_data
{

bool is_there();
/// Numbers between commas or blanks, without a header.
Eigen::MatrixXd matrix(const std::string &file);
/// Numbers between commas below a header; one may be n/a or empty, a NaN here.
signals::ConfoundsTable table(const std::string &file, char separator);
QJsonObject object(const std::string &file);
/// A table of confounds with the JSON beside it.
signals::ConfoundsTable confounds(const std::string &stem);
/// The samples of a compressed NIfTI image of 16-bit integers or floats: volumes x voxels.
Eigen::MatrixXd image(const std::string &file);

} // namespace reference_data
