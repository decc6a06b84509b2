// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/conditions.h"

#include <algorithm>
#include <cmath>

#include "signals/text.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

constexpr double border_tolerance = 1e-3;

double in_volumes(double seconds, double tr)
{
    const double volumes = seconds / tr;
    const double border = std::round(volumes);
    return std::abs(volumes - border) < border_tolerance ? border : volumes;
}

bool holds(const Window &window, Index volume)
{
    return volume >= window.first && volume < window.first + window.length;
}

std::vector<Window> by_start(std::vector<Window> windows)
{
    std::stable_sort(windows.begin(), windows.end(),
                     [](const Window &a, const Window &b) { return a.first < b.first; });
    return windows;
}

} // namespace

Window event_volumes(const Event &event, double delay, double tr, Index volumes)
{
    if (!(tr > 0) || !std::isfinite(event.onset + event.duration + delay)) {
        throw UsageError("an event at " + number(event.onset) + " s of " + number(event.duration) +
                         " s, delayed by " + number(delay) + " s, at a repetition time of " +
                         number(tr) + " s: expected finite times and a repetition time above 0");
    }
    if (event.duration < 0) {
        throw Error("an event of " + number(event.duration) + " s: expected 0 or more");
    }
    const double onset = event.onset + delay;
    const double first = std::floor(in_volumes(onset, tr));
    const double end = std::max(std::ceil(in_volumes(onset + event.duration, tr)), first + 1);
    const double run = double(volumes);
    const double from = std::min(std::max(first, 0.0), run);
    const double to = std::min(std::max(end, 0.0), run);
    return {static_cast<Index>(from), static_cast<Index>(std::max(to - from, 0.0))};
}

std::vector<Index> rows_in(const std::vector<Window> &windows, const std::vector<Index> &rows)
{
    std::vector<Index> found;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (std::any_of(windows.begin(), windows.end(),
                        [&](const Window &window) { return holds(window, rows[row]); })) {
            found.push_back(static_cast<Index>(row));
        }
    }
    return found;
}

Eigen::MatrixXd condition_series(const Eigen::MatrixXd &series, const std::vector<Window> &windows,
                                 const std::vector<Index> &rows)
{
    return series(rows_in(windows, rows), Eigen::all);
}

Eigen::MatrixXd centred_condition_series(const Eigen::MatrixXd &series,
                                         const std::vector<Window> &windows,
                                         const std::vector<Index> &rows)
{
    const std::vector<Index> chosen = rows_in(windows, rows);
    Eigen::MatrixXd result = series(chosen, Eigen::all);
    std::size_t start = 0;
    for (const Window &window : by_start(windows)) {
        std::size_t end = start;
        while (end < chosen.size() && holds(window, rows[chosen[end]])) {
            ++end;
        }
        if (end > start) {
            auto part =
                result.middleRows(static_cast<Index>(start), static_cast<Index>(end - start));
            part.rowwise() -= part.colwise().mean().eval();
        }
        start = end;
    }
    return result;
}

} // namespace signals
