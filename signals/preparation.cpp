// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/preparation.h"

#include "signals/drift.h"
#include "signals/spline.h"
#include "signals/text.h"

namespace signals
{

namespace
{

Eigen::MatrixXd filtered(const Eigen::MatrixXd &series, const Preparation &preparation)
{
    const Flags kept = preparation.kept.segment(preparation.first, preparation.count);
    Eigen::MatrixXd whole =
        interpolated(series.middleRows(preparation.first, preparation.count), kept);
    if (preparation.detrend) {
        whole = detrended(std::move(whole));
    }
    whole = forward_backward(preparation.filter, whole, preparation.extension, preparation.padding);
    return whole(positions(kept), Eigen::all);
}

} // namespace

Eigen::MatrixXd prepared(const Eigen::MatrixXd &series, const Preparation &preparation)
{
    if (series.rows() != preparation.kept.size()) {
        throw Error("series of " + counted(series.rows(), "volume") + ": expected " +
                    std::to_string(preparation.kept.size()));
    }
    if (!preparation.filter.empty()) {
        return filtered(series, preparation);
    }
    Eigen::MatrixXd rows = series(positions(preparation.kept), Eigen::all);
    return preparation.detrend ? detrended(std::move(rows)) : rows;
}

} // namespace signals
