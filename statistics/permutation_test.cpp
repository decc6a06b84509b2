// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/permutation_test.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <mutex>
#include <string>

#include "statistics/edge_statistics.h"
#include "statistics/error.h"
#include "statistics/false_discovery.h"
#include "statistics/parallel.h"

namespace statistics
{
namespace
{

using detail::AlignedValues;
using detail::batch_size;
using detail::EdgeStatistics;
using detail::panel_size;
using detail::tile_size;

/// Rearrangements that one thread takes at a time: few enough for their weights to stay in its
/// cache.
constexpr Index chunk_size = 64;

/// What a network is made of: how a statistic counts on a side.
double on_side(double statistic, Side side)
{
    switch (side) {
    case Side::greater:
        break;
    case Side::less:
        return -statistic;
    case Side::both:
        return std::abs(statistic);
    }
    return statistic;
}

/// The graphs that are made of one map of statistics.
std::vector<Side> graphs_of(Sides sides, bool is_f)
{
    if (is_f) {
        return {Side::greater};
    }
    switch (sides) {
    case Sides::each:
        break;
    case Sides::both:
        return {Side::both};
    case Sides::greater:
        return {Side::greater};
    case Sides::less:
        return {Side::less};
    }
    return {Side::greater, Side::less};
}

/// How a statistic counts where edges are looked at without networks.
Side edge_side(Sides sides, bool is_f)
{
    if (is_f || sides == Sides::greater) {
        return Side::greater;
    }
    return sides == Sides::less ? Side::less : Side::both;
}

/// One pass over all rearrangements.
class Pass
{
public:
    Pass(const EdgeStatistics &statistics, const Rearrangements &rearrangements,
         const PermutationTestOptions &options, bool is_f, PermutationTestResult &result)
        : m_statistics(statistics), m_rearrangements(rearrangements), m_options(options),
          m_edge_side(edge_side(options.sides, is_f)), m_graphs(graphs_of(options.sides, is_f)),
          m_result(result)
    {
        if (!options.thresholds.empty()) {
            m_nodes = node_count(statistics.edges());
            m_pairs = node_pairs(m_nodes);
            m_lowest = *std::min_element(options.thresholds.begin(), options.thresholds.end());
        }
        m_bounds.assign(static_cast<std::size_t>(statistics.panels() * panel_size), 0.0);
        for (Index e = 0; e < statistics.edges(); ++e) {
            m_bounds[e] = reaching(on_side(result.model.statistic(e), m_edge_side));
        }
    }

    /// Fills the null distributions; returns for each edge how often it was reached.
    std::vector<std::int64_t> run()
    {
        const Index count = m_rearrangements.count();
        m_result.null_maximum.resize(count);
        for (NetworkResult &network : m_result.networks) {
            network.null_extent.resize(count);
            network.null_intensity.resize(count);
        }
        std::vector<std::vector<std::int64_t>> reached(
            static_cast<std::size_t>(thread_count(m_options.threads)));
        for_each_chunk((count + chunk_size - 1) / chunk_size, m_options.threads,
                       [&](Index chunk, int worker) {
                           reached[worker].resize(m_bounds.size(), 0);
                           run_chunk(chunk * chunk_size, reached[worker]);
                       });
        std::vector<std::int64_t> sum(m_bounds.size(), 0);
        for (const std::vector<std::int64_t> &part : reached) {
            for (std::size_t e = 0; e < part.size(); ++e) {
                sum[e] += part[e];
            }
        }
        return sum;
    }

private:
    /// The graphs of one rearrangement, thresholds by sides.
    using Graphs = std::vector<GrowingComponents>;

