// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/compute_settings.h"

#include <Eigen/Core>

/// The first treatment pass of a connectivity matrix: which signs stay. Applied to every entry
/// alike, the diagonal included.
///
/// Absolute: |x|, a NaN stays NaN. Positive: x where x >= 0, else 0, a NaN too. Negative: |x| where
/// x < 0, else 0, a NaN too. Signed, and any other value, changes nothing.
void treatSigns(Eigen::MatrixXf &matrix, MatrixValues values);
