// SPDX-License-Identifier: GPL-3.0-or-later
//
// The cleaning of time series on Windows: what every order must leave and take, and the texts of
// errors.
#include "signals/cleaning.h"
#include "signals/correlation.h"
#include "signals/drift.h"
#include "signals/intervals.h"
#include "signals/strategies.h"

#include <cmath>
#include <cstdio>
#include <string>

namespace
{

using namespace signals;

int failures = 0;
int passes = 0;

void check(bool passed, const char *what)
{
    if (passed) {
        ++passes;
        return;
    }
    ++failures;
    std::printf("failed: %s\n", what);
}

/// A column of drift to regress out, and series of that drift and of a wave in the band.
void check_orders()
{
    const Eigen::Index volumes = 200;
    const double tr = 2;
    // Cosine k has k/800 Hz.
    const Eigen::MatrixXd waves = cosines(volumes, {2, 40});
    Regressors regressors;
    regressors.names = {"drift"};
    regressors.values = waves.col(0);
    for (const Order order :
         {Order::joint, Order::cosine, Order::butterworth, Order::bandpass_pad}) {
        const Design design = make_design(regressors, Volumes::all_of(volumes), tr,
                                          {order, 0.008, 0.1, true, Standardize::none});
        const Eigen::MatrixXd left = clean(waves, design).series;
        check(left.col(0).norm() < 1e-8, name(order));
        check(left.col(1).norm() > 0.9, name(order));
    }
}

void check_censoring()
{
    ConfoundsTable table;
    table.names = {"csf", "framewise_displacement"};
    table.values = Eigen::MatrixXd::Random(40, 2);
    table.values.col(1).setZero();
    table.values(20, 1) = 3;
    StrategyRequest request;
    request.strategy = "columns:c*";
    request.volumes = 40;
    request.fd_threshold = 0.5;
    check(select(table, request).volumes.kept().count() == 39, "censoring");
    request.strategy = "simple";
    std::string text;
    try {
        select(table, request);
    } catch (const Error &error) {
        text = error.what();
    }
    check(text.find("lacks: rot_x, ") != std::string::npos, "text of an error");
}

void check_interval()
{
    const CorrelationInterval interval = correlation_interval(0.5, 27);
    check(std::abs(interval.z - 0.5493061443340549) < 1e-14, "z");
    check(interval.standard_error == 0.2, "standard error");
    check(pearson(Eigen::MatrixXd::Random(50, 9)).diagonal().sum() == 9, "pearson");
}

} // namespace

int main()
{
    check_orders();
    check_censoring();
    check_interval();
    std::printf("%d passed, %d failed\n", passes, failures);
    return failures == 0 && passes > 0 ? 0 : 1;
}