    void run_chunk(Index first, std::vector<std::int64_t> &reached)
    {
        const Index count = std::min(chunk_size, m_rearrangements.count() - first);
        const Index batches = (count + batch_size - 1) / batch_size;
        const AlignedValues weights = weights_of(first, count, batches);
        std::vector<Graphs> graphs(
            static_cast<std::size_t>(m_options.thresholds.empty() ? 0 : count),
            Graphs(m_options.thresholds.size() * m_graphs.size(), GrowingComponents(m_nodes)));
        std::vector<double> maximum(static_cast<std::size_t>(batches * batch_size),
                                    -std::numeric_limits<double>::infinity());
        AlignedValues products(m_statistics.products_size());
        AlignedValues values(tile_size);
        for (Index panel = 0; panel < m_statistics.panels(); ++panel) {
            for (Index batch = 0; batch < batches; ++batch) {
                m_statistics.values(values.data(), products.data(),
                                    weights.data() + batch * m_statistics.weights_size(), panel);
                const Index in_batch = std::min<Index>(batch_size, count - batch * batch_size);
                for (Index place = 0; place < in_batch; ++place) {
                    const Index at = batch * batch_size + place;
                    const double largest =
                        take(values.data() + place * panel_size, panel, maximum[at], reached);
                    if (!graphs.empty() && largest > m_lowest) {
                        grow(graphs[at], values.data() + place * panel_size, panel);
                    }
                }
            }
        }
        for (Index at = 0; at < count; ++at) {
            m_result.null_maximum(first + at) = maximum[at];
            if (!graphs.empty()) {
                keep(graphs[at], first + at);
            }
        }
        report(count);
    }

    AlignedValues weights_of(Index first, Index count, Index batches) const
    {
        AlignedValues weights(m_statistics.weights_size() * static_cast<std::size_t>(batches));
        std::vector<int> source(static_cast<std::size_t>(m_rearrangements.subjects()));
        std::vector<double> sign(source.size());
        for (Index at = 0; at < count; ++at) {
            m_rearrangements.get(first + at, source.data(), sign.data());
            m_statistics.set_weights(weights.data() + at / batch_size * m_statistics.weights_size(),
                                     static_cast<int>(at % batch_size), source.data(), sign.data());
        }
        return weights;
    }

    /// Counts the edges of a panel that were reached; returns the largest absolute statistic.
    double take(const double *statistics, Index panel, double &maximum,
                std::vector<std::int64_t> &reached) const
    {
        double counting[panel_size];
        switch (m_edge_side) {
        case Side::greater:
            std::copy_n(statistics, panel_size, counting);
            break;
        case Side::less:
            std::transform(statistics, statistics + panel_size, counting, std::negate<>());
            break;
        case Side::both:
            std::transform(statistics, statistics + panel_size, counting,
                           [](double value) { return std::abs(value); });
            break;
        }
        std::int64_t *const count = reached.data() + panel * panel_size;
        const double *const bounds = m_bounds.data() + panel * panel_size;
        for (int e = 0; e < panel_size; ++e) {
            count[e] += counting[e] >= bounds[e] ? 1 : 0;
        }
        const Index edges = m_statistics.edges_in(panel);
        double largest = 0.0;
        for (Index e = 0; e < edges; ++e) {
            maximum = std::max(maximum, counting[e]);
            largest = std::max(largest, std::abs(statistics[e]));
        }
        return largest;
    }

    void grow(Graphs &graphs, const double *statistics, Index panel) const
    {
        const Index edges = m_statistics.edges_in(panel);
        for (Index e = 0; e < edges; ++e) {
            if (std::abs(statistics[e]) <= m_lowest) {
                continue;
            }
            for (std::size_t t = 0; t < m_options.thresholds.size(); ++t) {
                for (std::size_t s = 0; s < m_graphs.size(); ++s) {
                    const double excess =
                        on_side(statistics[e], m_graphs[s]) - m_options.thresholds[t];
                    if (excess > 0.0) {
                        graphs[t * m_graphs.size() + s].add(m_pairs[panel * panel_size + e],
                                                            excess);
                    }
                }
            }
        }
    }

    void keep(const Graphs &graphs, Index rearrangement)
    {
        for (std::size_t t = 0; t < m_result.networks.size(); ++t) {
            double extent = 0.0;
            double intensity = 0.0;
            for (std::size_t s = 0; s < m_graphs.size(); ++s) {
                const GrowingComponents &graph = graphs[t * m_graphs.size() + s];
                extent = std::max(extent, graph.largest_extent());
                intensity = std::max(intensity, graph.largest_intensity());
            }
            m_result.networks[t].null_extent(rearrangement) = extent;
            m_result.networks[t].null_intensity(rearrangement) = intensity;
        }
    }

