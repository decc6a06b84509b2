// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/cleaning.h"

#include <cmath>
#include <limits>

#include "signals/finite.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

void scale_to_percent(Cleaned &cleaned)
{
    cleaned.series.rowwise() -= cleaned.series.colwise().mean().eval();
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
