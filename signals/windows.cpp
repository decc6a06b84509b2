// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/windows.h"

#include <algorithm>
#include <cmath>

#include "signals/centring.h"
#include "signals/text.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

constexpr double pi = 3.141592653589793238462643383279502884;

double taper_at(double j, double length, Taper taper)
{
    switch (taper) {
    case Taper::none:
        return 1;
    case Taper::hann:
        return std::pow(std::sin(pi * (j + 0.5) / length), 2);
    case Taper::gauss:
        return std::exp(-std::pow((j - (length - 1) / 2) / (length / 6), 2) / 2);
    }
    return 0;
}

bool holds(const Window &window, Index volume)
{
    return volume >= window.first && volume < window.first + window.length;
}

} // namespace

std::vector<Window> windows(Index volumes, Index first, double tr, double window, double step)
{
    if (!(tr > 0 && window > 0 && step >= 0 && std::isfinite(window / tr) &&
          std::isfinite(step / tr))) {
        throw UsageError("windows of " + number(window) + " s every " + number(step) +
                         " s at a repetition time of " + number(tr) +
                         " s: expected lengths above 0");
    }
    const double length = std::round(window / tr);
    if (length < 2) {
        throw UsageError("a window of " + number(window) + " s has " + number(length) +
                         " volumes of " + number(tr) + " s: expected 2 or more");
    }
    if (double(first) + length > double(volumes)) {
        throw Error("a window of " + number(length) + " volumes does not fit into " +
                    counted(std::max<Index>(volumes - first, 0), "volume"));
    }
    const double stride = std::max(1.0, std::round(step / tr));
    std::vector<Window> result;
    for (double start = double(first); start + length <= double(volumes); start += stride) {
        result.push_back({static_cast<Index>(start), static_cast<Index>(length)});
    }
    return result;
}

Eigen::ArrayXd window_weights(const Window &window, Taper taper, const std::vector<Index> &rows)
{
    Eigen::ArrayXd weights = Eigen::ArrayXd::Zero(static_cast<Index>(rows.size()));
    for (Index row = 0; row < weights.size(); ++row) {
        if (holds(window, rows[row])) {
            weights[row] = taper_at(double(rows[row] - window.first), double(window.length), taper);
        }
    }
    const double sum = weights.sum();
    return sum > 0 ? Eigen::ArrayXd(weights / sum) : weights;
}

Index kept_in(const Window &window, const std::vector<Index> &rows)
{
    return std::count_if(rows.begin(), rows.end(),
                         [&](Index volume) { return holds(window, volume); });
}

bool is_filled(const Window &window, const std::vector<Index> &rows)
{
    const Index kept = kept_in(window, rows);
    return kept >= least_volumes && 2 * kept >= window.length;
}

double effective_volumes(const Eigen::ArrayXd &weights)
{
    const double squares = weights.square().sum();
    return squares > 0 ? 1 / squares : 0;
}

Eigen::MatrixXd weighted_covariance(const Eigen::MatrixXd &series, const Eigen::ArrayXd &weights)
{
    if (series.rows() != weights.size()) {
        throw Error("series of " + counted(series.rows(), "row") + " with " +
                    counted(weights.size(), "weight") + ": expected as many");
    }
    const Eigen::RowVectorXd means = weights.matrix().transpose() * series;
    return gram(((series.rowwise() - means).array().colwise() * weights.sqrt()).matrix());
}

} // namespace signals
