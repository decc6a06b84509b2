// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/cleaning.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "signals/centring.h"
#include "signals/finite.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

/// What does not change has nothing but rounding errors left: they are taken off, lest they be
/// taken for a series.
void settle_constants(Eigen::MatrixXd &cleaned, const Eigen::MatrixXd &series, const Design &design)
{
    for (Index i = 0; i < series.cols(); ++i) {
        const double level = series(design.rows.front(), i);
        const bool constant = std::all_of(design.rows.begin(), design.rows.end(),
                                          [&](Index volume) { return series(volume, i) == level; });
        if (constant) {
            const double left = cleaned.col(i).mean();
            cleaned.col(i).setConstant(std::abs(left) > 1e-6 * std::abs(level) ? left : 0);
        }
    }
}

void scale_to_percent(Cleaned &cleaned)
{
    cleaned.series = centred(std::move(cleaned.series));
    for (Index i = 0; i < cleaned.series.cols(); ++i) {
        const double level = std::abs(cleaned.means[i]);
        if (level < std::numeric_limits<double>::epsilon()) {
            cleaned.series.col(i).setZero();
            cleaned.without_mean.push_back(i);
        } else {
            cleaned.series.col(i) *= 100 / level;
        }
    }
}

} // namespace

Cleaned clean(const Eigen::MatrixXd &series, const Design &design)
{
    require_finite(series, "series");
    Cleaned cleaned;
    cleaned.series = residuals(prepared(series, design.preparation), design.basis);
    settle_constants(cleaned.series, series, design);
    cleaned.means = design.preparation.kept.cast<double>().matrix().transpose() * series /
                    double(design.rows.size());
    if (design.standardize == Standardize::zscore) {
        cleaned.series = zscored(std::move(cleaned.series));
    } else if (design.standardize == Standardize::psc) {
        scale_to_percent(cleaned);
    }
    return cleaned;
}

} // namespace signals
