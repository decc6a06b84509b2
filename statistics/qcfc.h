// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include <Eigen/Core>

#include "statistics/edges.h"

namespace statistics
{

/// Below so many subjects the result says little, and users are to be told.
constexpr Index qcfc_few_subjects = 20;

struct QcFc {
    Eigen::ArrayXd r; ///< per edge; NaN where the edge does not vary beside the covariates
    Eigen::ArrayXd p; ///< two-sided, of t = r sqrt(df / (1 - r^2))
    Eigen::ArrayXd q; ///< Benjamini-Hochberg
    double df = 0.0;  ///< n - 2 - (columns beside the constant)
    double share_p_below_05 = 0.0; ///< of the edges with r; 0.05 is expected of clean data
    double share_q_below_05 = 0.0;
    double median_absolute_r = 0.0;
    /// Spearman's correlation of r with the distance of the edge's nodes. NaN without distances.
    double distance_dependence = 0.0;
    Index distances = 0; ///< edges that have one
};

/// How much of each edge follows the subjects' motion: the partial correlation of their mean
/// framewise displacement and the edge, given a constant and the covariates.
///
/// Source: Ciric et al. 2017, NeuroImage 154:174, doi:10.1016/j.neuroimage.2017.03.020.
///
/// \param data subjects x edges, in Fisher z where they are correlations.
/// \param mean_fd of each subject, in mm, of all volumes before censoring.
/// \param covariates subjects x columns, the design without motion; a constant is added if they do
///        not span it. May have no columns.
/// \param names of its columns.
/// \param distances of each edge's nodes in mm; empty, or NaN where unknown.
/// \throws Error if sizes differ, something is not finite, no degree of freedom is left, the
///         covariates are collinear, or mean FD does not vary beside them.
QcFc qcfc(const EdgeData &data, const Eigen::VectorXd &mean_fd, const Eigen::MatrixXd &covariates,
          const std::vector<std::string> &names, const Eigen::ArrayXd &distances = {});

} // namespace statistics
