// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include "signals/error.h"

namespace signals
{

/// How packages write the six parameters of a rigid motion.
enum class MotionOrder {
    fsl, ///< 3 rotations in rad, then 3 translations in mm
    spm, ///< 3 translations in mm, then 3 rotations in rad
    afni ///< 3 rotations in degrees, then 3 translations in mm
};

/// Six columns of a package as 3 translations in mm and 3 rotations in rad.
/// \param motion volumes x 6. \throws Error if there are not six columns.
Eigen::MatrixXd motion_parameters(const Eigen::MatrixXd &motion, MotionOrder order);

/// Framewise displacement in mm: sum abs(d translation) + 50 mm sum abs(d rotation), d the
/// difference from the volume before; NaN in row 0. The arc on a sphere of 50 mm stands for the
/// rotations.
///
/// Source: Power et al. 2012, NeuroImage 59:2142, doi:10.1016/j.neuroimage.2011.10.018.
///
/// \param parameters volumes x 6: 3 translations in mm, 3 rotations in rad.
/// \throws Error if there are not six columns.
Eigen::ArrayXd framewise_displacement(const Eigen::MatrixXd &parameters);

} // namespace signals
