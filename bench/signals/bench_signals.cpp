// SPDX-License-Identifier: GPL-3.0-or-later
//
// Cleaning of 300 volumes of 400 nodes with 36 regressors, by each order: the design and the series
// together, and the series alone, as each further block of a run costs. Then the measures.
//
// Times are the least of several repetitions, on one thread.
#include "signals/cleaning.h"
#include "signals/correlation.h"
#include "signals/intervals.h"
#include "signals/partial.h"
#include "tests/signals/noise.h"

#include <algorithm>
#include <functional>

#include <benchmark/benchmark.h>

namespace
{

using namespace signals;

constexpr double tr = 2;
constexpr Eigen::Index volumes = 300;
constexpr Eigen::Index nodes = 400;
constexpr Eigen::Index regressor_count = 36;

struct Run {
    Eigen::MatrixXd series;
    Regressors regressors;
    Volumes kept = Volumes::all_of(volumes);
};

Run run()
{
    Noise noise(1);
    Run result;
    result.series = 10 * noise.serial(volumes, nodes, 0.5).array() + 1000;
    result.regressors.values = noise.serial(volumes, regressor_count, 0.5);
    result.regressors.names.assign(regressor_count, "r");
    for (Eigen::Index volume = 20; volume < volumes; volume += 40) {
        result.kept.censored.segment(volume, 3).setConstant(true);
    }
    return result;
}

Settings settings(Order order)
{
    const bool band = order == Order::butterworth || order == Order::bandpass_pad;
    return {order, band ? 0.01 : 0.008, band ? std::optional<double>(0.15) : std::nullopt, true,
            Standardize::none};
}

void add(const std::string &name, const std::function<void()> &work)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [work](benchmark::State &state) {
                                     for ([[maybe_unused]] auto unused : state) {
                                         work();
                                     }
                                 })
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(7)
        ->MinTime(0.05)
        ->ReportAggregatesOnly()
        ->ComputeStatistics("min", [](const std::vector<double> &times) {
            return *std::min_element(times.begin(), times.end());
        });
}

template <typename Result>
void keep(Result &&result)
{
    benchmark::DoNotOptimize(result);
}

} // namespace

int main(int argc, char **argv)
{
    const Run all = run();
    for (const Order order :
         {Order::joint, Order::cosine, Order::butterworth, Order::bandpass_pad}) {
        const Design design = make_design(all.regressors, all.kept, tr, settings(order));
        add(std::string("design+clean/") + name(order), [&all, order] {
            keep(clean(all.series, make_design(all.regressors, all.kept, tr, settings(order))));
        });
        add(std::string("clean/") + name(order),
            [&all, design] { keep(clean(all.series, design)); });
    }
    add("pearson", [&all] { keep(pearson(all.series)); });
    add("spearman", [&all] { keep(spearman(all.series)); });
    add("shrunk_partial", [&all] { keep(shrunk_partial_correlation(all.series)); });
    add("serial_degrees", [&all] {
        keep(serial_degrees(all.series, positions(Flags::Constant(volumes, true)), 200));
    });
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
