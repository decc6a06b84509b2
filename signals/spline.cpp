// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/spline.h"

#include <algorithm>

#include "signals/text.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

/// One equation per knot, of its slope and those of its neighbours.
struct Tridiagonal {
    Eigen::ArrayXd below, diagonal, above;
    Eigen::MatrixXd right;
};

/// The right side's place is taken by the solution.
Eigen::MatrixXd solved(Tridiagonal system)
{
    auto &[below, diagonal, above, right] = system;
    const Index last = diagonal.size() - 1;
    for (Index i = 1; i <= last; ++i) {
        const double factor = below[i] / diagonal[i - 1];
        diagonal[i] -= factor * above[i - 1];
        right.row(i) -= factor * right.row(i - 1);
    }
    right.row(last) /= diagonal[last];
    for (Index i = last - 1; i >= 0; --i) {
        right.row(i) = (right.row(i) - above[i] * right.row(i + 1)) / diagonal[i];
    }
    return right;
}

/// Slopes at four knots or more. \p steps are the widths of the pieces, \p rises their slopes.
Eigen::MatrixXd not_a_knot(const Eigen::ArrayXd &steps, const Eigen::MatrixXd &rises)
{
    const Index knots = steps.size() + 1;
    const Index last = knots - 1;
    Tridiagonal system{Eigen::ArrayXd::Zero(knots), Eigen::ArrayXd::Zero(knots),
                       Eigen::ArrayXd::Zero(knots), Eigen::MatrixXd(knots, rises.cols())};
    for (Index i = 1; i < last; ++i) {
        system.below[i] = steps[i];
        system.diagonal[i] = 2 * (steps[i - 1] + steps[i]);
        system.above[i] = steps[i - 1];
        system.right.row(i) = 3 * (steps[i] * rises.row(i - 1) + steps[i - 1] * rises.row(i));
    }
    const auto set_end = [&](Index row, double outer, double inner, Index outer_piece,
                             Index inner_piece) {
        const double both = outer + inner;
        system.diagonal[row] = inner;
        system.right.row(row) = ((outer + 2 * both) * inner * rises.row(outer_piece) +
                                 outer * outer * rises.row(inner_piece)) /
                                both;
        (row == 0 ? system.above : system.below)[row] = both;
    };
    set_end(0, steps[0], steps[1], 0, 1);
    set_end(last, steps[last - 1], steps[last - 2], last - 1, last - 2);
    return solved(std::move(system));
}

/// The slopes of the parabola through three knots.
Eigen::MatrixXd parabola(const Eigen::ArrayXd &steps, const Eigen::MatrixXd &rises)
{
    const Eigen::RowVectorXd bend = (rises.row(1) - rises.row(0)) / (steps[0] + steps[1]);
    Eigen::MatrixXd slopes(3, rises.cols());
    slopes.row(0) = rises.row(0) - steps[0] * bend;
    slopes.row(1) = rises.row(0) + steps[0] * bend;
    slopes.row(2) = rises.row(1) + steps[1] * bend;
    return slopes;
}

Eigen::MatrixXd slopes_of(const Eigen::ArrayXd &steps, const Eigen::MatrixXd &rises)
{
    switch (steps.size()) {
    case 1:
        return rises.replicate(2, 1);
    case 2:
        return parabola(steps, rises);
    default:
        return not_a_knot(steps, rises);
    }
}

void require_knots(const Eigen::ArrayXd &knots, const Eigen::MatrixXd &values)
{
    if (knots.size() == 0 || knots.size() != values.rows()) {
        throw Error("a spline through " + counted(knots.size(), "knot") + " and " +
                    counted(values.rows(), "value") + ": expected one or more, and as many values");
    }
    for (Index i = 1; i < knots.size(); ++i) {
        if (!(knots[i] > knots[i - 1])) {
            throw Error("knot " + std::to_string(i) + " of a spline is at " + number(knots[i]) +
                        ", expected more than " + number(knots[i - 1]));
        }
    }
}

} // namespace

Eigen::MatrixXd cubic_spline(const Eigen::ArrayXd &knots, const Eigen::MatrixXd &values,
                             const Eigen::ArrayXd &at)
{
    require_knots(knots, values);
    const Index pieces = knots.size() - 1;
    if (pieces == 0) {
        return values.replicate(at.size(), 1);
    }
    const Eigen::ArrayXd steps = knots.tail(pieces) - knots.head(pieces);
    const Eigen::MatrixXd rises =
        ((values.bottomRows(pieces) - values.topRows(pieces)).array().colwise() / steps).matrix();
    const Eigen::MatrixXd slopes = slopes_of(steps, rises);

    Eigen::MatrixXd result(at.size(), values.cols());
    for (Index i = 0; i < at.size(); ++i) {
        const Index behind = std::upper_bound(knots.begin(), knots.end(), at[i]) - knots.begin();
        const Index piece = std::min(std::max<Index>(behind - 1, 0), pieces - 1);
        // Hermite's form of the piece.
        const double width = steps[piece];
        const double u = (at[i] - knots[piece]) / width;
        const double v = 1 - u;
        result.row(i) = v * v * (1 + 2 * u) * values.row(piece) +
                        u * u * (1 + 2 * v) * values.row(piece + 1) +
                        width * u * v * (v * slopes.row(piece) - u * slopes.row(piece + 1));
    }
    return result;
}

Eigen::MatrixXd interpolated(Eigen::MatrixXd series, const Flags &kept)
{
    if (series.rows() != kept.size()) {
        throw Error("interpolation of " + counted(series.rows(), "row") + " by " +
                    counted(kept.size(), "flag") + ": expected as many");
    }
    const std::vector<Index> knots = positions(kept);
    if (knots.empty()) {
        throw Error("interpolation from 0 kept of " + counted(kept.size(), "volume") +
                    ": expected 1 or more");
    }
    const Index first = knots.front();
    const Index last = knots.back();
    series.topRows(first).rowwise() = series.row(first).eval();
    series.bottomRows(series.rows() - 1 - last).rowwise() = series.row(last).eval();

    std::vector<Index> gaps;
    for (Index i = first; i <= last; ++i) {
        if (!kept[i]) {
            gaps.push_back(i);
        }
    }
    if (gaps.empty()) {
        return series;
    }
    const auto places = [](const std::vector<Index> &rows) {
        return Eigen::Map<const Eigen::Array<Index, Eigen::Dynamic, 1>>(
                   rows.data(), static_cast<Index>(rows.size()))
            .cast<double>()
            .eval();
    };
    const Eigen::MatrixXd values = series(knots, Eigen::all);
    series(gaps, Eigen::all) = cubic_spline(places(knots), values, places(gaps));
    return series;
}

} // namespace signals
