// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics/glm.h"

#include <numeric>

#include "statistics/distributions.h"
#include "statistics/edge_statistics.h"

namespace statistics
{
namespace
{

double tail(double statistic, const GlmResult &result, bool is_f, Sides sides)
{
    if (is_f) {
        return f_upper_tail(statistic, result.tested, result.df);
    }
    switch (sides) {
    case Sides::greater:
        return t_upper_tail(statistic, result.df);
    case Sides::less:
        return t_upper_tail(-statistic, result.df);
    case Sides::each:
    case Sides::both:
        break;
    }
    return t_two_sided(statistic, result.df);
}

} // namespace

GlmResult glm(const EdgeData &data, const Hypothesis &hypothesis, Sides sides)
{
    return detail::glm(detail::EdgeStatistics(data, hypothesis, false), hypothesis, sides);
}

namespace detail
{

GlmResult glm(const EdgeStatistics &statistics, const Hypothesis &hypothesis, Sides sides)
{
    std::vector<int> source(static_cast<std::size_t>(hypothesis.subjects()));
    std::iota(source.begin(), source.end(), 0);
    const Eigen::VectorXd sign = Eigen::VectorXd::Ones(hypothesis.subjects());
    AlignedValues weights(statistics.weights_size());
    AlignedValues products(statistics.products_size());
    AlignedValues values(tile_size);
    statistics.set_weights(weights.data(), 0, source.data(), sign.data());

    GlmResult result;
    result.df = hypothesis.df;
    result.tested = static_cast<double>(hypothesis.tested.cols());
    result.constant_edges = statistics.constant_edges();
    result.statistic.resize(statistics.edges());
    result.estimate.resize(hypothesis.is_f() ? 0 : statistics.edges());
    for (Index panel = 0; panel < statistics.panels(); ++panel) {
        statistics.values(values.data(), products.data(), weights.data(), panel);
        for (Index e = 0; e < statistics.edges_in(panel); ++e) {
            const Index edge = panel * panel_size + e;
            result.statistic(edge) = values.data()[e];
            if (!hypothesis.is_f()) {
                result.estimate(edge) = hypothesis.estimate_scale * products.data()[e];
            }
        }
    }
    result.p.resize(statistics.edges());
    for (Index e = 0; e < statistics.edges(); ++e) {
        result.p(e) = tail(result.statistic(e), result, hypothesis.is_f(), sides);
    }
    for (std::size_t c = 0; c < result.constant_edges.size(); ++c) {
        const Index edge = result.constant_edges[c];
        result.p(edge) = 1.0;
        if (!hypothesis.is_f()) {
            result.estimate(edge) = hypothesis.estimate_scale * statistics.constant_products()[c];
        }
    }
    return result;
}

} // namespace detail

} // namespace statistics
