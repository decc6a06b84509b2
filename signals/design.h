// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <Eigen/Core>

#include "signals/ledger.h"
#include "signals/preparation.h"
#include "signals/regression.h"
#include "signals/volumes.h"

namespace signals
{

/// In which order drift, filter, censoring and regression follow each other. Steps made one after
/// the other bring back what an earlier one took (Lindquist et al. 2019, Hum Brain Mapp 40:2358,
/// doi:10.1002/hbm.24528); only `joint` does not.
enum class Order {
    /// One least-squares fit on the kept volumes of: intercept, linear trend over the volumes'
    /// numbers in the file, drift, regressors. Drift: with a high-pass the own cosines, and then
    /// the table's are left out; else the table's. With a low-pass also the cosines above it. Each
    /// column but the intercept is centred and scaled to norm 1; a constant one is left out;
    /// abs(R_ii) > 1e-9 counts. Exact degrees of freedom, nothing is interpolated.
    joint,
    /// Cosines of all volumes join the regressors (at 0.008 Hz, if there are neither cosines in
    /// the table nor a high-pass; none of them, if one's correlation with a regressor is above
    /// 0.9); then rows that are not kept leave; linear detrend over the rows left; regressors to
    /// mean 0 and variance 1; residuals without intercept, abs(R_ii) > 100 x 2.2e-16 counts.
    cosine,
    /// Spline over volumes left out, those at the ends discarded; linear detrend; Butterworth of
    /// order 5, odd extension; then rows that are not kept leave and the regression is that of
    /// `cosine`. Series and regressors go through the same.
    butterworth,
    /// Non-steady volumes at the start are cut off; spline over volumes left out, those at the
    /// ends take the nearest kept one; linear detrend; Butterworth of order 2, 0.01 to 0.08 Hz
    /// unless given, constant extension by n - 1 rows; least squares on the kept rows without
    /// intercept, regressors neither centred nor scaled.
    bandpass_pad
};

enum class Standardize {
    none,
    /// (x - mean)/sd with n - 1; an sd below 2.2e-16 is taken as 1.
    zscore,
    /// 100 (x - mean)/abs(m), m the mean of the uncleaned kept volumes; zeros where abs(m) is
    /// below 2.2e-16.
    psc
};

/// "joint", "cosine", "butterworth", "bandpass-pad".
const char *name(Order order);

struct Settings {
    Order order = Order::joint;
    /// Edges in Hz; not given means the order's default, 0 means none.
    std::optional<double> high_pass;
    std::optional<double> low_pass;
    /// Linear trend; where none is taken, `joint` still takes the mean.
    bool detrend = true;
    Standardize standardize = Standardize::none;
};

/// What is regressed out, beside trend and drift.
struct Regressors {
    /// One per column; "cosine" with digits behind it is a drift of the table.
    std::vector<std::string> names;
    /// volumes x names, finite.
    Eigen::MatrixXd values;
    /// No linear trend, and no drift unless a high-pass is given.
    bool filter_only = false;
};

/// "cosine00": the name of a drift column in a table of confounds.
bool is_cosine(const std::string &column);

/// Everything about cleaning that does not depend on the series, to be used for all series of a
/// run, however many blocks they come in.
struct Design {
    /// The edges in force.
    Band band;
    Standardize standardize = Standardize::none;
    /// The kept volumes' numbers in the file, one per row of what is cleaned.
    std::vector<Eigen::Index> rows;
    /// What was fitted: kept volumes x names, as scaled for the fit.
    std::vector<std::string> names;
    Eigen::MatrixXd columns;

    Preparation preparation;
    Basis basis;
    Ledger ledger;
    /// Sentences for people: what was left out or changed.
    std::vector<std::string> notes;
};

/// Makes the design of a run and checks that enough is left.
///
/// Rank: of `joint`'s fit; else 2 (1 without trend) and the regressors that count. Degrees of
/// freedom: kept - rank; for `butterworth` and `bandpass_pad` at most
/// 2 tr kept (high - low) - regressors that count, about, high = 1/(2 tr) and low = 0 where there
/// is no edge. An edge at or above 1/(2 tr) is lowered to just below, which is noted.
///
/// \param regressors one row per volume; no columns for none.
/// \param tr repetition time in seconds, above 0.
/// \throws UsageError if tr or an edge is out of range or the order needs an edge that is not
/// given; Error if sizes differ, a regressor is not finite, or the run is too short for the
/// filter; Refused, with all numbers, below 3 degrees of freedom.
Design make_design(const Regressors &regressors, const Volumes &volumes, double tr,
                   const Settings &settings);

} // namespace signals