    void report(Index count)
    {
        if (m_options.progress) {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_done += count;
            m_options.progress(m_done, m_rearrangements.count());
        }
    }

    const EdgeStatistics &m_statistics;
    const Rearrangements &m_rearrangements;
    const PermutationTestOptions &m_options;
    const Side m_edge_side;
    const std::vector<Side> m_graphs;
    PermutationTestResult &m_result;
    int m_nodes = 0;
    std::vector<NodePair> m_pairs;
    double m_lowest = 0.0;
    /// The values that reach each edge's statistic.
    std::vector<double> m_bounds;
    std::mutex m_mutex;
    Index m_done = 0; ///< guarded by m_mutex
};

/// The observed components of one threshold with their p values.
void test_components(const GlmResult &model, const Rearrangements &rearrangements,
                     const std::vector<Side> &graphs, NetworkResult &network)
{
    for (const Side side : graphs) {
        const Eigen::ArrayXd values =
            model.statistic.unaryExpr([side](double value) { return on_side(value, side); });
        for (Component &component : find_components(values, network.threshold, side)) {
            const auto extent = static_cast<double>(component.edges.size());
            component.p_extent =
                rearrangements.p_value(count_reaching(network.null_extent, extent));
            component.p_intensity =
                rearrangements.p_value(count_reaching(network.null_intensity, component.intensity));
            network.components.push_back(std::move(component));
        }
    }
}

/// For each edge the p of its statistic among the largest ones.
Eigen::ArrayXd family_wise(const GlmResult &model, const Rearrangements &rearrangements, Side side,
                           const Eigen::ArrayXd &null_maximum)
{
    std::vector<double> sorted(null_maximum.begin(), null_maximum.end());
    std::sort(sorted.begin(), sorted.end());
    return model.statistic.unaryExpr([&](double statistic) {
        const auto first =
            std::lower_bound(sorted.begin(), sorted.end(), reaching(on_side(statistic, side)));
        return rearrangements.p_value(sorted.end() - first);
    });
}

} // namespace

PermutationTestResult permutation_test(const EdgeData &data, const Hypothesis &hypothesis,
                                       const Rearrangements &rearrangements,
                                       const PermutationTestOptions &options)
{
    if (rearrangements.subjects() != hypothesis.subjects()) {
        throw Error("the rearrangements are of " + std::to_string(rearrangements.subjects()) +
                    " subjects, the design has " + std::to_string(hypothesis.subjects()));
    }
    PermutationTestResult result;
    for (const double threshold : options.thresholds) {
        if (!(threshold >= 0.0) || std::isinf(threshold)) {
            throw Error("the threshold of a network is " + std::to_string(threshold) +
                        "; it is a statistic of 0 or above");
        }
        result.networks.push_back({threshold, {}, {}, {}});
    }
    const EdgeStatistics statistics(data, hypothesis, rearrangements.has_signs());
    result.model = detail::glm(statistics, hypothesis, options.sides);
    result.rearrangements = rearrangements.count();
    result.is_exhaustive = rearrangements.is_exhaustive();

    const bool is_f = hypothesis.is_f();
    const std::vector<std::int64_t> reached =
        Pass(statistics, rearrangements, options, is_f, result).run();
    result.p_permuted.resize(statistics.edges());
    for (Index e = 0; e < statistics.edges(); ++e) {
        result.p_permuted(e) = rearrangements.p_value(reached[e]);
    }
    result.p_fwe = family_wise(result.model, rearrangements, edge_side(options.sides, is_f),
                               result.null_maximum);
    result.q = benjamini_hochberg(result.model.p);
    for (NetworkResult &network : result.networks) {
        test_components(result.model, rearrangements, graphs_of(options.sides, is_f), network);
    }
    return result;
}

} // namespace statistics
