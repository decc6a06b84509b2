// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/extract/matrices.h"

#include "engine/measures.h"
#include "signals/conditions.h"
#include "signals/correlation.h"
#include "signals/intervals.h"
#include "signals/partial.h"

#include <Eigen/LU>
#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane
{

namespace
{

using Eigen::MatrixXd;
using Index = Eigen::Index;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Nodes whose series are there and change within the part; the others have no relationship.
std::vector<Index> nodesWithSeries(const MatrixXd &series)
{
    std::vector<Index> nodes;
    for (Index node = 0; node < series.cols(); ++node)
        if (series.rows() > 0 && series.col(node).allFinite() &&
            (series.col(node).array() != series(0, node)).any())
            nodes.push_back(node);
    return nodes;
}

MatrixXd spreadOut(const MatrixXd &values, const std::vector<Index> &nodes, Index size)
{
    MatrixXd all = MatrixXd::Constant(size, size, nan);
    all(nodes, nodes) = values;
    return all;
}

void requireMoreDegreesThanNodes(double degrees, Index nodes)
{
    if (!(degrees > double(nodes)))
        throw signals::Error("partial correlation of " + std::to_string(nodes) + " nodes with " +
                             std::to_string(degrees) +
                             " degrees of freedom: expected more of these than nodes; shrinkage "
                             "(--shrinkage ledoit-wolf) needs no more");
}

/// The plugin's form, whose second factor is the diagonal of the correlation and not of its
/// inverse.
MatrixXd pluginPartial(const MatrixXd &correlation)
{
    const MatrixXd inverse = correlation.inverse();
    MatrixXd result(inverse.rows(), inverse.cols());
    for (Index j = 0; j < result.cols(); ++j)
        for (Index i = 0; i < result.rows(); ++i)
            result(i, j) = -(inverse(i, j) / std::sqrt(inverse(i, i) * correlation(j, j)));
    return result;
}

MatrixXd rowsOf(const CleanedSeries &series, const Part &part)
{
    return part.centreIntervals
               ? signals::centred_condition_series(series.values, part.windows, series.volumes)
               : MatrixXd(series.values(part.rows, Eigen::all));
}

/// What a measure is computed of.
struct Block {
    const MatrixXd &series; ///< rows of the part x nodes, all finite
    const Part &part;
    double degrees; ///< of the part

    /// The covariance by the weights of the part, or by its degrees of freedom.
    MatrixXd covariance() const
    {
        return part.weights.size() > 0 ? signals::weighted_covariance(series, part.weights)
                                       : signals::covariance(series, degrees);
    }
};

NodeMatrix shrunkMatrix(const Block &block, Relationship relationship)
{
    const bool scaled = relationship != Relationship::Covariance;
    const signals::Shrunk shrunk =
        signals::ledoit_wolf(scaled ? signals::unit_variance(block.series) : block.series);
    NodeMatrix result{shrunk.covariance, shrunk.shrinkage, 0};
    if (relationship == Relationship::Partial)
        result.values = signals::partial_of(shrunk.covariance);
    if (relationship == Relationship::PartialTessera)
        result.values = pluginPartial(signals::correlation_of(shrunk.covariance));
    return result;
}

MatrixXd plainPartial(const Block &block)
{
    if (block.part.weights.size() == 0)
        return signals::partial_correlation(block.series, block.degrees);
    requireMoreDegreesThanNodes(block.degrees, block.series.cols());
    return signals::partial_of(block.covariance());
}

NodeMatrix plainMatrix(const Block &block, Relationship relationship)
{
    switch (relationship) {
    case Relationship::Pearson:
        return {block.part.weights.size() > 0 ? signals::correlation_of(block.covariance())
                                              : signals::pearson(block.series),
                {},
                0};
    case Relationship::FisherZ: {
        const signals::FisherZ z =
            signals::fisher_z(plainMatrix(block, Relationship::Pearson).values);
        return {z.z, {}, z.clipped};
    }
    case Relationship::Spearman:
        return {signals::spearman(block.series), {}, 0};
    case Relationship::Partial:
        return {plainPartial(block), {}, 0};
    case Relationship::PartialTessera:
        requireMoreDegreesThanNodes(block.degrees, block.series.cols());
        return {
            partialCorrelationMatrix(block.series.transpose().cast<float>()).cast<double>(), {}, 0};
    case Relationship::Covariance:
        break;
    }
    return {block.covariance(), {}, 0};
}

} // namespace

const RelationshipFacts &factsOf(Relationship relationship)
{
    return *std::find_if(
        std::begin(relationshipFacts), std::end(relationshipFacts),
        [&](const RelationshipFacts &facts) { return facts.relationship == relationship; });
}

NodeMatrix matrixOf(const CleanedSeries &series, const Part &part, Relationship relationship,
                    bool shrink)
{
    const Index count = series.values.cols();
    if (!part.filled)
        return {MatrixXd::Constant(count, count, nan), {}, 0};
    MatrixXd rows = rowsOf(series, part);
    const std::vector<Index> nodes = nodesWithSeries(rows);
    rows = MatrixXd(rows(Eigen::all, nodes));
    const Block block{
        rows, part,
        signals::degrees_of_part(series.degrees, part.effective, double(series.values.rows()))};
    const bool shrunk = shrink && factsOf(relationship).takesShrinkage;
    NodeMatrix result =
        shrunk ? shrunkMatrix(block, relationship) : plainMatrix(block, relationship);
    result.values = spreadOut(result.values, nodes, count);
    return result;
}

} // namespace corvane
