// SPDX-License-Identifier: GPL-3.0-or-later
#include "signals/design.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "signals/drift.h"
#include "signals/finite.h"
#include "signals/text.h"

namespace signals
{

namespace
{

using Index = Eigen::Index;

constexpr double epsilon = std::numeric_limits<double>::epsilon();
constexpr double joint_tolerance = 1e-9;
constexpr double stepwise_tolerance = 100 * epsilon;
constexpr double default_cosine_edge = 0.008;
constexpr double too_alike = 0.9;

bool filters(Order order)
{
    return order == Order::butterworth || order == Order::bandpass_pad;
}

bool has_cosines(const Regressors &regressors)
{
    return std::any_of(regressors.names.begin(), regressors.names.end(), is_cosine);
}

void append(Regressors &regressors, const std::vector<std::string> &names,
            const Eigen::MatrixXd &values)
{
    const Index before = regressors.values.cols();
    regressors.values.conservativeResize(values.rows(), before + values.cols());
    regressors.values.rightCols(values.cols()) = values;
    regressors.names.insert(regressors.names.end(), names.begin(), names.end());
}

void append_cosines(Regressors &regressors, Index volumes, const std::vector<Index> &numbers)
{
    std::vector<std::string> names;
    for (const Index k : numbers) {
        names.push_back("own cosine " + std::to_string(k));
    }
    append(regressors, names, cosines(volumes, numbers));
}

/// The columns for which \p keep is true.
template <typename Keep>
Regressors selected(const Regressors &regressors, Keep keep)
{
    std::vector<Index> columns;
    Regressors result;
    result.filter_only = regressors.filter_only;
    for (Index column = 0; column < regressors.values.cols(); ++column) {
        if (keep(column)) {
            columns.push_back(column);
            result.names.push_back(regressors.names[column]);
        }
    }
    result.values = regressors.values(Eigen::all, columns);
    return result;
}

void require(const Regressors &regressors, const Volumes &volumes, double tr,
             const Settings &settings)
{
    if (!(tr > 0) || !std::isfinite(tr)) {
        throw UsageError("repetition time of " + number(tr) + " s: expected more than 0");
    }
    if (volumes.count() == 0) {
        throw Error("a run of 0 volumes: expected 1 or more");
    }
    for (const std::optional<double> &edge : {settings.high_pass, settings.low_pass}) {
        if (edge && !(*edge >= 0 && std::isfinite(*edge))) {
            throw UsageError("filter edge of " + number(*edge) + " Hz: expected 0 or more");
        }
    }
    if (static_cast<Index>(regressors.names.size()) != regressors.values.cols()) {
        throw Error(counted(static_cast<Index>(regressors.names.size()), "name") + " of " +
                    counted(regressors.values.cols(), "regressor") + ": expected as many");
    }
    if (regressors.values.cols() > 0 && regressors.values.rows() != volumes.count()) {
        throw Error("regressors of " + counted(regressors.values.rows(), "volume") + ": expected " +
                    std::to_string(volumes.count()));
    }
    for (Index column = 0; column < regressors.values.cols(); ++column) {
        for (Index row = 0; row < regressors.values.rows(); ++row) {
            if (!std::isfinite(regressors.values(row, column))) {
                throw Error("regressor " + regressors.names[column] + ", volume " +
                            std::to_string(row) + " (from 0) is " +
                            number(regressors.values(row, column)) + ": expected a finite number");
            }
        }
    }
}

Band default_band(const Regressors &regressors, Order order)
{
    if (order == Order::bandpass_pad) {
        return {0.01, 0.08};
    }
    const bool drift_is_missing = !regressors.filter_only && !has_cosines(regressors);
    return {order == Order::cosine && drift_is_missing ? default_cosine_edge : 0, 0};
}

/// The edge, or just below half the rate of the volumes, which is noted.
double lowered(double edge, const char *which, double tr, std::vector<std::string> &notes)
{
    const double result = below_nyquist(edge, tr);
    if (result != edge) {
        notes.push_back(std::string("the ") + which + " of " + number(edge) +
                        " Hz is lowered to half the rate of the volumes, " + number(1 / (2 * tr)) +
                        " Hz");
    }
    return result;
}

Band band_in_force(const Regressors &regressors, double tr, const Settings &settings,
                   std::vector<std::string> &notes)
{
    const Band standard = default_band(regressors, settings.order);
    const Band wanted{settings.high_pass.value_or(standard.high_pass),
                      settings.low_pass.value_or(standard.low_pass)};
    const Band band{lowered(wanted.high_pass, "high-pass", tr, notes),
                    lowered(wanted.low_pass, "low-pass", tr, notes)};
    if (band.low_pass > 0 && band.high_pass >= band.low_pass) {
        throw UsageError("nothing passes between a high-pass of " + number(wanted.high_pass) +
                         " Hz and a low-pass of " + number(wanted.low_pass) +
                         " Hz: expected the first below the second, and below " +
                         number(1 / (2 * tr)) + " Hz, half the rate of the volumes");
    }
    if (settings.order == Order::butterworth && band.high_pass <= 0 && band.low_pass <= 0) {
        throw UsageError("the order butterworth needs a high-pass or a low-pass: neither is given");
    }
    return band;
}

Preparation preparation_of(const Volumes &volumes, double tr, const Band &band, Order order,
                           bool detrend)
{
    Preparation preparation;
    preparation.kept = volumes.kept();
    preparation.detrend = detrend && order != Order::joint;
    if (order == Order::butterworth) {
        const std::vector<Index> rows = positions(preparation.kept);
        preparation.filter = butterworth(5, tr, band);
        preparation.extension = Extension::odd;
        preparation.padding = padding(preparation.filter);
        preparation.first = rows.front();
        preparation.count = rows.back() - rows.front() + 1;
    } else if (order == Order::bandpass_pad) {
        while (volumes.non_steady[preparation.first]) {
            ++preparation.first;
        }
        preparation.filter = butterworth(2, tr, band);
        preparation.extension = Extension::constant;
        preparation.count = volumes.count() - preparation.first;
        preparation.padding = preparation.count - 1;
    }
    return preparation;
}

std::vector<Index> own_cosines(Index volumes, double tr, const Band &band)
{
    std::vector<Index> numbers;
    if (band.high_pass > 0) {
        numbers = cosines_below(volumes, tr, band.high_pass);
    }
    if (band.low_pass > 0) {
        const std::vector<Index> above = cosines_above(volumes, tr, band.high_pass, band.low_pass);
        numbers.insert(numbers.end(), above.begin(), above.end());
    }
    return numbers;
}

Eigen::MatrixXd centred_to_norm_1(Eigen::MatrixXd values)
{
    values.rowwise() -= values.colwise().mean().eval();
    for (auto column : values.colwise()) {
        column.stableNormalize();
    }
    return values;
}

/// Constant but for rounding, after which centring leaves nothing that means anything.
bool is_constant(const Eigen::VectorXd &values)
{
    const double spread = (values.array() - values.mean()).matrix().stableNorm();
    return !(spread > 1e-13 * values.stableNorm());
}

Regressors without_constants(const Regressors &regressors, std::vector<std::string> &notes)
{
    return selected(regressors, [&](Index column) {
        const bool constant = is_constant(regressors.values.col(column));
        if (constant) {
            notes.push_back("the regressor " + regressors.names[column] +
                            " is constant over the kept volumes and left out");
        }
        return !constant;
    });
}

/// Intercept, trend, drift and regressors on the kept rows, of norm 1.
Regressors joint_columns(const Regressors &given, Index volumes, double tr, const Band &band,
                         bool detrend, const Preparation &preparation,
                         std::vector<std::string> &notes)
{
    Regressors all;
    all.values.resize(volumes, 0);
    if (detrend) {
        append(all, {"trend"}, Eigen::VectorXd::LinSpaced(volumes, 0, double(volumes - 1)));
    }
    append_cosines(all, volumes, own_cosines(volumes, tr, band));
    Regressors rest = given;
    if (band.high_pass > 0 && has_cosines(given)) {
        rest = selected(given, [&](Index column) { return !is_cosine(given.names[column]); });
        notes.emplace_back("the cosines of the table are left out: the high-pass has its own");
    }
    append(all, rest.names, rest.values);

    all.values = prepared(all.values, preparation);
    all = without_constants(all, notes);
    Regressors columns;
    columns.values.resize(all.values.rows(), 0);
    append(columns, {"intercept"}, Eigen::VectorXd::Ones(all.values.rows()).normalized());
    append(columns, all.names, centred_to_norm_1(all.values));
    return columns;
}

bool any_too_alike(const Eigen::MatrixXd &drift, const Eigen::MatrixXd &regressors)
{
    // 0 instead of not-a-number for a constant regressor: it resembles nothing.
    return ((centred_to_norm_1(drift).transpose() * centred_to_norm_1(regressors)).array() >
            too_alike)
        .any();
}

/// With the drift that the order `cosine` adds.
Regressors with_cosines(Regressors regressors, Index volumes, double tr, const Band &band,
                        std::vector<std::string> &notes)
{
    const std::vector<Index> numbers = own_cosines(volumes, tr, band);
    if (any_too_alike(cosines(volumes, numbers), regressors.values)) {
        notes.emplace_back("the own cosines are left out: one correlates above 0.9 with a "
                           "regressor");
    } else {
        append_cosines(regressors, volumes, numbers);
    }
    return regressors;
}

/// On the kept rows, as the orders that go step by step fit them.
Regressors stepwise_columns(Regressors regressors, Index volumes, double tr, const Band &band,
                            Order order, const Preparation &preparation,
                            std::vector<std::string> &notes)
{
    if (order == Order::cosine) {
        regressors = with_cosines(std::move(regressors), volumes, tr, band, notes);
    }
    regressors.values = prepared(regressors.values, preparation);
    if (order != Order::bandpass_pad) {
        regressors.values = zscored(std::move(regressors.values));
    }
    return regressors;
}

Basis basis_of(const Eigen::MatrixXd &columns, Order order)
{
    switch (order) {
    case Order::joint:
        return pivoted_basis(columns, joint_tolerance);
    case Order::bandpass_pad:
        return singular_basis(columns);
    default:
        return pivoted_basis(columns, stepwise_tolerance);
    }
}

void count_degrees(Ledger &ledger, Index columns, double tr, const Band &band, Order order,
                   bool detrend)
{
    ledger.rank = order == Order::joint ? columns : columns + (detrend ? 2 : 1);
    ledger.degrees = double(ledger.kept - ledger.rank);
    if (filters(order)) {
        const double high = band.low_pass > 0 ? band.low_pass : 1 / (2 * tr);
        const double in_band = 2 * tr * double(ledger.kept) * (high - band.high_pass);
        ledger.degrees = std::min(ledger.degrees, in_band - double(columns));
        ledger.about = true;
    }
}

} // namespace

const char *name(Order order)
{
    switch (order) {
    case Order::joint:
        return "joint";
    case Order::cosine:
        return "cosine";
    case Order::butterworth:
        return "butterworth";
    case Order::bandpass_pad:
        return "bandpass-pad";
    }
    return "";
}

bool is_cosine(const std::string &column)
{
    const std::string stem = "cosine";
    return column.size() > stem.size() && column.compare(0, stem.size(), stem) == 0 &&
           column.find_first_not_of("0123456789", stem.size()) == std::string::npos;
}

Design make_design(const Regressors &regressors, const Volumes &volumes, double tr,
                   const Settings &settings)
{
    require(regressors, volumes, tr, settings);
    Regressors given = regressors;
    given.values.conservativeResize(volumes.count(), Eigen::NoChange);
    const bool detrend = settings.detrend && !given.filter_only;

    Design design;
    design.standardize = settings.standardize;
    design.ledger = count_volumes(volumes, tr);
    require_enough(design.ledger);
    design.rows = positions(volumes.kept());
    design.band = band_in_force(given, tr, settings, design.notes);
    design.preparation = preparation_of(volumes, tr, design.band, settings.order, detrend);
    Regressors columns = settings.order == Order::joint
                             ? joint_columns(given, volumes.count(), tr, design.band, detrend,
                                             design.preparation, design.notes)
                             : stepwise_columns(given, volumes.count(), tr, design.band,
                                                settings.order, design.preparation, design.notes);
    design.basis = basis_of(columns.values, settings.order);
    for (const Index column : design.basis.dependent) {
        design.notes.push_back("the regressor " + columns.names[column] +
                               " is constant or a combination of others and counts for nothing");
    }
    if (settings.order == Order::bandpass_pad && design.basis.rank() < columns.values.cols()) {
        design.notes.push_back(counted(columns.values.cols(), "regressor") + " have rank " +
                               std::to_string(design.basis.rank()) +
                               ": some are combinations of others");
    }
    design.names = std::move(columns.names);
    design.columns = std::move(columns.values);
    count_degrees(design.ledger, design.basis.rank(), tr, design.band, settings.order, detrend);
    require_enough(design.ledger);
    return design;
}

} // namespace signals
