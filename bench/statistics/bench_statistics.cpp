// SPDX-License-Identifier: GPL-3.0-or-later
// The group tests at the sizes of a small and of a large study.
//
//   bench_statistics --benchmark_filter=large
//   STATISTICS_KERNELS=plain bench_statistics     without wide vector units
//
// Names end in the number of threads. The processor time is that of all threads; the memory is the
// largest of the process so far (on Linux), data included.

#include <fstream>
#include <string>

#include <benchmark/benchmark.h>

#include "statistics/distance_anova.h"
#include "statistics/distances.h"
#include "statistics/icc.h"
#include "statistics/leave_one_out.h"
#include "statistics/permutation_test.h"
#include "statistics/tangent.h"
#include "tests/statistics/random_data.h"

namespace
{

using namespace statistics;

/// Megabytes, 0 where the system does not tell.
double largest_memory()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) {
            return std::stod(line.substr(6)) / 1024.0;
        }
    }
    return 0.0;
}

/// A constant, two groups of half the subjects, and covariates.
Hypothesis two_groups(Index subjects, int covariates)
{
    RandomNumbers random(7);
    Eigen::MatrixXd design = random.normal(subjects, 2 + covariates);
    design.col(0).setOnes();
    std::vector<std::string> names = {"(Intercept)", "group"};
    for (Index i = 0; i < subjects; ++i) {
        design(i, 1) = i % 2 == 0 ? 0.0 : 1.0;
    }
    for (int c = 0; c < covariates; ++c) {
        names.push_back("covariate" + std::to_string(c));
    }
    return make_hypothesis(design, names, read_contrast("group = group", names));
}

void test_edges(benchmark::State &state, int nodes, Index subjects, int covariates)
{
    RandomNumbers random(11);
    EdgeData data(subjects, edge_count(nodes));
    for (Index i = 0; i < data.size(); ++i) {
        data.data()[i] = random.normal();
    }
    const Hypothesis hypothesis = two_groups(subjects, covariates);
    RearrangementOptions permutations;
    permutations.count = 5000;
    PermutationTestOptions options;
    options.threads = static_cast<int>(state.range(0));
    options.thresholds = {3.1};
    for (auto _ : state) {
        const auto result =
            permutation_test(data, hypothesis, Rearrangements(hypothesis, permutations), options);
        benchmark::DoNotOptimize(result.p_fwe.data());
    }
    state.counters["MB"] = largest_memory();
}

void small_test(benchmark::State &state)
{
    test_edges(state, 28, 48, 0);
}

void small_test_with_covariates(benchmark::State &state)
{
    test_edges(state, 28, 48, 2);
}

void large_test_with_covariates(benchmark::State &state)
{
    test_edges(state, 400, 100, 2);
}

void distance_test(benchmark::State &state)
{
    RandomNumbers random(3);
    const Eigen::MatrixXd places = random.normal(100, 5);
    const Eigen::MatrixXd distances = all_distances(
        100, [&](Index i, Index j) { return (places.row(i) - places.row(j)).norm(); });
    const Hypothesis hypothesis = two_groups(100, 2);
    const Rearrangements permutations(hypothesis, {});
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            distance_anova(distances, hypothesis, permutations, static_cast<int>(state.range(0))));
    }
}

void reliability_of_400_nodes(benchmark::State &state)
{
    RandomNumbers random(5);
    const std::vector<EdgeData> sessions = {random.data(30, edge_count(400)),
                                            random.data(30, edge_count(400))};
    for (auto _ : state) {
        benchmark::DoNotOptimize(icc(sessions));
    }
}

void influence_of_100_subjects(benchmark::State &state)
{
    RandomNumbers random(5);
    const LeaveOneOut model(random.data(100, edge_count(400)), two_groups(100, 2));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            model.influences(3.1, Sides::each, static_cast<int>(state.range(0))));
    }
}

void tangent_of_100_nodes(benchmark::State &state)
{
    RandomNumbers random(5);
    std::vector<Eigen::MatrixXd> covariances;
    for (int i = 0; i < 20; ++i) {
        covariances.push_back(random.covariance(100));
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(tangent_space(covariances));
    }
}

BENCHMARK(small_test)
    ->Arg(1)
    ->Arg(2)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(small_test_with_covariates)
    ->Arg(1)
    ->Arg(2)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(large_test_with_covariates)
    ->Arg(1)
    ->Arg(2)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(distance_test)
    ->Arg(1)
    ->Arg(2)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(reliability_of_400_nodes)->Unit(benchmark::kMillisecond);
BENCHMARK(influence_of_100_subjects)
    ->Arg(1)
    ->Arg(2)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(tangent_of_100_nodes)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
