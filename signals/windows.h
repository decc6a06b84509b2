// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include <Eigen/Core>

#include "signals/error.h"

/// \file
/// Sliding windows over a run that was cleaned as a whole.
///
/// A window shorter than 1/high-pass shows changes that the drift could make (Leonardi and Van De
/// Ville 2015, NeuroImage 104:430, doi:10.1016/j.neuroimage.2014.09.007): warn of it.

namespace signals
{

/// Volumes first .. first + length - 1 of the file.
struct Window {
    Eigen::Index first = 0;
    Eigen::Index length = 0;
};

/// How much the volume j = 0 .. W - 1 of a window counts before scaling to a sum of 1.
enum class Taper {
    none, ///< 1
    hann, ///< sin^2(pi (j + 0.5)/W)
    gauss ///< exp(-((j - (W - 1)/2)/(W/6))^2/2)
};

/// All full windows of W = round(window/tr) volumes, each max(1, round(step/tr)) behind the one
/// before, from \p first, the first steady volume, to the end of the file.
///
/// \param volumes in the file. \param window,step,tr in seconds.
/// \throws UsageError if tr or the window is not above 0, the step is negative, or W < 2; Error,
/// with both numbers, if not even one window fits.
std::vector<Window> windows(Eigen::Index volumes, Eigen::Index first, double tr, double window,
                            double step);

/// The weight of each kept volume in a window: its taper, 0 outside, scaled to a sum of 1. All 0 if
/// no volume of the window is kept.
/// \param rows the kept volumes' numbers in the file.
Eigen::ArrayXd window_weights(const Window &window, Taper taper,
                              const std::vector<Eigen::Index> &rows);

/// How many kept volumes stand in the window.
Eigen::Index kept_in(const Window &window, const std::vector<Eigen::Index> &rows);

/// A matrix of fewer volumes than this is not given.
constexpr Eigen::Index least_volumes = 10;

/// Whether a window has a matrix: at least half of it and 10 volumes are kept.
bool is_filled(const Window &window, const std::vector<Eigen::Index> &rows);

/// 1/sum w^2: so many volumes of equal weight say as much. 0 without weights.
double effective_volumes(const Eigen::ArrayXd &weights);

/// sum w (x - m_x)(y - m_y) with m = sum w x; weights sum to 1.
/// \param series kept volumes x series. \return series x series.
/// \throws Error if there is not one weight per row.
Eigen::MatrixXd weighted_covariance(const Eigen::MatrixXd &series, const Eigen::ArrayXd &weights);

} // namespace signals
