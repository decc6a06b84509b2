// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

/// The first treatment pass of a connectivity matrix: which signs stay. Applied to every entry
/// alike, the diagonal included.
///
/// `matrixValues` 0 (absolute): |x|, a NaN stays NaN. 1 (positive): x where x >= 0, else 0, a NaN
/// too. 2 (negative): |x| where x < 0, else 0, a NaN too. Any other value changes nothing.
void treatSigns(Eigen::MatrixXf &matrix, int matrixValues);
