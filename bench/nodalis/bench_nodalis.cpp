// SPDX-License-Identifier: GPL-3.0-or-later
// Each measure beside igraph's, where it has one, on random weighted graphs.
//
//   bench_nodalis --benchmark_filter='efficiency.*/200/'
//   NODALIS_KERNELS=plain bench_nodalis     without wide vector units
//
// Times are the least of several repetitions, on one thread. igraph's graphs are built beforehand.

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <nodalis/nodalis.h>

#include "tests/nodalis/graphs.h"
#include "tests/nodalis/igraph_graph.h"

namespace
{

struct Rival {
    std::string name;
    std::function<void(const IgraphGraph &)> measure;
    /// Larger graphs take it minutes.
    int largest;
};

struct Measure {
    std::string name;
    std::function<void(Eigen::MatrixXf &)> measure;
    std::vector<Rival> rivals;
};

constexpr int any_size = 1000;

template <typename Result>
void keep(Result &&result)
{
    benchmark::DoNotOptimize(result);
}

std::vector<Measure> measures()
{
    return {
        {"treatment", [](auto &m) { nodalis::treatment(m); }, {}},
        {"degree",
         [](auto &m) { keep(nodalis::degree(m)); },
         {{"igraph", [](const auto &g) { keep(g.degree()); }, any_size}}},
        {"strength",
         [](auto &m) { keep(nodalis::strength(m)); },
         {{"igraph", [](const auto &g) { keep(g.strength()); }, any_size}}},
        {"clustering_coeff",
         [](auto &m) { keep(nodalis::clustering_coeff(m)); },
         {{"igraph_barrat", [](const auto &g) { keep(g.barrat_clustering()); }, any_size},
          {"igraph_binary", [](const auto &g) { keep(g.binary_clustering()); }, any_size}}},
        {"local_efficiency",
         [](auto &m) { keep(nodalis::local_efficiency(m)); },
         {{"igraph_open", [](const auto &g) { keep(g.open_local_efficiency()); }, 116}}},
        {"global_efficiency",
         [](auto &m) { keep(nodalis::global_efficiency(m)); },
         {{"igraph", [](const auto &g) { keep(g.global_efficiency()); }, any_size}}},
        {"nodal_global_efficiency",
         [](auto &m) { keep(nodalis::nodal_global_efficiency(m)); },
         {{"igraph_harmonic", [](const auto &g) { keep(g.harmonic_centrality()); }, any_size}}},
        {"eigenvector_centrality",
         [](auto &m) { keep(nodalis::eigenvector_centrality(m)); },
         {{"igraph", [](const auto &g) { keep(g.eigenvector_centrality()); }, any_size}}},
        {"minimum_spanning_tree",
         [](auto &m) { keep(nodalis::mst::minimum_spanning_tree(m, false, true)); },
         {{"igraph", [](const auto &g) { keep(g.spanning_forest()); }, any_size}}},
        {"spectral_euclidean",
         [](auto &m) { keep(nodalis::distances::spectral_euclidean(m, m, 0)); },
         {}},
    };
}

Eigen::MatrixXf graph(int n, int percent)
{
    graphs::Random random(116);
    return graphs::random(n, percent / 100.0, graphs::Weights::uniform, random);
}

void add(const std::string &name, const std::function<void(benchmark::State &)> &run)
{
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(5)
        ->MinTime(0.05)
        ->ReportAggregatesOnly()
        ->ComputeStatistics("min", [](const std::vector<double> &times) {
            return *std::min_element(times.begin(), times.end());
        });
}

void add_graph(const Measure &measure, int n, int percent)
{
    const std::string shape = "/" + std::to_string(n) + "/" + std::to_string(percent) + "%";
    add(measure.name + "/nodalis" + shape, [=](benchmark::State &state) {
        Eigen::MatrixXf matrix = graph(n, percent);
        for ([[maybe_unused]] auto unused : state) {
            measure.measure(matrix);
        }
    });
    for (const Rival &rival : measure.rivals) {
        if (n > rival.largest) {
            continue;
        }
        add(measure.name + "/" + rival.name + shape, [=](benchmark::State &state) {
            const IgraphGraph matrix(graph(n, percent));
            for ([[maybe_unused]] auto unused : state) {
                rival.measure(matrix);
            }
        });
    }
}

} // namespace

int main(int argc, char **argv)
{
    for (const Measure &measure : measures()) {
        for (const int percent : {100, 10}) {
            for (const int n : {10, 50, 116, 200, 400, 1000}) {
                add_graph(measure, n, percent);
            }
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
