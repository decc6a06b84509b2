// SPDX-License-Identifier: GPL-3.0-or-later
//
// The two connectivity measures on blocks of random courses.
#include "engine/measures.h"

#include <benchmark/benchmark.h>

#include <random>

namespace
{

Eigen::MatrixXf randomSeries(Eigen::Index nodes, Eigen::Index volumes)
{
    std::mt19937 generator(1);
    std::normal_distribution<float> noise(1000.0f, 10.0f);
    return Eigen::MatrixXf::NullaryExpr(nodes, volumes, [&] { return noise(generator); });
}

void measure(benchmark::State &state, Eigen::MatrixXf (*function)(const Eigen::MatrixXf &))
{
    const Eigen::MatrixXf series = randomSeries(state.range(0), state.range(1));
    for (auto _ : state)
        benchmark::DoNotOptimize(function(series).data());
}

} // namespace

BENCHMARK_CAPTURE(measure, correlationMatrix, correlationMatrix)
    ->ArgNames({"N", "T"})
    ->Args({10, 300})
    ->Args({100, 300})
    ->Args({400, 300})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, partialCorrelationMatrix, partialCorrelationMatrix)
    ->ArgNames({"N", "T"})
    ->Args({10, 300})
    ->Args({100, 300})
    ->Args({400, 300})
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
