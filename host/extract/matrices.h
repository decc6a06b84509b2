// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/extract/parts.h"

#include <Eigen/Core>
#include <optional>

/// @file
/// From cleaned series of nodes to matrices.

namespace corvane
{

enum class Relationship { Pearson, FisherZ, Spearman, Partial, PartialTessera, Covariance };

/// What is told of a measure.
struct RelationshipFacts {
    Relationship relationship;
    const char *option;   ///< on the command line
    const char *stat;     ///< in file names
    const char *measure;  ///< in sidecars, for people
    bool takesShrinkage;  ///< made of a covariance that may be shrunk
    bool hasTrueDiagonal; ///< the diagonal says something of its node
};

constexpr RelationshipFacts relationshipFacts[] = {
    {Relationship::Pearson, "pearson", "pearsoncorrelation", "Pearson correlation", false, false},
    {Relationship::FisherZ, "fisherz", "fisherz", "Fisher z of the Pearson correlation", false,
     false},
    {Relationship::Spearman, "spearman", "spearmancorrelation", "Spearman correlation", false,
     false},
    {Relationship::Partial, "partial", "partialcorrelation", "partial correlation", true, false},
    {Relationship::PartialTessera, "partial-tessera", "partialtessera",
     "partial correlation as the plugin Tessera computes it", true, false},
    {Relationship::Covariance, "covariance", "covariance", "covariance", true, true},
};

const RelationshipFacts &factsOf(Relationship relationship);

struct NodeMatrix {
    Eigen::MatrixXd values;          ///< NaN where there is none
    std::optional<double> shrinkage; ///< when it was asked for
    Eigen::Index clipped = 0;        ///< pairs that Fisher z clipped
};

/// Cleaned series of a run.
struct CleanedSeries {
    Eigen::MatrixXd values;            ///< kept volumes x nodes, each column finite or all NaN
    std::vector<Eigen::Index> volumes; ///< the kept ones' numbers in the file
    double degrees = 0;                ///< of freedom, left by the cleaning
};

/// The matrix of a part; nodes without values, or whose series does not change in it, have none.
/// Throws signals::Error, also for a partial correlation without shrinkage of more nodes than the
/// part has degrees of freedom.
NodeMatrix matrixOf(const CleanedSeries &series, const Part &part, Relationship relationship,
                    bool shrink);

} // namespace corvane
