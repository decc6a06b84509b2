// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include "signals/error.h"

namespace signals
{

/// How much the image changes from a volume to the next.
struct Dvars {
    /// sqrt(mean over voxels of (x(t) - x(t-1))^2), in the unit of the data; NaN in row 0.
    Eigen::ArrayXd plain;
    /// plain / mean over voxels of (sqrt(2 (1 - a)) s), near 1 without artefacts; NaN in row 0.
    Eigen::ArrayXd standardised;
};

/// DVARS of a run, and its standardised form.
///
/// s = (Q75 - Q25)/1.349 of a voxel's series, Q the value at index floor(q (T - 1)) of the sorted
/// series; a = sum y_t y_(t+1) / sum y_t^2 of the demeaned series y. Voxels with s = 0 are left
/// out of both. Without any voxel left, all values are NaN. The standardised form does not depend
/// on the scale of the data.
///
/// Sources: Power et al. 2012, NeuroImage 59:2142, doi:10.1016/j.neuroimage.2011.10.018; Nichols
/// 2017, arXiv:1704.01469; Afyouni and Nichols 2018, NeuroImage 172:291,
/// doi:10.1016/j.neuroimage.2017.12.098.
///
/// \param series volumes x voxels, those of the mask.
/// \throws Error if a value is not finite, with its place.
Dvars dvars(const Eigen::MatrixXd &series);

/// What brings the median over all volumes and voxels to 1000, by which DVARS is multiplied for
/// display; the mean of the two middle values counts for an even number. NaN for no data, or a
/// median of 0.
double dvars_scale(const Eigen::MatrixXd &series);

} // namespace signals
