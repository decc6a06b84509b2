// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <Eigen/Core>

#include "signals/volumes.h"

namespace signals
{

/// The cubic spline through values at knots, with not-a-knot ends: the third derivative does not
/// jump at the second knot and at the last but one. Two knots give the line, three the parabola
/// through them, one a constant. Linear in the values; exact for cubic polynomials from four knots.
///
/// Source: de Boor, A practical guide to splines, ISBN 978-0387953663, chapter IV.
///
/// \param knots strictly ascending. \param values knots x series.
/// \param at where to evaluate; beyond the ends the outer pieces go on.
/// \return at x series.
/// \throws Error if there are no knots, their number is not that of the values' rows, or they do
/// not ascend.
Eigen::MatrixXd cubic_spline(const Eigen::ArrayXd &knots, const Eigen::MatrixXd &values,
                             const Eigen::ArrayXd &at);

/// The series with every row that is not kept replaced: an inner one by the spline through the
/// kept rows, those before the first and after the last kept row by that row. Kept rows stay as
/// they are.
///
/// \param series volumes x series. \param kept one flag per volume.
/// \throws Error if the numbers of rows and flags differ, or none is kept.
Eigen::MatrixXd interpolated(Eigen::MatrixXd series, const Flags &kept);

} // namespace signals
