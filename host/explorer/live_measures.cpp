// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/explorer/live_measures.h"

#include "engine/graph_measures.h"

#include <atomic>
#include <cmath>
#include <future>
#include <limits>

namespace corvane
{

namespace
{

using Eigen::Index;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Computes what is left of a list until it is empty or the work is ended. What takes longest is
/// spread over two threads by itself.
void computeSome(const std::vector<GraphMeasure> &measures, const Eigen::MatrixXf &weights,
                 std::vector<Eigen::ArrayXf> &values, std::atomic<std::size_t> &next,
                 std::atomic<bool> &isEnded, const GoOn &goOn)
try {
    const nodalis::Effort effort{2, [&](double) { return !isEnded && (!goOn || goOn()); }};
    for (std::size_t m = next++; m < measures.size(); m = next++) {
        if (isEnded || (goOn && !goOn())) {
            isEnded = true;
            return;
        }
        if (measures[m].perNode != nullptr && measures[m].withEffort != nullptr)
            values[m] = measures[m].withEffort(weights, effort);
        else if (measures[m].perNode != nullptr)
            values[m] = measures[m].perNode(weights);
        else if (weights.rows() > 0)
            values[m] = Eigen::ArrayXf::Constant(1, measures[m].perMatrix(weights));
    }
} catch (const nodalis::Ended &) {
    isEnded = true;
}

/// The mean of another measure, whose paths are not searched twice.
const char *const globalEfficiency = "global_efficiency";
const char *const nodalEfficiency = "nodal_global_efficiency";

/// The measures that take longest first, so that the threads end together.
std::vector<std::size_t> longestFirst(const std::vector<GraphMeasure> &measures)
{
    std::vector<std::size_t> order;
    for (const bool isLong : {true, false})
        for (std::size_t m = 0; m < measures.size(); ++m)
            if (measures[m].isLong == isLong && qstrcmp(measures[m].column, globalEfficiency) != 0)
                order.push_back(m);
    return order;
}

} // namespace

NetworkMeasures measuresOf(const std::vector<NetworkEdge> &edges, const std::vector<bool> &isKnown,
                           const GoOn &goOn)
{
    std::vector<Index> nodes;
    for (std::size_t node = 0; node < isKnown.size(); ++node)
        if (isKnown[node])
            nodes.push_back(Index(node));
    const Eigen::MatrixXf weights = weightsOf(edges, int(isKnown.size()))(nodes, nodes);

    const std::vector<GraphMeasure> all = graphMeasuresOfTables();
    const std::vector<std::size_t> order = longestFirst(all);
    std::vector<GraphMeasure> measures;
    for (const std::size_t m : order)
        measures.push_back(all[m]);
    std::vector<Eigen::ArrayXf> values(measures.size());
    std::atomic<std::size_t> next{0};
    std::atomic<bool> isEnded{false};
    // Where no thread is to be had it runs later in this one, and finds nothing left.
    std::future<void> other =
        std::async([&] { computeSome(measures, weights, values, next, isEnded, goOn); });
    computeSome(measures, weights, values, next, isEnded, goOn);
    other.get();
    if (isEnded)
        return {};

    NetworkMeasures result;
    Index perNode = 0;
    for (const GraphMeasure &measure : all)
        perNode += measure.perNode != nullptr ? 1 : 0;
    result.nodes.setConstant(Index(isKnown.size()), perNode, nan);
    result.whole.setConstant(Index(all.size()), nan);
    for (const GraphMeasure &measure : all) {
        result.columns += QLatin1String(measure.column);
        result.names += QString::fromUtf8(measure.name);
    }
    const auto column = [&](const char *name) {
        return Index(result.columns.indexOf(QLatin1String(name)));
    };
    for (std::size_t k = 0; k < order.size(); ++k) {
        const std::size_t m = order[k];
        if (values[k].size() == 0)
            continue;
        result.whole[Index(m)] = values[k].cast<double>().mean();
        if (all[m].perNode != nullptr)
            for (std::size_t n = 0; n < nodes.size(); ++n)
                result.nodes(nodes[n], Index(m)) = double(values[k][Index(n)]);
    }
    result.whole[column(globalEfficiency)] = result.whole[column(nodalEfficiency)];
    return result;
}

std::vector<double> usualDensities()
{
    return {0.05, 0.1, 0.15, 0.2, 0.25, 0.3, 0.35, 0.4};
}

MeasureCurves measureCurves(const RankedEdges &edges, const std::vector<bool> &isKnown,
                            const EdgeThreshold &threshold, const std::vector<double> &densities,
                            const GoOn &goOn)
{
    MeasureCurves curves;
    EdgeThreshold step = threshold;
    if (step.kind == ThresholdKind::Weight)
        step.kind = ThresholdKind::Density;
    for (const double density : densities) {
        step.value = density;
        NetworkMeasures measures = measuresOf(edges.kept(step), isKnown, goOn);
        if (measures.columns.isEmpty())
            return {};
        curves.densities.push_back(density);
        curves.steps.push_back(std::move(measures));
    }
    return curves;
}

Eigen::ArrayXd curveOf(const MeasureCurves &curves, int measure, int node)
{
    Eigen::ArrayXd curve(Index(curves.steps.size()));
    for (std::size_t n = 0; n < curves.steps.size(); ++n) {
        const NetworkMeasures &step = curves.steps[n];
        const bool isOfNode = node >= 0 && measure < step.nodes.cols();
        curve[Index(n)] = isOfNode ? step.nodes(node, measure) : step.whole[measure];
    }
    return curve;
}

double meanArea(const std::vector<double> &x, const Eigen::ArrayXd &y)
{
    if (x.empty())
        return nan;
    if (x.size() == 1)
        return y[0];
    double area = 0;
    for (std::size_t n = 1; n < x.size(); ++n)
        area += (x[n] - x[n - 1]) * (y[Index(n)] + y[Index(n - 1)]) / 2;
    return area / (x.back() - x.front());
}

std::vector<bool> knownNodes(const Eigen::MatrixXd &values)
{
    std::vector<bool> isKnown(std::size_t(values.cols()), false);
    for (Index node = 0; node < values.cols(); ++node)
        for (Index other = 0; other < values.rows() && !isKnown[std::size_t(node)]; ++other)
            isKnown[std::size_t(node)] = other != node && std::isfinite(values(other, node));
    return isKnown;
}

} // namespace corvane
